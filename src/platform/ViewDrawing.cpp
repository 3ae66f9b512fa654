#include "platform/ViewDrawing.h"

#include <cmath>

namespace platform {

namespace {

// Past this many line widths, a sharp corner is cut off instead of drawn out to its tip. That is
// how the toolkit's "SVG" mitre join understands the limit; its plain one draws half a tip.
constexpr double kMiterLimit = 10.0;

}  // namespace

void useViewCoordinates(QPainter& painter, QSizeF viewSize) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(0.0, viewSize.height());
  painter.scale(1.0, -1.0);
}

double devicePixelsPerPoint(const QPainter& painter) {
  const QTransform& transform = painter.deviceTransform();
  return std::hypot(transform.m11(), transform.m12());
}

QPen viewPen(const QColor& color, double width) {
  QPen pen(color, width, Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin);
  pen.setMiterLimit(kMiterLimit);
  return pen;
}

void drawUprightText(QPainter& painter, QPointF baseline, const QString& text) {
  painter.save();
  painter.translate(baseline);
  painter.scale(1.0, -1.0);
  painter.drawText(QPointF(0.0, 0.0), text);
  painter.restore();
}

}  // namespace platform
