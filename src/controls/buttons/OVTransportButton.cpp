#include "controls/buttons/OVTransportButton.h"

#include <QPainter>

#include "controls/buttons/OVBezelFrameOfReference.h"
#include "controls/buttons/OVIconDrawing.h"
#include "controls/buttons/OVTransportArtwork.h"

namespace {

// The focus ring around the icon, in points; it also fits into the round ends.
constexpr double kFocusInsetX = 8.0;
constexpr double kFocusInsetY = 5.0;
constexpr double kFocusRadius = 5.0;

}  // namespace

OVTransportButton::OVTransportButton(QWidget* parent) : OVTrackingButton(parent) {}

void OVTransportButton::setOnImage(const QString& name) {
  _onImage = platform::NamedImage(name);
}

void OVTransportButton::setOffImage(const QString& name) {
  _offImage = platform::NamedImage(name);
}

void OVTransportButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const OVBezelFrameOfReference reference(*this);
  painter.save();
  painter.setTransform(reference.toWidget, true);
  drawBezel(painter, reference.bezel);
  painter.restore();
  drawImage(painter);
  focusRing().draw(
      painter, QRectF(rect()).adjusted(kFocusInsetX, kFocusInsetY, -kFocusInsetX, -kFocusInsetY),
      kFocusRadius, platform::FocusRing::Ground::light);
}

void OVTransportButton::drawBezel(QPainter& painter, const QRectF& frame) const {
  drawBezelWithFrame(painter, frame, isHighlighted());
}

void OVTransportButton::drawImage(QPainter& painter) const {
  const platform::NamedImage& image = isOn() ? _onImage : _offImage;
  auto blend = OVIconBlend::sourceAtop;
  qreal opacity = 1.0;
  if (isHighlighted() && isOn()) {
    blend = OVIconBlend::plusDarker;
  } else if (!isEnabled()) {
    opacity = 0.5;
  } else if (isOn()) {
    opacity = alpha_;
  }
  drawCentredIcon(painter, size(), image, blend, opacity);
}
