#include "controls/buttons/OVClippingLamp.h"

#include <QPainter>
#include <QRadialGradient>

#include "platform/mainloop/Localization.h"
#include "platform/views/RoundShapes.h"
#include "platform/views/ViewAccessibility.h"

namespace {

constexpr double kRadius = 3.5;       // points
constexpr double kGlowRadius = 6.0;   // points
constexpr double kFocusRadius = 3.0;  // points
constexpr double kPressedOpacity = 0.6;
const QColor kMiddle(255, 138, 118);
const QColor kBall(250, 58, 42);
const QColor kRim(214, 30, 22);
const QColor kGlow(255, 66, 48, 150);

void drawGlow(QPainter& painter, QPointF center) {
  QRadialGradient glow(center, kGlowRadius);
  QColor faded = kGlow;
  faded.setAlpha(0);
  glow.setColorAt(kRadius / kGlowRadius * 0.8, kGlow);
  glow.setColorAt(1.0, faded);
  painter.fillPath(platform::discPath(center, kGlowRadius), glow);
}

void drawBall(QPainter& painter, QPointF center) {
  QRadialGradient ball(center - QPointF(0.0, kRadius * 0.4), kRadius * 1.5);
  ball.setColorAt(0.0, kMiddle);
  ball.setColorAt(0.5, kBall);
  ball.setColorAt(1.0, kRim);
  painter.fillPath(platform::discPath(center, kRadius), ball);
}

}  // namespace

OVClippingLamp::OVClippingLamp(QWidget* parent) : OVTrackingButton(parent) {
  setAccessibleName(platform::localized("Clipping"));
  setVisible(false);
}

void OVClippingLamp::light(const QString& reason) {
  setToolTip(reason);
  platform::announce(this, reason);
  setVisible(true);
}

void OVClippingLamp::turnOff() {
  cancelPress();
  setVisible(false);
}

void OVClippingLamp::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(isHighlighted() ? kPressedOpacity : 1.0);
  const QPointF center = QRectF(rect()).center();
  drawGlow(painter, center);
  drawBall(painter, center);
  painter.setOpacity(1.0);
  focusRing().draw(painter, rect(), kFocusRadius, platform::FocusRing::Ground::dark);
}
