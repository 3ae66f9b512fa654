#pragma once

#include <span>

#include <QPainter>
#include <QPointF>

#include "platform/views/NamedImage.h"

/// The angle of the needle from the vertical, in radians, to the right positive: 60 × level − 45
/// degrees, so −45° at silence, upright at 0.75, 15° at full scale and on beyond it without a stop.
[[nodiscard]] double analogNeedleAngle(float level);

/// Where the needle of a channel ends in a row of dials of a width, points: 100 away from a fixed
/// 110 in each dial, while the needle turns around the middle of the dial's bottom edge. The two
/// agree where dials are 220 wide.
[[nodiscard]] QPointF analogNeedleTip(float level, double dialWidth, std::size_t channel);

/// Draws one dial a channel into a painter in view coordinates, from the left edge on: the image in
/// place of what lies below, and on it a red needle, 3 points wide. Of a level that is not a number
/// only the dial is drawn.
///
/// Threads: main. Real-time: not safe.
void drawAnalogVU(QPainter& painter, const platform::NamedImage& background,
                  std::span<const float> levels);
