#pragma once

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRect>
#include <QSizeF>

/// What views share when they draw: their coordinates, their pens, and the ground with its grid.
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

/// The first thing that a view paints which declares itself opaque: fills every pixel of it with
/// `ground`, also those at its edges that it covers in part, where points and pixels do not meet.
/// What is drawn later covers these only in part, and nothing else paints them. The painter stands
/// in the widget's own coordinates and is clipped to it, as in every paint event.
void paintOpaqueGround(QPainter& painter, const QRect& view, const QColor& ground);

/// Fills a view of `size`, points, with a gradient from `bottom` to `top`.
void drawViewGradient(QPainter& painter, QSizeF size, const QColor& bottom, const QColor& top);

/// Distance of the grid's lines, points.
inline constexpr double kViewGridSpacing = 24.0;

/// The grid of a view of `size`, points: level lines, which end half a point lower than they begin,
/// and upright ones, which `offset`, 0 to the spacing (excluded), moves to the right. All stroked
/// one point wide.
void drawViewGridLevels(QPainter& painter, QSizeF size);
void drawViewGridUprights(QPainter& painter, QSizeF size, double offset);

/// Fills the upright bar from `left` to `right` and from 0 to `height`, smoothed at both sides: the
/// same as an upright line of its width, without the path, its scan and the threads that the
/// toolkit calls in for a high one. For painters that only move and scale; the ends of the bar are
/// rounded to whole device pixels.
void fillUprightBar(QPainter& painter, double left, double right, double height,
                    const QColor& color);

/// Draws text whose baseline begins at `baseline`, upright although the y axis points upward.
void drawUprightText(QPainter& painter, QPointF baseline, const QString& text);

}  // namespace platform
