#include "controls/OVSpectrumStrip.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QStyle>

#include "platform/mainloop/MainQueue.h"

OVSpectrumStrip::OVSpectrumStrip(QMainWindow* window, QWidget* strip)
    : window_(window),
      strip_(strip),
      minimumHeightWithout_(window->centralWidget()->minimumHeight()) {
  setStripHeight(0);
  window->installEventFilter(this);
  animation_.setStartValue(0);
  animation_.setEndValue(kHeight);
  animation_.setDuration(kDuration);
  animation_.setEasingCurve(QEasingCurve::InOutQuad);
  connect(&animation_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& height) { stepTo(height.toInt()); });
}

void OVSpectrumStrip::setShown(bool shown) {
  platform::assertMainThread();
  if (shown == shown_ || !window_ || !strip_) {
    return;
  }
  shown_ = shown;
  if (keepsItsSize()) {
    noteForReturn();
    setStripHeight(shown_ ? kHeight : 0);
    return;
  }
  if (!isMoving()) {
    const QRect outer = window_->frameGeometry();
    const QRect inner = window_->geometry();
    decorations_ = {0, inner.top() - outer.top(), 0, outer.bottom() - inner.bottom()};
    chooseFrames(normalFrame_.value_or(window_->geometry()));
    normalFrame_.reset();
    toggledFrom_.reset();
  }
  startMoving();
}

void OVSpectrumStrip::startMoving() {
  const bool animated =
      window_->isVisible() &&
      window_->style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, window_) > 0;
  if (!animated) {
    stepTo(shown_ ? kHeight : 0);
    return;
  }
  // A running animation reverses from where it is.
  animation_.setDirection(shown_ ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
  if (!isMoving()) {
    animation_.start();
  }
}

void OVSpectrumStrip::stepTo(int height) {
  if (!window_ || !strip_) {
    return;
  }
  setStripHeight(height);
  place(frameAt(height));
}

// Nothing is painted between this and the matching change of the window's height.
void OVSpectrumStrip::setStripHeight(int height) {
  strip_->setFixedHeight(height);
  strip_->setVisible(height > 0);
  window_->centralWidget()->setMinimumHeight(minimumHeightWithout_ + height);
  if (QLayout* const layout = window_->layout()) {
    layout->activate();  // otherwise the former minimum would still limit the window
  }
}

void OVSpectrumStrip::place(const QRect& frame) {
  if (frame.topLeft() == window_->geometry().topLeft()) {
    window_->resize(frame.size());
  } else {
    window_->setGeometry(frame);
  }
}

// Frames ----------------------------------------------------------------------------------------

void OVSpectrumStrip::chooseFrames(const QRect& current) {
  if (shown_) {
    hiddenFrame_ = current;
    shownFrame_ = grown(current);
  } else {
    hiddenFrame_ = shrunk(current);
    shownFrame_ = current;
  }
}

QRect OVSpectrumStrip::grown(const QRect& frame) const {
  const QRect screen = window_->screen()->availableGeometry();
  const int below = std::max(0, frame.bottom() + kHeight + decorations_.bottom() - screen.bottom());
  const int above = std::max(0, frame.top() - decorations_.top() - screen.top());
  const int up = std::min(below, above);
  const int least = window_->minimumSizeHint().height() + kHeight - strip_->maximumHeight();
  const int height = std::max({frame.height() + kHeight - (below - up), frame.height(), least});
  return {frame.left(), frame.top() - up, frame.width(), height};
}

QRect OVSpectrumStrip::shrunk(const QRect& frame) const {
  const bool untouched = frame.top() == shownFrame_.top() && frame.bottom() == shownFrame_.bottom();
  const int top = untouched ? hiddenFrame_.top() : frame.top();
  const int height = frame.height() - (shownFrame_.height() - hiddenFrame_.height());
  return {frame.left(), top, frame.width(), height};
}

QRect OVSpectrumStrip::frameAt(int height) const {
  const double part = static_cast<double>(height) / kHeight;
  const auto between = [part](int hidden, int shown) {
    return hidden + static_cast<int>(std::lround((shown - hidden) * part));
  };
  return {hiddenFrame_.left(), between(hiddenFrame_.top(), shownFrame_.top()), hiddenFrame_.width(),
          between(hiddenFrame_.height(), shownFrame_.height())};
}

// Maximised and full-screen windows -------------------------------------------------------------

bool OVSpectrumStrip::keepsItsSize() const {
  return window_->isMaximized() || window_->isFullScreen();
}

bool OVSpectrumStrip::eventFilter(QObject* watched, QEvent* event) {
  // Only the window is watched. Its last events arrive after its destructor has begun.
  if (event->type() == QEvent::WindowStateChange) {
    stateChanged();
  } else if (event->type() == QEvent::Resize) {
    returnLater();
  }
  return QObject::eventFilter(watched, event);
}

void OVSpectrumStrip::noteForReturn() {
  if (normalFrame_) {
    chooseFrames(*normalFrame_);
    normalFrame_ = shown_ ? shownFrame_ : hiddenFrame_;
  } else if (toggledFrom_) {
    toggledFrom_.reset();
  } else {
    toggledFrom_ = window_->normalGeometry().size();
    filling_ = window_->size();
  }
}

void OVSpectrumStrip::stateChanged() {
  if (isMoving()) {
    animation_.stop();
    setStripHeight(shown_ ? kHeight : 0);
    normalFrame_ = shown_ ? shownFrame_ : hiddenFrame_;
  }
  returnLater();
}

void OVSpectrumStrip::returnLater() {
  if ((!normalFrame_ && !toggledFrom_) || keepsItsSize()) {
    return;
  }
  platform::mainQueue().async([self = QPointer(this)] {
    if (self) {
      self->returnToNormalFrame();
    }
  });
}

void OVSpectrumStrip::returnToNormalFrame() {
  if (!window_ || keepsItsSize()) {
    return;
  }
  if (normalFrame_) {
    place(*std::exchange(normalFrame_, std::nullopt));
  } else if (toggledFrom_ && window_->size() != filling_) {
    chooseFrames({window_->geometry().topLeft(), *std::exchange(toggledFrom_, std::nullopt)});
    place(shown_ ? shownFrame_ : hiddenFrame_);
  }
}
