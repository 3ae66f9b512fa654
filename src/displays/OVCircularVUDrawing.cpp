#include "displays/OVCircularVUDrawing.h"

#include <algorithm>
#include <cmath>

#include "platform/views/RoundShapes.h"

namespace {

constexpr double kDiameterInView = 0.7;  // of the view's shorter side
constexpr float kFaintestAlpha = 0.3F;
constexpr float kOutlineFullLevel = 1.3F;
constexpr double kOutlineWidth = 1.0;

const QColor kFill(89, 156, 171);
const QColor kOutline(255, 255, 255);

double fillOpacity(float level) {
  return std::clamp(level + kFaintestAlpha, 0.0F, 1.0F);
}

double outlineOpacity(float level) {
  return std::clamp(level / kOutlineFullLevel, kFaintestAlpha, 1.0F);
}

}  // namespace

void OVCircularVUDrawing::Circle::draw(QPainter& painter, QPointF center, double radius,
                                       float level) {
  const double reach = radius + kOutlineWidth / 2.0;
  const QRectF area(center - QPointF(reach, reach), QSizeF(2.0 * reach, 2.0 * reach));
  fill.draw(
      painter, area,
      [&](QPainter& first) { first.fillPath(platform::discPath(center, radius), kFill); },
      fillOpacity(level));
  outline.draw(
      painter, area,
      [&](QPainter& first) {
        first.fillPath(platform::ringPath(center, radius, kOutlineWidth), kOutline);
      },
      outlineOpacity(level));
}

void OVCircularVUDrawing::draw(QPainter& painter, QSizeF size, std::span<const float> levels) {
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
  circles_.resize(levels.size());
  for (std::size_t channel = 0; channel < levels.size(); ++channel) {
    const float level = std::isnan(levels[channel]) ? 0.0F : levels[channel];
    circles_[channel].draw(painter, center, radius, level);
    center += step;
  }
}
