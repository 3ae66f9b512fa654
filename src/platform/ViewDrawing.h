#pragma once

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QSizeF>

/// What all views share when they draw: their coordinates and their pens.
///
/// Threads: main. Real-time: not safe.
namespace platform {

/// Turns a painter that stands in Qt's coordinates (points, origin top left, y downward) to those
/// of the views: points, origin at the bottom left of a view of `viewSize`, y upward. Switches
/// antialiasing on.
void useViewCoordinates(QPainter& painter, QSizeF viewSize);

/// Device pixels to a point where a painter draws, whatever it is really drawing on.
[[nodiscard]] double devicePixelsPerPoint(const QPainter& painter);

/// A solid pen with flat caps and mitre joins (limit 10). `width` is in points.
[[nodiscard]] QPen viewPen(const QColor& color, double width);

/// Fills the upright bar from `left` to `right` and from 0 to `height`, smoothed at both sides: the
/// same as an upright line of its width, without the path, its scan and the threads that the
/// toolkit calls in for a high one. For painters that only move and scale; the ends of the bar are
/// rounded to whole device pixels.
void fillUprightBar(QPainter& painter, double left, double right, double height,
                    const QColor& color);

/// Draws text whose baseline begins at `baseline`, upright although the y axis points upward.
void drawUprightText(QPainter& painter, QPointF baseline, const QString& text);

}  // namespace platform
