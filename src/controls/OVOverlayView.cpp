#include "controls/OVOverlayView.h"

#include <algorithm>

#include <QPainter>

#include "platform/views/RoundShapes.h"

namespace {

// Between the two colours of the waveform's gradient.
const QColor kGround = QColor::fromRgb(36, 50, 69, 230);

}  // namespace

OVOverlayView::OVOverlayView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

qreal OVOverlayView::cornerRadius(const QSizeF& size) {
  return std::min(size.width() * 0.5, std::min(size.height() * 0.5, 6.0));
}

QPainterPath OVOverlayView::outline(const QRectF& bounds) {
  const qreal radius = cornerRadius(bounds.size());
  return platform::roundedPath(bounds, radius);
}

void OVOverlayView::draw(QPainter& painter, const QRectF& bounds) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(outline(bounds), QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.1F));
  painter.restore();
}

void OVOverlayView::drawOnGround(QPainter& painter, const QRectF& bounds) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(outline(bounds), kGround);
  painter.restore();
  draw(painter, bounds);
}

void OVOverlayView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  draw(painter, rect());
}
