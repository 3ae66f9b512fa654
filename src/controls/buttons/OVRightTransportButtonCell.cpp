#include "controls/buttons/OVRightTransportButtonCell.h"

#include "controls/buttons/OVTransportArtwork.h"

void OVRightTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                    const QWidget* /*inView*/) const {
  drawRightTypeButtonWithFrame(painter, frame, isHighlighted());
}
