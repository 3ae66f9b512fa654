#include "platform/ViewDrawing.h"

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

// Past this many line widths, a sharp corner is cut off instead of drawn out to its tip. That is
// how the toolkit's "SVG" mitre join understands the limit; its plain one draws half a tip.
constexpr double kMiterLimit = 10.0;

// No device is so wide, and columns up to here are told apart.
constexpr double kFarthestColumn = 1 << 24;

// The toolkit gives a translucent fill of 96 rows and more to helper threads and waits for them,
// which costs more than the fill.
constexpr double kRowsAtOnce = 64.0;

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

void fillUprightBar(QPainter& painter, double left, double right, double height,
                    const QColor& color) {
  const QTransform toDevice = painter.deviceTransform();
  const QTransform toView = toDevice.inverted();
  const QRectF bar = toDevice.mapRect(QRectF(left, 0.0, right - left, height));
  if (!(std::max(std::abs(bar.left()), std::abs(bar.right())) < kFarthestColumn)) {
    return;
  }
  const double bottom = std::round(bar.bottom());
  const bool wasSmoothed = painter.testRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (double column = std::floor(bar.left()); column < bar.right(); ++column) {
    const double covered = std::min(column + 1.0, bar.right()) - std::max(column, bar.left());
    QColor share = color;
    share.setAlphaF(color.alphaF() * static_cast<float>(covered));
    for (double row = std::round(bar.top()); row < bottom; row += kRowsAtOnce) {
      const QRectF pixels(column, row, 1.0, std::min(kRowsAtOnce, bottom - row));
      painter.fillRect(toView.mapRect(pixels), share);
    }
  }
  painter.setRenderHint(QPainter::Antialiasing, wasSmoothed);
}

void drawUprightText(QPainter& painter, QPointF baseline, const QString& text) {
  painter.save();
  painter.translate(baseline);
  painter.scale(1.0, -1.0);
  painter.drawText(QPointF(0.0, 0.0), text);
  painter.restore();
}

}  // namespace platform
