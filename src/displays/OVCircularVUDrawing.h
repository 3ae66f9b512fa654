#pragma once

#include <span>

#include <QPainter>
#include <QSizeF>

/// Draws one circle per channel into a painter in view coordinates: side by side in a wide view,
/// one above the other (the first at the bottom) in a tall or square one. The opacity follows the
/// linear level: level + 0.3 for the fill, level / 1.3 but at least 0.3 for the outline, both at
/// most 1. A NaN level draws as silence. No background is painted.
///
/// Threads: main. Real-time: not safe.
void drawCircularVU(QPainter& painter, QSizeF size, std::span<const float> levels);
