#include "controls/OVTransportBackgroundView.h"

#include <QPainter>

#include "controls/OVPanelDrawing.h"
#include "platform/views/ViewDrawing.h"

OVTransportBackgroundView::OVTransportBackgroundView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void OVTransportBackgroundView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  platform::paintOpaqueGround(painter, rect(), panelGround());
  drawPanel(painter, size(), renderBottomShadow_);
}
