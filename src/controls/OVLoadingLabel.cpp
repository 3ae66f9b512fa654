#include "controls/OVLoadingLabel.h"

#include <QPainter>

namespace {

constexpr int kFontSize = 11;  // points of the views' grid
const QColor kColor = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.8F);

}  // namespace

OVLoadingLabel::OVLoadingLabel(QWidget* parent) : QLabel(parent) {
  QFont font(QStringLiteral("Arial"));
  font.setPixelSize(kFontSize);
  setFont(font);
  setTextFormat(Qt::PlainText);
}

// Not the desktop's style: it would grey the words out while the waveform below is disabled.
void OVLoadingLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(kColor);
  painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
}
