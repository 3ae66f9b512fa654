#include "platform/views/ViewDrawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QLineF>
#include <QLinearGradient>
#include <QStringList>

namespace platform {

namespace {

// Past this many line widths, a sharp corner is cut off instead of drawn out to its tip. Qt's "SVG"
// mitre join treats the limit this way; its plain one draws half a tip.
constexpr double kMiterLimit = 10.0;

// No device is so wide or high, and columns up to here are distinguishable.
constexpr double kFarthestColumn = 1 << 24;

// Qt passes a translucent fill of 96 rows or more to helper threads and waits for them, which costs
// more than the fill.
constexpr double kRowsAtOnce = 64.0;

const QColor kGridColor = QColor::fromRgbF(0.145F, 0.32F, 0.356F);
constexpr double kGridLineWidth = 1.0;  // points

bool isWhole(double number) {
  return std::floor(number) == number;
}

// The device pixels that `area` covers wholly or partly, in the painter's coordinates.
QRectF touchedPixels(const QPainter& painter, const QRectF& area) {
  constexpr double kRoundingError = 1e-6;  // of a ratio such as 1.1
  const QTransform& toDevice = painter.deviceTransform();
  const QRectF pixels = toDevice.mapRect(area);
  const QPointF first(std::floor(pixels.left() + kRoundingError),
                      std::floor(pixels.top() + kRoundingError));
  const QPointF last(std::ceil(pixels.right() - kRoundingError),
                     std::ceil(pixels.bottom() - kRoundingError));
  return toDevice.inverted().mapRect(QRectF(first, last));
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

void paintOpaqueGround(QPainter& painter, const QRect& view, const QColor& ground) {
  painter.fillRect(view.adjusted(-1, -1, 1, 1), ground);
}

void drawPixels(QPainter& painter, QPoint corner, const QImage& picture, const QRect& part) {
  painter.save();
  const double pointsPerPixel = 1.0 / painter.device()->devicePixelRatio();
  painter.setWorldTransform(QTransform::fromScale(pointsPerPixel, pointsPerPixel));
  const QPointF at = painter.deviceTransform().inverted().map(QPointF(corner));
  painter.drawImage(QRectF(at, QSizeF(part.size())), picture, QRectF(part));
  painter.restore();
}

void drawViewGradient(QPainter& painter, QSizeF size, const QColor& bottom, const QColor& top) {
  QLinearGradient gradient(0.0, 0.0, 0.0, size.height());
  gradient.setColorAt(0.0, bottom);
  gradient.setColorAt(1.0, top);
  const bool wasSmoothed = painter.testRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.fillRect(touchedPixels(painter, QRectF(QPointF(0.0, 0.0), size)), gradient);
  painter.setRenderHint(QPainter::Antialiasing, wasSmoothed);
}

void drawViewGridLevels(QPainter& painter, QSizeF size) {
  std::vector<QLineF> lines;
  for (int i = 0; i * kViewGridSpacing < size.height(); ++i) {
    const double y = i * kViewGridSpacing;
    // The slight slant is part of the design.
    lines.emplace_back(0.0, y + 12.5, size.width() + 0.5, y + 12.0);
  }
  strokeGrid(painter, lines);
}

void drawViewGridUprights(QPainter& painter, QSizeF size, double offset) {
  // Lines that fill whole pixels need no smoothing: a rectangle gives the same pixels.
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

void fillUprightBar(QPainter& painter, double left, double right, double height,
                    const QColor& color) {
  const QTransform toDevice = painter.deviceTransform();
  const QTransform toView = toDevice.inverted();
  const QRectF bar = toDevice.mapRect(QRectF(left, 0.0, right - left, height));
  const bool fits = std::abs(bar.left()) < kFarthestColumn &&
                    std::abs(bar.right()) < kFarthestColumn && bar.height() < kFarthestColumn;
  if (!fits) {
    return;
  }
  const double top = std::round(bar.top());
  const double bottom = std::round(bar.bottom());
  const int pieces = static_cast<int>(std::ceil((bottom - top) / kRowsAtOnce));
  const bool wasSmoothed = painter.testRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::Antialiasing, false);
  const int end = static_cast<int>(std::ceil(bar.right()));
  for (int column = static_cast<int>(std::floor(bar.left())); column < end; ++column) {
    const double covered =
        std::min(column + 1.0, bar.right()) - std::max<double>(column, bar.left());
    QColor share = color;
    share.setAlphaF(color.alphaF() * static_cast<float>(covered));
    for (int piece = 0; piece < pieces; ++piece) {
      const double row = top + piece * kRowsAtOnce;
      const QRectF pixels(column, row, 1.0, std::min(kRowsAtOnce, bottom - row));
      painter.fillRect(toView.mapRect(pixels), share);
    }
  }
  painter.setRenderHint(QPainter::Antialiasing, wasSmoothed);
}

// Named here one by one: the system may know no substitute, and a style hint alone would come
// before those that are as wide as Arial.
QFont viewFont(int size) {
  QFont font(QStringList{QStringLiteral("Arial"), QStringLiteral("Liberation Sans"),
                         QStringLiteral("Arimo"), QStringLiteral("Helvetica"),
                         QStringLiteral("Nimbus Sans"), QStringLiteral("FreeSans"),
                         QStringLiteral("Noto Sans"), QStringLiteral("DejaVu Sans")});
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(size);
  return font;
}

void drawUprightText(QPainter& painter, QPointF baseline, const QString& text) {
  painter.save();
  painter.translate(baseline);
  painter.scale(1.0, -1.0);
  painter.drawText(QPointF(0.0, 0.0), text);
  painter.restore();
}

}  // namespace platform
