#include "displays/OVAnalogVUDrawing.h"

#include <cmath>

#include "platform/views/ViewDrawing.h"

namespace {

constexpr double kDegreesOfFullScale = 60.0;
constexpr double kDegreesAtSilence = -45.0;
constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kNeedleLength = 100.0;  // points
constexpr double kNeedleWidth = 3.0;     // points
constexpr double kTipOrigin = 110.0;     // points from a dial's left edge

const QColor kNeedleColor = QColor::fromRgbF(1.0F, 0.0F, 0.0F);

void drawDial(QPainter& painter, const platform::NamedImage& background, double left) {
  const QSizeF size = background.size();
  painter.save();
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  // Upright, although the y axis points upward.
  painter.translate(left, size.height());
  painter.scale(1.0, -1.0);
  painter.drawImage(QRectF(QPointF(0.0, 0.0), size),
                    background.forRatio(platform::devicePixelsPerPoint(painter)));
  painter.restore();
}

}  // namespace

double analogNeedleAngle(float level) {
  return (static_cast<double>(level) * kDegreesOfFullScale + kDegreesAtSilence) * kRadiansPerDegree;
}

QPointF analogNeedleTip(float level, double dialWidth, std::size_t channel) {
  const double angle = analogNeedleAngle(level);
  const double left = static_cast<double>(channel) * dialWidth;
  return {std::sin(angle) * kNeedleLength + kTipOrigin + left, std::cos(angle) * kNeedleLength};
}

void drawAnalogVU(QPainter& painter, const platform::NamedImage& background,
                  std::span<const float> levels) {
  const double width = background.size().width();
  for (std::size_t channel = 0; channel < levels.size(); ++channel) {
    const double left = static_cast<double>(channel) * width;
    if (!background.isNull()) {
      drawDial(painter, background, left);
    }
    const QPointF tip = analogNeedleTip(levels[channel], width, channel);
    if (std::isfinite(tip.x()) && std::isfinite(tip.y())) {
      painter.setPen(platform::viewPen(kNeedleColor, kNeedleWidth));
      painter.drawLine(QPointF(width * 0.5 + left, 0.0), tip);
    }
  }
}
