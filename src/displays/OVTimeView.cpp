#include "displays/OVTimeView.h"

#include <QPainter>

#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"

OVTimeView::OVTimeView(QWidget* parent) : QWidget(parent) {
  platform::describeView(this, platform::localized("Position and length"), QAccessible::StaticText);
}

double OVTimeView::currentTimeInSeconds() const {
  return currentTimeInSeconds_.load(std::memory_order_relaxed);
}

void OVTimeView::setCurrentTimeInSeconds(double seconds) {
  currentTimeInSeconds_.store(seconds, std::memory_order_relaxed);
}

double OVTimeView::durationInSeconds() const {
  return durationInSeconds_.load(std::memory_order_relaxed);
}

void OVTimeView::setDurationInSeconds(double seconds) {
  durationInSeconds_.store(seconds, std::memory_order_relaxed);
}

QString OVTimeView::text() const {
  return OVTimeText::formatTimes(currentTimeInSeconds(), durationInSeconds());
}

void OVTimeView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  drawStringAttributes_.draw(painter, size(), text());
}
