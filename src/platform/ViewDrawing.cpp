#include "platform/ViewDrawing.h"

#include <cmath>
#include <vector>

#include <QLineF>
#include <QLinearGradient>

namespace platform {

namespace {

// Past this many line widths, a sharp corner is cut off instead of drawn out to its tip. That is
// how the toolkit's "SVG" mitre join understands the limit; its plain one draws half a tip.
constexpr double kMiterLimit = 10.0;

const QColor kGridColor = QColor::fromRgbF(0.145F, 0.32F, 0.356F);
constexpr double kGridLineWidth = 1.0;  // points

bool isWhole(double number) {
  return std::floor(number) == number;
}

void strokeGrid(QPainter& painter, const std::vector<QLineF>& lines) {
  painter.setPen(viewPen(kGridColor, kGridLineWidth));
  painter.drawLines(lines.data(), static_cast<int>(lines.size()));
}

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

void drawViewGradient(QPainter& painter, QSizeF size, const QColor& bottom, const QColor& top) {
  QLinearGradient gradient(0.0, 0.0, 0.0, size.height());
  gradient.setColorAt(0.0, bottom);
  gradient.setColorAt(1.0, top);
  painter.fillRect(QRectF(QPointF(0.0, 0.0), size), gradient);
}

void drawViewGridLevels(QPainter& painter, QSizeF size) {
  std::vector<QLineF> lines;
  for (int i = 0; i * kViewGridSpacing < size.height(); ++i) {
    const double y = i * kViewGridSpacing;
    // The slight slant belongs to the look.
    lines.emplace_back(0.0, y + 12.5, size.width() + 0.5, y + 12.0);
  }
  strokeGrid(painter, lines);
}

void drawViewGridUprights(QPainter& painter, QSizeF size, double offset) {
  // Where lines fill whole pixels, nothing needs to be smoothed, and a rectangle is the same.
  const bool fillPixels = isWhole(offset) && isWhole(devicePixelsPerPoint(painter));
  painter.setRenderHint(QPainter::Antialiasing, !fillPixels);
  std::vector<QLineF> lines;
  for (int i = 0; i * kViewGridSpacing < size.width(); ++i) {
    const double left = offset + i * kViewGridSpacing;
    if (fillPixels) {
      painter.fillRect(QRectF(left, 0.0, kGridLineWidth, size.height()), kGridColor);
    } else {
      lines.emplace_back(left + 0.5, 0.0, left + 0.5, size.height());
    }
  }
  painter.setRenderHint(QPainter::Antialiasing);
  strokeGrid(painter, lines);
}

void drawUprightText(QPainter& painter, QPointF baseline, const QString& text) {
  painter.save();
  painter.translate(baseline);
  painter.scale(1.0, -1.0);
  painter.drawText(QPointF(0.0, 0.0), text);
  painter.restore();
}

}  // namespace platform
