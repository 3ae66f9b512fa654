#include "controls/OVBackgroundBox.h"

#include <QPainter>

#include "controls/OVPanelDrawing.h"

OVBackgroundBox::OVBackgroundBox(QWidget* parent) : QFrame(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void OVBackgroundBox::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  drawPanel(painter, size(), false);
}
