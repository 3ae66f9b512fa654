#include "controls/OVBackgroundBox.h"

#include <QPainter>

#include "controls/OVPanelDrawing.h"
#include "platform/views/ViewDrawing.h"

OVBackgroundBox::OVBackgroundBox(QWidget* parent) : QFrame(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void OVBackgroundBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  platform::paintOpaqueGround(painter, rect(), panelGround());
  drawPanel(painter, size(), false);
}
