#include "controls/buttons/OVHoverButton.h"

#include <QPainter>

#include "controls/buttons/OVIconDrawing.h"

namespace {

constexpr double kFocusRadius = 5.0;  // points; encloses the picture's own corners

}  // namespace

OVHoverButton::OVHoverButton(QWidget* parent) : OVTrackingButton(parent) {
  setIsSwitch(true);
}

void OVHoverButton::setOnImage(const QString& name) {
  onImage_ = platform::NamedImage(name);
}

void OVHoverButton::setOffImage(const QString& name) {
  offImage_ = platform::NamedImage(name);
}

void OVHoverButton::setHoverImage(const QString& name) {
  hoverImage_ = platform::NamedImage(name);
}

void OVHoverButton::enterEvent(QEnterEvent* event) {
  OVTrackingButton::enterEvent(event);
  setHovering(true);
}

void OVHoverButton::leaveEvent(QEvent* event) {
  OVTrackingButton::leaveEvent(event);
  setHovering(false);
}

void OVHoverButton::setHovering(bool isHovering) {
  if (isEnabled()) {
    isHovering_ = isHovering;
    update();
  }
}

void OVHoverButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  drawImage(painter);
  focusRing().draw(painter, rect(), kFocusRadius, platform::FocusRing::Ground::light);
}

void OVHoverButton::drawImage(QPainter& painter) const {
  const platform::NamedImage& whileOff = isHovering_ ? hoverImage_ : offImage_;
  const auto blend = isHighlighted() ? OVIconBlend::plusDarker : OVIconBlend::sourceAtop;
  drawCentredIcon(painter, size(), isOn() ? onImage_ : whileOff, blend, 1.0);
}
