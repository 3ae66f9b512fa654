#include "displays/OVCircularVUView.h"

#include <QPainter>

#include "platform/views/ViewDrawing.h"

namespace {

constexpr double kPollingFrequency = 30.0;

}  // namespace

OVCircularVUView::OVCircularVUView(QWidget* parent) : OVVUView(parent, kPollingFrequency) {}

void OVCircularVUView::paintEvent(QPaintEvent*) {
  if (!levelData() || levelData()->empty()) {
    setLevelData({0.0F, 0.0F});
  }
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawing_.draw(painter, size(), *levelData());
}
