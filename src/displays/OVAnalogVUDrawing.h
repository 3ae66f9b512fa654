#pragma once

#include <span>

#include <QPainter>
#include <QPointF>

#include "platform/views/NamedImage.h"

/// The angle of the needle from the vertical, in radians, positive to the right: 60 × level − 45
/// degrees. That is −45° at silence, upright at 0.75 and 15° at full scale; it does not stop there.
[[nodiscard]] double analogNeedleAngle(float level);

/// The tip of a channel's needle in a row of dials, in points: 100 from the point that is 110 right
/// of the dial's bottom left corner. The needle is drawn from the middle of the dial's bottom edge,
/// which is the same point only if dials are 220 wide.
[[nodiscard]] QPointF analogNeedleTip(float level, double dialWidth, std::size_t channel);

/// Draws one dial per channel into a painter in view coordinates, from the left edge on: the image,
/// which replaces what lies below, and on it a red needle, 3 points wide. A level that is not
/// finite has no needle.
///
/// Threads: main. Real-time: not safe.
void drawAnalogVU(QPainter& painter, const platform::NamedImage& background,
                  std::span<const float> levels);
