#include "controls/buttons/OVRoundedTransportButton.h"

#include "controls/buttons/OVTransportArtwork.h"

void OVRoundedTransportButton::drawBezel(QPainter& painter, const QRectF& frame) const {
  if (type_ == 1) {
    drawLeftTypeButtonWithFrame(painter, frame, isHighlighted());
  } else {
    drawRightTypeButtonWithFrame(painter, frame, isHighlighted());
  }
}
