#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QSizeF>

/// Drawing shared by the views: coordinates, pens, and the background with its grid.
///
/// Threads: main. Real-time: not safe.
namespace platform {

/// Converts a painter from Qt's coordinates (points, origin top left, y downward) to view
/// coordinates: points, origin at the bottom left of a view of `viewSize`, y upward. Switches
/// antialiasing on.
void useViewCoordinates(QPainter& painter, QSizeF viewSize);

/// Device pixels per point for a painter on any paint device.
[[nodiscard]] double devicePixelsPerPoint(const QPainter& painter);

/// A solid pen with flat caps and mitre joins (limit 10). `width` is in points.
[[nodiscard]] QPen viewPen(const QColor& color, double width);

/// Call first when painting an opaque view: fills every pixel with `ground`, including edge pixels
/// that the view covers only partly, where points and pixels do not align. Later drawing covers
/// those only partly, and nothing else paints them. The painter uses the widget's coordinates and
/// is clipped to it, as in every paint event.
void paintOpaqueGround(QPainter& painter, const QRect& view, const QColor& ground);

/// Calls `draw` for each rectangle of the region of a paint event, clipped to it, in the widget's
/// coordinates. For pictures: clipped to several rectangles at once, Qt draws them in spans, on its
/// pool of threads, which costs several times as much.
template <typename Draw>
void drawByRectangles(QPainter& painter, const QRegion& dirty, Draw draw) {
  for (const QRect& part : dirty) {
    painter.save();
    painter.setClipRect(part, Qt::IntersectClip);
    draw();
    painter.restore();
  }
}

/// Draws `part` of a picture whose pixels are the device's, its upper left one at the device's
/// pixel `corner`, whatever the painter's coordinates.
void drawPixels(QPainter& painter, QPoint corner, const QImage& picture, const QRect& part);

/// Fills a view of `size`, points, with a gradient from `bottom` to `top`: every device pixel that
/// the view touches, whole, so that nothing below shows through those at its edges.
void drawViewGradient(QPainter& painter, QSizeF size, const QColor& bottom, const QColor& top);

/// Distance between grid lines, points.
inline constexpr double kViewGridSpacing = 24.0;

/// The grid of a view of `size`, in points: horizontal lines, which end half a point lower than
/// they begin, and vertical ones, moved right by `offset`, 0 to the spacing (excluded). All are one
/// point wide.
void drawViewGridLevels(QPainter& painter, QSizeF size);
void drawViewGridUprights(QPainter& painter, QSizeF size, double offset);

/// Fills the vertical bar from `left` to `right` and from 0 to `height`, with smoothed sides. Looks
/// like a vertical line of that width, but avoids the path, scan conversion and threads that Qt
/// uses for tall lines. For painters that only translate and scale; the bar's ends are rounded to
/// whole device pixels.
void fillUprightBar(QPainter& painter, double left, double right, double height,
                    const QColor& color);

/// The views' font: Arial, or what comes nearest to it among the system's fonts. `size` is in
/// points of the views' grid.
[[nodiscard]] QFont viewFont(int size);

/// Draws text whose baseline starts at `baseline`, upright although the y axis points up.
void drawUprightText(QPainter& painter, QPointF baseline, const QString& text);

}  // namespace platform
