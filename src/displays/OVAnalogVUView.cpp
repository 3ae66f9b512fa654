#include "displays/OVAnalogVUView.h"

#include <QPainter>

#include "displays/OVAnalogVUDrawing.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr double kPollingFrequency = 60.0;

}  // namespace

OVAnalogVUView::OVAnalogVUView(QWidget* parent)
    : OVVUView(parent, kPollingFrequency), backgroundImage_(QStringLiteral("vumeter.png")) {}

QSize OVAnalogVUView::sizeHint() const {
  const QSize dial = dialSize().toSize();
  return {2 * dial.width(), dial.height()};
}

void OVAnalogVUView::paintEvent(QPaintEvent*) {
  if (!levelData() || levelData()->empty()) {
    return;
  }
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawAnalogVU(painter, backgroundImage_, *levelData());
}
