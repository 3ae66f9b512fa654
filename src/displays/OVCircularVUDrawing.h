#pragma once

#include <span>

#include <QPainter>
#include <QSizeF>

/// Draws one circle a channel into a painter in view coordinates, side by side in a wide view, one
/// above the other (the first at the bottom) in a high or square one. The circle's opacity follows
/// the linear level: the filling's is level + 0.3, the outline's level / 1.3 but at least 0.3, both
/// at most 1. A level that is not a number draws as silence. No background is painted.
///
/// Threads: main. Real-time: not safe.
void drawCircularVU(QPainter& painter, QSizeF size, std::span<const float> levels);
