#include "waveform/views/OVRecordingTickView.h"

#include <QPaintEvent>
#include <QPainter>

#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"
#include "platform/views/ViewRedraw.h"
#include "waveform/views/OVRecordingTickDrawing.h"

OVRecordingTickView::OVRecordingTickView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  platform::describeView(this, platform::localized("Recording position"), QAccessible::Indicator);
}

void OVRecordingTickView::setPosition(double position) {
  if (position == position_) {
    return;
  }
  // With the marker's strip, which is redrawn from the same queue: one repaint, not two.
  const QPointer<OVRecordingTickView> view(this);
  requestRedraw(view, strip());
  position_ = position;
  requestRedraw(view, strip());
}

QRect OVRecordingTickView::strip() const {
  return recordingTickBounds(size(), position_).toAlignedRect();
}

void OVRecordingTickView::paintEvent(QPaintEvent* event) {
  if (!event->region().intersects(strip())) {
    return;  // the marker below was redrawn elsewhere
  }
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawRecordingTick(painter, size(), position_);
}
