#include "controls/OVPanelDrawing.h"

#include <QLinearGradient>
#include <QPainter>

#include "platform/views/ViewDrawing.h"

namespace {

QColor deviceWhite(float white) {
  return QColor::fromRgbF(white, white, white);
}

constexpr float kDarkEnd = 0.83F;
constexpr float kLightEnd = 0.90F;

}  // namespace

QColor panelGround() {
  return deviceWhite(kDarkEnd);
}

void drawPanel(QPainter& painter, const QSizeF& bounds, bool bottomShadow) {
  painter.save();
  platform::useViewCoordinates(painter, bounds);

  QLinearGradient gradient(0.0, 0.0, 0.0, bounds.height());
  gradient.setColorAt(0.0, deviceWhite(kDarkEnd));
  gradient.setColorAt(1.0, deviceWhite(kLightEnd));
  painter.fillRect(QRectF(QPointF(), bounds), gradient);
  painter.fillRect(QRectF(0.0, bounds.height() - 1.0, bounds.width(), 1.0), deviceWhite(1.0F));
  if (bottomShadow) {
    painter.fillRect(QRectF(0.0, 0.0, bounds.width(), 1.3), deviceWhite(0.3F));
  }
  painter.restore();
}
