#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>

namespace platform {

/// The first thing that a view paints which declares itself opaque: fills every pixel of it with
/// `ground`, also those at its edges that it covers in part, where points and pixels do not meet.
/// What is drawn later covers these only in part, and nothing else paints them. The painter stands
/// in the widget's own coordinates and is clipped to it, as in every paint event.
///
/// Threads: main. Real-time: not safe.
void paintOpaqueGround(QPainter& painter, const QRect& view, const QColor& ground);

}  // namespace platform
