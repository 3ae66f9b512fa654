#include "displays/OVFFTView.h"

#include <QPainter>

#include "platform/mainloop/Localization.h"
#include "platform/views/OpaqueGround.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"

OVFFTView::OVFFTView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  platform::describeView(this, platform::localized("Spectrum"), QAccessible::Graphic);
}

std::uint64_t OVFFTView::dataSize() const {
  const platform::MutexLock lock(lock_);
  return size_;
}

void OVFFTView::setSize(std::uint64_t size) {
  const platform::MutexLock lock(lock_);
  size_ = size;
}

std::vector<float> OVFFTView::magnitudes() const {
  const platform::MutexLock lock(lock_);
  return data_;
}

void OVFFTView::setData(const float* magnitudes) {
  const platform::MutexLock lock(lock_);
  data_.assign(magnitudes, magnitudes + size_);
}

void OVFFTView::drawGradient(QPainter& painter) {
  OVFFTDrawing::drawGradient(painter, size());
}

void OVFFTView::drawGrid(QPainter& painter) {
  OVFFTDrawing::drawGrid(painter, size());
}

void OVFFTView::paintEvent(QPaintEvent* /*event*/) {
  {
    const platform::MutexLock lock(lock_);
    drawnData_ = data_;
  }
  QPainter painter(this);
  platform::paintOpaqueGround(painter, rect(), OVFFTDrawing::background());
  platform::useViewCoordinates(painter, size());
  drawing_.drawSpectrum(painter, size(), drawnData_);
}
