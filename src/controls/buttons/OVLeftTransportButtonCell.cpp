#include "controls/buttons/OVLeftTransportButtonCell.h"

#include "controls/buttons/OVTransportArtwork.h"

void OVLeftTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                   const QWidget* /*inView*/) const {
  drawLeftTypeButtonWithFrame(painter, frame, isHighlighted());
}
