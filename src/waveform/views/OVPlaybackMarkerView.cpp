#include "waveform/views/OVPlaybackMarkerView.h"

#include <QPainter>

#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"
#include "waveform/views/OVPlaybackMarkerDrawing.h"

OVPlaybackMarkerView::OVPlaybackMarkerView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  platform::describeView(this, platform::localized("Playback marker"), QAccessible::Indicator);
}

void OVPlaybackMarkerView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawPlaybackMarker(painter, size(), position_, audioLevel_);
}
