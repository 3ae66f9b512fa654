#include "controls/buttons/OVIconDrawing.h"

#include <cmath>

#include <QPainter>

#include "platform/views/NamedImage.h"
#include "platform/views/ViewDrawing.h"

namespace {

bool hasFraction(qreal value) {
  return value - std::trunc(value) != 0.0;
}

// The pixels that `area` covers, wholly or in part, in the painter's coordinates.
QRectF coveredPixels(const QPainter& painter, const QRectF& area) {
  const QTransform& toPixels = painter.deviceTransform();
  const QRectF pixels(toPixels.mapRect(area).toAlignedRect());
  return toPixels.inverted().mapRect(pixels);
}

// Whole pixels only: the negative of a partly covered pixel could not be reverted.
void turnIntoNegative(QPainter& painter, const QRectF& area) {
  const bool antialiasing = painter.testRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setCompositionMode(QPainter::CompositionMode_Difference);
  painter.fillRect(area, Qt::white);
  painter.setRenderHint(QPainter::Antialiasing, antialiasing);
}

// Qt has no plus-darker. Adding darkness is adding light to a negative: invert the picture below,
// add the inverted icon, and invert again.
void drawPlusDarker(QPainter& painter, const QRectF& target, const QImage& image) {
  QImage negative = image;
  negative.invertPixels(QImage::InvertRgb);
  const QRectF area = coveredPixels(painter, target);
  turnIntoNegative(painter, area);
  painter.setCompositionMode(QPainter::CompositionMode_Plus);
  painter.drawImage(target, negative);
  turnIntoNegative(painter, area);
}

}  // namespace

QPointF centredIconOrigin(const QSizeF& bounds, const QSizeF& icon) {
  qreal x = bounds.width() * 0.5 - icon.width() * 0.5;
  qreal y = bounds.height() * 0.5 - icon.height() * 0.5;
  if (hasFraction(x)) {
    x += 0.5;
  }
  if (hasFraction(y)) {
    y -= 0.5;
  }
  return {x, y};
}

void drawCentredIcon(QPainter& painter, const QSizeF& bounds, const platform::NamedImage& image,
                     OVIconBlend blend, qreal opacity) {
  if (image.isNull()) {
    return;
  }
  const QSizeF size = image.size();
  const QPointF origin = centredIconOrigin(bounds, size);
  const QRectF target(QPointF(origin.x(), bounds.height() - origin.y() - size.height()), size);
  const QImage& picture = image.forRatio(platform::devicePixelsPerPoint(painter));

  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  if (blend == OVIconBlend::plusDarker) {
    drawPlusDarker(painter, target, picture);
  } else {
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    painter.setOpacity(opacity);
    painter.drawImage(target, picture);
  }
  painter.restore();
}
