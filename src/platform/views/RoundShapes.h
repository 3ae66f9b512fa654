#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>

/// Circles and round corners as polygons so fine that their edges are exact at every scale up to 4.
/// Qt flattens small curves coarsely: at one device pixel per point, a circle that it draws itself
/// lacks up to a tenth of its ink. Fill these with antialiasing; lines are rings to be filled too.
///
/// Threads: any. Real-time: not safe.
namespace platform {

/// Radii of the two corners at either end of a rectangle.
struct EndRadii {
  double left;
  double right;
};

[[nodiscard]] QPainterPath discPath(QPointF center, double radius);

/// A line of `width` along a circle.
[[nodiscard]] QPainterPath ringPath(QPointF center, double radius, double width);

/// A rectangle with round corners. Radii that do not fit are reduced; an empty rectangle gives an
/// empty path.
[[nodiscard]] QPainterPath roundedPath(const QRectF& rect, EndRadii radii);
[[nodiscard]] QPainterPath roundedPath(const QRectF& rect, double radius);

/// A line of `width` along its outline.
[[nodiscard]] QPainterPath roundedRingPath(const QRectF& rect, EndRadii radii, double width);
[[nodiscard]] QPainterPath roundedRingPath(const QRectF& rect, double radius, double width);

}  // namespace platform
