#include "waveform/views/OVWaveFormDrawing.h"

#include <algorithm>
#include <cmath>

#include <QLineF>

namespace {

const QColor kGradientBottom = QColor::fromRgb(36, 54, 71);
const QColor kGradientTop = QColor::fromRgb(35, 37, 62);
const QColor kWaveformColor = QColor::fromRgbF(0.16F, 0.435F, 0.49F);
const QColor kTickColor = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.6F);

constexpr double kLineWidth = 1.0;
constexpr int kTicks = 20;
// Full scale reaches this part of the height above and below the middle.
constexpr double kFullScaleDivisor = 2.5;
// Far outside every view, but still finite.
constexpr float kMaxElement = 100.0F;

float drawable(float element) {
  return std::isnan(element) ? 0.0F : std::clamp(element, -kMaxElement, kMaxElement);
}

}  // namespace

double OVWaveFormDrawing::nextGridOffset(double bg_scroll_x) {
  double next = bg_scroll_x + 1.0;
  if (next < 0.0) {
    next = kGridSpacing;
  }
  return next >= kGridSpacing ? 0.0 : next;
}

void OVWaveFormDrawing::drawGradient(QPainter& painter, QSizeF size) {
  platform::drawViewGradient(painter, size, kGradientBottom, kGradientTop);
}

void OVWaveFormDrawing::drawGrid(QPainter& painter, QSizeF size, double bg_scroll_x) {
  platform::drawViewGridLevels(painter, size);
  platform::drawViewGridUprights(painter, size, bg_scroll_x);
}

void OVWaveFormDrawing::drawBackground(QPainter& painter, QSizeF size, double bg_scroll_x) {
  const double ratio = painter.device()->devicePixelRatio();
  const QSize pixels(painter.device()->width(), painter.device()->height());
  if (still_.size() != pixels || still_.devicePixelRatio() != ratio || stillSize_ != size) {
    renderStill(pixels, ratio, size);
  }
  painter.save();
  painter.resetTransform();
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(QPointF(0.0, 0.0), still_);
  painter.restore();
  platform::drawViewGridUprights(painter, size, bg_scroll_x);
}

void OVWaveFormDrawing::renderStill(QSize pixels, double ratio, QSizeF size) {
  still_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  still_.fill(Qt::black);
  still_.setDevicePixelRatio(ratio);
  stillSize_ = size;
  QPainter painter(&still_);
  platform::useViewCoordinates(painter, size);
  drawGradient(painter, size);
  platform::drawViewGridLevels(painter, size);
}

void OVWaveFormDrawing::drawWaveform(QPainter& painter, QSizeF size,
                                     std::span<const float> elements, double alpha) {
  if (elements.empty()) {
    return;
  }
  collectZigzag(size, elements);
  QColor color = kWaveformColor;
  color.setAlphaF(static_cast<float>(std::clamp(alpha, 0.0, 1.0)));
  zigzagStroke_.draw(painter, QRectF(QPointF(0.0, 0.0), size), zigzag_, color, kLineWidth);
}

void OVWaveFormDrawing::drawTimescale(QPainter& painter, QSizeF size) {
  const double width = size.width();
  const double step = width / kTicks;
  std::vector<QLineF> ticks;
  for (int i = 0; i < kTicks; ++i) {
    const double x = i * step;
    const int tickHeight = (static_cast<int>(x) % 20) / 2 + 5;
    ticks.emplace_back(x + 0.5, 0.0, x + 0.5, tickHeight);
  }
  ticks.emplace_back(width - 0.5, 0.0, width - 0.5, 10.0);
  painter.setPen(platform::viewPen(kTickColor, kLineWidth));
  painter.drawLines(ticks.data(), static_cast<int>(ticks.size()));
}

void OVWaveFormDrawing::copyPicture(QPainter& painter, QSizeF viewSize, const QRegion& dirty,
                                    const QImage& picture) {
  const double ratio = picture.devicePixelRatio();
  const QSizeF covered = picture.deviceIndependentSize();
  const bool fits = covered.width() >= viewSize.width() && covered.height() >= viewSize.height() &&
                    covered.width() < viewSize.width() + 1.0 &&
                    covered.height() < viewSize.height() + 1.0;
  platform::drawByRectangles(painter, dirty, [&] {
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (fits) {
      // In device pixels, so that a pixel is copied to a pixel at every ratio.
      painter.scale(1.0 / ratio, 1.0 / ratio);
      painter.drawImage(QRectF(picture.rect()), picture, QRectF(picture.rect()));
    } else {
      painter.drawImage(QRectF(QPointF(0.0, 0.0), viewSize), picture, QRectF(picture.rect()));
    }
  });
}

void OVWaveFormDrawing::collectZigzag(QSizeF size, std::span<const float> elements) {
  const double step = size.width() / static_cast<double>(elements.size());
  const double scale = size.height() / kFullScaleDivisor;
  const double middle = size.height() * 0.5;
  zigzag_.clear();
  double x = 0.0;
  zigzag_.emplace_back(x, middle);
  for (const float element : elements) {
    const double reach = static_cast<double>(drawable(element)) * scale;
    x += step;
    zigzag_.emplace_back(x, middle + reach);
    zigzag_.emplace_back(x, middle - reach);
  }
}
