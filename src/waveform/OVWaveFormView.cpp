#include "waveform/OVWaveFormView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include "platform/Localization.h"
#include "platform/ViewAccessibility.h"
#include "platform/ViewDrawing.h"

namespace {

// Whole pixels that cover a length; a ratio such as 1.1 must not round one up by its last bit.
int pixelsToCover(int points, double ratio) {
  return static_cast<int>(std::ceil(points * ratio - 1e-6));
}

QPointF nearestPointInside(const QWidget& view, QPointF position) {
  const double height = view.height();
  return {std::clamp(position.x(), 0.0, static_cast<double>(view.width())),
          height - std::clamp(position.y(), 0.0, height)};
}

double fractionOfWidth(const QWidget& view, double x) {
  return view.width() > 0 ? x / view.width() : 0.0;
}

}  // namespace

OVWaveFormView::OVWaveFormView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  platform::describeView(this, platform::localized("Waveform"), QAccessible::Graphic);
}

OVWaveFormView::~OVWaveFormView() = default;

std::shared_ptr<OVWaveformSummary> OVWaveFormView::waveForm() const {
  const std::lock_guard guard(waveFormLock_);
  return waveForm_;
}

void OVWaveFormView::setWaveForm(std::shared_ptr<OVWaveformSummary> waveForm) {
  const std::lock_guard guard(waveFormLock_);
  // The former summary leaves with the parameter, after the lock.
  waveForm_.swap(waveForm);
}

bool OVWaveFormView::shouldRedrawWaveform() const {
  return shouldRedrawWaveform_.load(std::memory_order_relaxed);
}

void OVWaveFormView::setShouldRedrawWaveform(bool should) {
  shouldRedrawWaveform_.store(should, std::memory_order_relaxed);
}

void OVWaveFormView::setDelegate(std::weak_ptr<OVWaveFormViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void OVWaveFormView::drawGradient(QPainter& painter) {
  drawing_.drawGradient(painter, size());
}

void OVWaveFormView::drawGrid(QPainter& painter) {
  if (scrollBack_) {
    bg_scroll_x_ = OVWaveFormDrawing::nextGridOffset(bg_scroll_x_);
  }
  drawing_.drawGrid(painter, size(), bg_scroll_x_);
}

void OVWaveFormView::drawWaveform(QPainter& painter, double alpha) {
  if (const auto summary = waveForm()) {
    summary->copyElementsInto(elements_);
    drawing_.drawWaveform(painter, size(), elements_, alpha);
  }
}

void OVWaveFormView::drawTimescale(QPainter& painter) {
  drawing_.drawTimescale(painter, size());
}

void OVWaveFormView::paintEvent(QPaintEvent* event) {
  const auto summary = waveForm();
  const std::uint64_t elementCount = summary ? summary->elementCount() : 0;
  const bool mayRender = !summary || !summary->isRegenerating() || overrideRegenerationCheck_;
  if (mayRender && needsRendering(elementCount)) {
    render(elementCount);
  }
  QPainter painter(this);
  if (image_.isNull()) {
    // Nothing rendered yet, but an opaque view leaves no pixel unpainted.
    platform::useViewCoordinates(painter, size());
    drawGradient(painter);
    return;
  }
  OVWaveFormDrawing::copyPicture(painter, size(), event->region(), image_);
}

bool OVWaveFormView::needsRendering(std::uint64_t elementCount) const {
  return elementCount != prevBufsize_ || shouldRedrawWaveform() ||
         QSizeF(size()) != prevImageSize_ || devicePixelRatioF() != image_.devicePixelRatio();
}

void OVWaveFormView::render(std::uint64_t elementCount) {
  setShouldRedrawWaveform(false);
  prevBufsize_ = elementCount;
  prevImageSize_ = size();
  prepareBitmap();
  if (image_.isNull()) {
    return;  // a view without area
  }
  QPainter painter(&image_);
  platform::useViewCoordinates(painter, size());
  drawGradient(painter);
  drawGrid(painter);
  if (elementCount != 0) {
    drawWaveform(painter, 1.0);
  }
}

void OVWaveFormView::prepareBitmap() {
  const double ratio = devicePixelRatioF();
  const QSize pixels(pixelsToCover(width(), ratio), pixelsToCover(height(), ratio));
  if (image_.size() != pixels) {
    image_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    image_.fill(Qt::black);
  }
  image_.setDevicePixelRatio(ratio);
}

void OVWaveFormView::mousePressEvent(QMouseEvent* event) {
  const auto delegate = delegate_.lock();
  if (!isEnabled() || event->button() != Qt::LeftButton) {
    event->ignore();
    return;
  }
  if (delegate) {
    const QPointF position = nearestPointInside(*this, event->position());
    delegate->waveFormViewReceivedClick(this, position, fractionOfWidth(*this, position.x()));
  }
}

void OVWaveFormView::mouseMoveEvent(QMouseEvent* event) {
  const auto delegate = delegate_.lock();
  if (!isEnabled() || !event->buttons().testFlag(Qt::LeftButton)) {
    event->ignore();
    return;
  }
  if (delegate) {
    const QPointF position = nearestPointInside(*this, event->position());
    delegate->waveFormViewReceivedDrag(this, position, fractionOfWidth(*this, position.x()));
  }
}
