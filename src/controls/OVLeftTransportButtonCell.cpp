#include "controls/OVLeftTransportButtonCell.h"

#include "controls/OVTransportArtwork.h"

void OVLeftTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                   const QWidget* /*inView*/) const {
  drawLeftTypeButtonWithFrame(painter, frame, isHighlighted());
}
