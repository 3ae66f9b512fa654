#include "waveform/views/OVWaveFormView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr double kFocusRadius = 3.0;  // points
constexpr double kPageStep = 0.1;     // of the width

// Whole pixels that cover a length; a ratio such as 1.1 must not add one by rounding error.
int pixelsToCover(int points, double ratio) {
  return static_cast<int>(std::ceil(points * ratio - 1e-6));
}

QPointF nearestPointInside(const QWidget& view, QPointF position) {
  const double height = view.height();
  return {std::clamp(position.x(), 0.0, static_cast<double>(view.width())),
          height - std::clamp(position.y(), 0.0, height)};
}

// None for a combination that belongs to the window.
std::optional<OVMarkerStep::Length> stepLength(Qt::KeyboardModifiers modifiers) {
  modifiers.setFlag(Qt::KeypadModifier, false);
  if (modifiers == Qt::NoModifier) {
    return OVMarkerStep::Length::second;
  }
  if (modifiers == Qt::ShiftModifier) {
    return OVMarkerStep::Length::tenthOfSecond;
  }
  return modifiers == Qt::ControlModifier ? std::optional(OVMarkerStep::Length::devicePixel)
                                          : std::nullopt;
}

double fractionOfWidth(const QWidget& view, double x) {
  return view.width() > 0 ? x / view.width() : 0.0;
}

}  // namespace

OVWaveFormView::OVWaveFormView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::TabFocus);
  platform::describeView(this, platform::localized("Waveform"), QAccessible::Graphic);
}

OVWaveFormView::~OVWaveFormView() = default;

bool OVWaveFormView::shouldRedrawWaveform() const {
  return shouldRedrawWaveform_.load(std::memory_order_relaxed);
}

void OVWaveFormView::setShouldRedrawWaveform(bool should) {
  shouldRedrawWaveform_.store(should, std::memory_order_relaxed);
}

void OVWaveFormView::setDelegate(std::weak_ptr<OVWaveFormViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

QString OVWaveFormView::accessibleValue() const {
  return timeLineText_ ? timeLineText_() : QString();
}

void OVWaveFormView::setTimeLineText(std::function<QString()> text) {
  timeLineText_ = std::move(text);
}

void OVWaveFormView::drawGradient(QPainter& painter) {
  OVWaveFormDrawing::drawGradient(painter, size());
}

void OVWaveFormView::drawGrid(QPainter& painter) {
  scrollGrid();
  OVWaveFormDrawing::drawGrid(painter, size(), bg_scroll_x_);
}

void OVWaveFormView::scrollGrid() {
  if (scrollBack_) {
    bg_scroll_x_ = OVWaveFormDrawing::nextGridOffset(bg_scroll_x_);
  }
}

void OVWaveFormView::drawWaveform(QPainter& painter, double alpha) {
  if (const auto summary = waveForm()) {
    summary->copyElementsInto(elements_);
    drawing_.drawWaveform(painter, size(), elements_, alpha);
  }
}

void OVWaveFormView::drawTimescale(QPainter& painter) {
  OVWaveFormDrawing::drawTimescale(painter, size());
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
    // Nothing rendered yet, but an opaque view must paint every pixel.
    platform::useViewCoordinates(painter, size());
    drawGradient(painter);
    return;
  }
  OVWaveFormDrawing::copyPicture(painter, size(), event->region(), image_);
  focusRing_.draw(painter, rect(), kFocusRadius, platform::FocusRing::Ground::dark);
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
  scrollGrid();
  drawing_.drawBackground(painter, size(), bg_scroll_x_);
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

double OVWaveFormView::markerPosition() {
  const auto delegate = delegate_.lock();
  return delegate ? delegate->waveFormViewTimeLinePosition(this) : 0.0;
}

std::optional<double> OVWaveFormView::positionAfterKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_PageDown:
      return markerPosition() - kPageStep;
    case Qt::Key_PageUp:
      return markerPosition() + kPageStep;
    case Qt::Key_Home:
      return 0.0;
    case Qt::Key_End:
      return 1.0;
    default:
      return std::nullopt;
  }
}

bool OVWaveFormView::stepMarker(const QKeyEvent& event) {
  const auto length = stepLength(event.modifiers());
  if (!step_ || !length || (event.key() != Qt::Key_Left && event.key() != Qt::Key_Right)) {
    return false;
  }
  step_({.length = *length, .isForward = event.key() == Qt::Key_Right});
  return true;
}

bool OVWaveFormView::moveMarker(const QKeyEvent& event) {
  constexpr Qt::KeyboardModifiers kCommand =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  const auto position = positionAfterKey(event);
  if (!position || (event.modifiers() & kCommand)) {
    return false;
  }
  if (const auto delegate = delegate_.lock()) {
    const double fraction = std::clamp(*position, 0.0, 1.0);
    delegate->waveFormViewReceivedDrag(this, {fraction * width(), height() / 2.0}, fraction);
  }
  return true;
}

void OVWaveFormView::keyPressEvent(QKeyEvent* event) {
  if (!isEnabled() || (!stepMarker(*event) && !moveMarker(*event))) {
    event->ignore();
    return;
  }
  QAccessibleEvent moved(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&moved);
}

void OVWaveFormView::focusInEvent(QFocusEvent* event) {
  if (focusRing_.handle(*event)) {
    update();
  }
}

void OVWaveFormView::focusOutEvent(QFocusEvent* event) {
  if (focusRing_.handle(*event)) {
    update();
  }
}
