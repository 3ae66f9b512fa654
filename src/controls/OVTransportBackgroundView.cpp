#include "controls/OVTransportBackgroundView.h"

#include <QPainter>

#include "controls/OVPanelDrawing.h"

OVTransportBackgroundView::OVTransportBackgroundView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void OVTransportBackgroundView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  drawPanel(painter, size(), renderBottomShadow_);
}
