#include "controls/OVDisplayWell.h"

#include <QLinearGradient>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

#include "platform/views/RoundShapes.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr qreal kRadius = 5.0;
constexpr qreal kRim = 1.0;          // height of the light rim below the well
constexpr qreal kInnerShadow = 4.0;  // depth of the shadow that the upper edge casts

QLinearGradient vertical(const QRectF& rect, const QColor& top, const QColor& bottom) {
  QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
  gradient.setColorAt(0.0, top);
  gradient.setColorAt(1.0, bottom);
  return gradient;
}

void drawWell(QPainter& painter, const QRectF& bounds) {
  const QColor upper = QColor::fromRgbF(0.13725F, 0.14510F, 0.24314F);
  const QColor lower = QColor::fromRgbF(0.14118F, 0.21176F, 0.27843F);
  const QRectF well = bounds.adjusted(0.0, 0.0, 0.0, -kRim);
  const QPainterPath outline = platform::roundedPath(well, kRadius);
  painter.fillPath(outline.translated(0.0, kRim), QColor(255, 255, 255, 190));
  painter.fillPath(outline, vertical(well, upper, lower));

  QRectF shadow = well;
  shadow.setHeight(kInnerShadow);
  painter.fillPath(outline, vertical(shadow, QColor(0, 0, 0, 90), QColor(0, 0, 0, 0)));
  const QRectF edge = well.adjusted(0.5, 0.5, -0.5, -0.5);
  painter.fillPath(platform::roundedRingPath(edge, kRadius - 0.5, 1.0), QColor(12, 13, 28, 200));
}

}  // namespace

OVDisplayWell::OVDisplayWell(QWidget* parent) : QWidget(parent) {}

void OVDisplayWell::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  platform::drawByRectangles(painter, event->region(), [&] {
    picture_.draw(
        painter, rect(), [this](QPainter& first) { drawWell(first, rect()); }, 1.0);
  });
}
