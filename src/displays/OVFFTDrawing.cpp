#include "displays/OVFFTDrawing.h"

#include <algorithm>
#include <cmath>

#include "platform/views/ViewDrawing.h"

namespace {

const QColor kBackground = QColor::fromRgbF(0.14F, 0.21F, 0.28F);
const QColor kGraphColor = QColor::fromRgbF(0.16F, 0.435F, 0.49F);
const QColor kGradientBottom = QColor::fromRgbF(0.13725F, 0.14510F, 0.24314F);
const QColor kGradientTop = QColor::fromRgbF(0.14118F, 0.21176F, 0.27843F);

constexpr double kLineWidth = 1.0;
// The fraction of the height that a magnitude of 1 reaches.
constexpr double kUnitHeight = 0.9;
// Far outside any view, but small enough for exact lines.
constexpr float kMaxValue = 100.0F;

double drawable(float value) {
  return std::isnan(value) ? 0.0 : static_cast<double>(std::clamp(value, -kMaxValue, kMaxValue));
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

QColor OVFFTDrawing::background() {
  return kBackground;
}

void OVFFTDrawing::drawGradient(QPainter& painter, QSizeF size) {
  platform::drawViewGradient(painter, size, kGradientBottom, kGradientTop);
}

void OVFFTDrawing::drawGrid(QPainter& painter, QSizeF size) {
  platform::drawViewGridLevels(painter, size);
  platform::drawViewGridUprights(painter, size, 0.0);
}
