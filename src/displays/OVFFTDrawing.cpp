#include "displays/OVFFTDrawing.h"

#include <algorithm>
#include <cmath>

#include <QLineF>
#include <QLinearGradient>

#include "platform/ViewDrawing.h"

namespace {

const QColor kBackground = QColor::fromRgbF(0.14F, 0.21F, 0.28F);
const QColor kGraphColor = QColor::fromRgbF(0.16F, 0.435F, 0.49F);
const QColor kGradientBottom = QColor::fromRgbF(0.13725F, 0.14510F, 0.24314F);
const QColor kGradientTop = QColor::fromRgbF(0.14118F, 0.21176F, 0.27843F);
const QColor kGridColor = QColor::fromRgbF(0.145F, 0.32F, 0.356F);

constexpr double kLineWidth = 1.0;
constexpr double kGridSpacing = 24.0;  // points
// A magnitude of 1 reaches this part of the height.
constexpr double kUnitHeight = 0.9;
// Far outside every view, where lines are still exact.
constexpr float kLargestValue = 100.0F;

double drawable(float value) {
  return std::isnan(value) ? 0.0
                           : static_cast<double>(std::clamp(value, -kLargestValue, kLargestValue));
}

}  // namespace

void OVFFTDrawing::drawSpectrum(QPainter& painter, QSizeF size, std::span<const float> data) {
  painter.fillRect(QRectF(QPointF(0.0, 0.0), size), kBackground);
  if (data.empty()) {
    return;
  }
  const double scale = kUnitHeight * size.height();
  const double step = size.width() / static_cast<double>(data.size());
  graph_.clear();
  graph_.emplace_back(0.0, 0.0);
  for (std::size_t k = 0; k < data.size(); ++k) {
    graph_.emplace_back(static_cast<double>(k + 1) * step, drawable(data[k]) * scale);
  }
  graphStroke_.draw(painter, QRectF(QPointF(0.0, 0.0), size), graph_, kGraphColor, kLineWidth);
}

void OVFFTDrawing::drawGradient(QPainter& painter, QSizeF size) {
  QLinearGradient gradient(0.0, 0.0, 0.0, size.height());
  gradient.setColorAt(0.0, kGradientBottom);
  gradient.setColorAt(1.0, kGradientTop);
  painter.fillRect(QRectF(QPointF(0.0, 0.0), size), gradient);
}

void OVFFTDrawing::drawGrid(QPainter& painter, QSizeF size) {
  const double width = size.width();
  const double height = size.height();
  std::vector<QLineF> lines;
  for (int i = 0; i * kGridSpacing < height; ++i) {
    const double y = i * kGridSpacing;
    // The slight slant belongs to the look.
    lines.emplace_back(0.0, y + 12.5, width + 0.5, y + 12.0);
  }
  for (int i = 0; i * kGridSpacing < width; ++i) {
    const double x = i * kGridSpacing + 0.5;
    lines.emplace_back(x, 0.0, x, height);
  }
  painter.setPen(platform::viewPen(kGridColor, kLineWidth));
  painter.drawLines(lines.data(), static_cast<int>(lines.size()));
}
