#include "controls/buttons/OVTransportButtonCell.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include "controls/buttons/OVTransportArtwork.h"

namespace {

const QColor kLabelColor(50, 54, 66);  // as dark as the icons
constexpr qreal kDisabledOpacity = 0.5;
constexpr int kFocusInset = 5;  // points, inside the bezel

}  // namespace

OVTransportButtonCell::OVTransportButtonCell(QWidget* parent) : QPushButton(parent) {}

OVTransportButtonCell::OVTransportButtonCell(const QString& text, QWidget* parent)
    : QPushButton(text, parent) {}

void OVTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                               const QWidget* /*inView*/) const {
  ::drawBezelWithFrame(painter, frame, isHighlighted());
}

void OVTransportButtonCell::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  drawBezelWithFrame(painter, rect(), this);

  QStyleOptionButton label;
  initStyleOption(&label);
  // Only the bezel shows that the button is pressed.
  label.state &= ~(QStyle::State_Sunken | QStyle::State_On);
  label.palette.setColor(QPalette::ButtonText, kLabelColor);
  painter.setOpacity(isEnabled() ? 1.0 : kDisabledOpacity);
  label.state |= QStyle::State_Enabled;
  painter.drawControl(QStyle::CE_PushButtonLabel, label);
  painter.setOpacity(1.0);

  if (hasFocus()) {
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = rect().adjusted(kFocusInset, kFocusInset, -kFocusInset, -kFocusInset);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
  }
}

void OVLeftTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                   const QWidget* /*inView*/) const {
  drawLeftTypeButtonWithFrame(painter, frame, isHighlighted());
}

void OVRightTransportButtonCell::drawBezelWithFrame(QPainter& painter, const QRectF& frame,
                                                    const QWidget* /*inView*/) const {
  drawRightTypeButtonWithFrame(painter, frame, isHighlighted());
}
