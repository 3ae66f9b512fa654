#include "waveform/OVPlaybackMarkerView.h"

#include <QPainter>

#include "platform/Localization.h"
#include "platform/ViewAccessibility.h"
#include "platform/ViewDrawing.h"
#include "waveform/OVPlaybackMarkerDrawing.h"

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
