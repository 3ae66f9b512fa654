#include "displays/OVCircularVUDrawing.h"

#include <algorithm>
#include <cmath>

#include "platform/views/RoundShapes.h"

namespace {

constexpr double kDiameterInView = 0.7;  // of the view's shorter side
constexpr float kFaintestAlpha = 0.3F;
constexpr float kOutlineFullLevel = 1.3F;
constexpr double kOutlineWidth = 1.0;

QColor fillColor(float level) {
  return QColor::fromRgbF(89.0F / 255.0F, 156.0F / 255.0F, 171.0F / 255.0F,
                          std::clamp(level + kFaintestAlpha, 0.0F, 1.0F));
}

QColor outlineColor(float level) {
  return QColor::fromRgbF(1.0F, 1.0F, 1.0F,
                          std::clamp(level / kOutlineFullLevel, kFaintestAlpha, 1.0F));
}

}  // namespace

void drawCircularVU(QPainter& painter, QSizeF size, std::span<const float> levels) {
  const double width = size.width();
  const double height = size.height();
  const auto channels = static_cast<double>(levels.size());
  const double radius = std::min(width, height) * kDiameterInView * 0.5;
  const bool isRow = width > height;
  const QPointF step = isRow ? QPointF(width / channels, 0.0) : QPointF(0.0, height / channels);
  QPointF center(width / 2.0, height / 2.0);
  if (isRow) {
    center.rx() /= channels;
  } else {
    center.ry() /= channels;
  }
  for (const float measured : levels) {
    const float level = std::isnan(measured) ? 0.0F : measured;
    painter.fillPath(platform::discPath(center, radius), fillColor(level));
    painter.fillPath(platform::ringPath(center, radius, kOutlineWidth), outlineColor(level));
    center += step;
  }
}
