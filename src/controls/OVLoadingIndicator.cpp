#include "controls/OVLoadingIndicator.h"

#include <cmath>
#include <numbers>

#include <QPainter>
#include <QPainterPath>
#include <QTimerEvent>

#include "controls/OVOverlayView.h"

namespace {

constexpr int kFrameInterval = 33;  // ms
constexpr int kRound = 60;          // steps there and back
constexpr qreal kPiece = 0.3;       // length of the moving piece, as a fraction of the whole

}  // namespace

OVLoadingIndicator::OVLoadingIndicator(QWidget* parent) : QProgressBar(parent) {
  setTextVisible(false);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize OVLoadingIndicator::sizeHint() const {
  return {150, 4};
}

QSize OVLoadingIndicator::minimumSizeHint() const {
  return {20, 4};
}

QRectF OVLoadingIndicator::filledRect() const {
  const QRectF bounds = rect();
  if (isIndeterminate()) {
    const qreal swing = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * phase_ / kRound);
    const qreal length = bounds.width() * kPiece;
    return {bounds.left() + swing * (bounds.width() - length), bounds.top(), length,
            bounds.height()};
  }
  const qreal fraction = qreal(value() - minimum()) / qreal(maximum() - minimum());
  QRectF filled = bounds;
  filled.setWidth(bounds.width() * qBound(0.0, fraction, 1.0));
  return filled;
}

void OVLoadingIndicator::paintEvent(QPaintEvent* /*event*/) {
  adjustTimer();  // setRange is not virtual, but always requests a redraw
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  OVOverlayView::draw(painter, rect());
  // Clipped to the track's shape, so that a short fill keeps the pill's round end.
  QPainterPath filled;
  filled.addRect(filledRect());
  painter.fillPath(OVOverlayView::outline(rect()).intersected(filled),
                   QColor::fromRgbF(0.27F, 0.67F, 0.72F));
}

void OVLoadingIndicator::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_.timerId()) {
    QProgressBar::timerEvent(event);
    return;
  }
  phase_ = (phase_ + 1) % kRound;
  update();
}

void OVLoadingIndicator::showEvent(QShowEvent* event) {
  QProgressBar::showEvent(event);
  adjustTimer();
}

void OVLoadingIndicator::hideEvent(QHideEvent* event) {
  QProgressBar::hideEvent(event);
  timer_.stop();
}

void OVLoadingIndicator::adjustTimer() {
  const bool wanted = isVisible() && isIndeterminate();
  if (wanted && !timer_.isActive()) {
    timer_.start(kFrameInterval, this);
  } else if (!wanted) {
    timer_.stop();
  }
}
