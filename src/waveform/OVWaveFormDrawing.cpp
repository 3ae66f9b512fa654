#include "waveform/OVWaveFormDrawing.h"

#include <algorithm>
#include <cmath>

#include <QLinearGradient>

#include "platform/ViewDrawing.h"

namespace {

const QColor kGradientBottom = QColor::fromRgb(36, 54, 71);
const QColor kGradientTop = QColor::fromRgb(35, 37, 62);
const QColor kGridColor = QColor::fromRgbF(0.145F, 0.32F, 0.356F);
const QColor kWaveformColor = QColor::fromRgbF(0.16F, 0.435F, 0.49F);
const QColor kTickColor = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.6F);

constexpr double kLineWidth = 1.0;
constexpr int kTicks = 20;
// Full scale reaches this part of the height above and below the middle.
constexpr double kFullScaleDivisor = 2.5;
// Far outside every view, and still a number to reckon with.
constexpr float kLargestElement = 100.0F;

float drawable(float element) {
  return std::isnan(element) ? 0.0F : std::clamp(element, -kLargestElement, kLargestElement);
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
  QLinearGradient gradient(0.0, 0.0, 0.0, size.height());
  gradient.setColorAt(0.0, kGradientBottom);
  gradient.setColorAt(1.0, kGradientTop);
  painter.fillRect(QRectF(QPointF(0.0, 0.0), size), gradient);
}

void OVWaveFormDrawing::drawGrid(QPainter& painter, QSizeF size, double bg_scroll_x) {
  drawLevelLines(painter, size);
  drawUprightLines(painter, size, bg_scroll_x);
}

void OVWaveFormDrawing::drawLevelLines(QPainter& painter, QSizeF size) {
  lines_.clear();
  for (int i = 0; i * kGridSpacing < size.height(); ++i) {
    const double y = i * kGridSpacing;
    // The slight slant belongs to the look.
    lines_.emplace_back(0.0, y + 12.5, size.width() + 0.5, y + 12.0);
  }
  strokeLines(painter, kGridColor);
}

void OVWaveFormDrawing::drawUprightLines(QPainter& painter, QSizeF size, double bg_scroll_x) {
  const auto isWhole = [](double number) { return std::floor(number) == number; };
  // Where lines fill whole pixels, nothing needs to be smoothed, and a rectangle is the same.
  const bool fillPixels = isWhole(bg_scroll_x) && isWhole(platform::devicePixelsPerPoint(painter));
  painter.setRenderHint(QPainter::Antialiasing, !fillPixels);
  lines_.clear();
  for (int i = 0; i * kGridSpacing < size.width(); ++i) {
    const double left = bg_scroll_x + i * kGridSpacing;
    if (fillPixels) {
      painter.fillRect(QRectF(left, 0.0, kLineWidth, size.height()), kGridColor);
    } else {
      lines_.emplace_back(left + 0.5, 0.0, left + 0.5, size.height());
    }
  }
  painter.setRenderHint(QPainter::Antialiasing);
  strokeLines(painter, kGridColor);
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
  drawUprightLines(painter, size, bg_scroll_x);
}

void OVWaveFormDrawing::renderStill(QSize pixels, double ratio, QSizeF size) {
  still_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  still_.fill(Qt::black);
  still_.setDevicePixelRatio(ratio);
  stillSize_ = size;
  QPainter painter(&still_);
  platform::useViewCoordinates(painter, size);
  drawGradient(painter, size);
  drawLevelLines(painter, size);
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
  lines_.clear();
  for (int i = 0; i < kTicks; ++i) {
    const double x = i * step;
    const int tickHeight = (static_cast<int>(x) % 20) / 2 + 5;
    lines_.emplace_back(x + 0.5, 0.0, x + 0.5, tickHeight);
  }
  lines_.emplace_back(width - 0.5, 0.0, width - 0.5, 10.0);
  strokeLines(painter, kTickColor);
}

void OVWaveFormDrawing::copyPicture(QPainter& painter, QSizeF viewSize, const QRegion& dirty,
                                    const QImage& picture) {
  const double ratio = picture.devicePixelRatio();
  const QSizeF covered = picture.deviceIndependentSize();
  const bool fits = covered.width() >= viewSize.width() && covered.height() >= viewSize.height() &&
                    covered.width() < viewSize.width() + 1.0 &&
                    covered.height() < viewSize.height() + 1.0;
  painter.save();
  painter.setClipRegion(dirty, Qt::IntersectClip);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (fits) {
    // In device pixels, so that a pixel is copied to a pixel at every ratio.
    painter.scale(1.0 / ratio, 1.0 / ratio);
    painter.drawImage(QRectF(picture.rect()), picture, QRectF(picture.rect()));
  } else {
    painter.drawImage(QRectF(QPointF(0.0, 0.0), viewSize), picture, QRectF(picture.rect()));
  }
  painter.restore();
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

void OVWaveFormDrawing::strokeLines(QPainter& painter, const QColor& color) {
  painter.setPen(platform::viewPen(color, kLineWidth));
  painter.drawLines(lines_.data(), static_cast<int>(lines_.size()));
}
