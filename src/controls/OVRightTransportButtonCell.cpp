#include "controls/OVRightTransportButtonCell.h"

#include "controls/OVTransportArtwork.h"

void OVRightTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                    const QWidget* /*inView*/) const {
  drawRightTypeButtonWithFrame(painter, frame, isHighlighted());
}
