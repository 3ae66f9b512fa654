#include "controls/OVLoadingPanel.h"

#include <QLayout>
#include <QPainter>

#include "controls/OVLoadingIndicator.h"
#include "platform/base/MainThread.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr int kWordsSize = 11;  // points of the views' grid
const QColor kWordsColor = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.8F);

}  // namespace

OVLoadingLabel::OVLoadingLabel(QWidget* parent) : QLabel(parent) {
  setFont(platform::viewFont(kWordsSize));
  setTextFormat(Qt::PlainText);
}

// Not the desktop's style, which would grey out the text while the waveform below is disabled.
void OVLoadingLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(kWordsColor);
  painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
}

OVLoadingPanel::OVLoadingPanel(QWidget* parent) : OVOverlayView(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void OVLoadingPanel::setActivity(const QString& activity) {
  platform::assertMainThread();
  if (auto* const label = findChild<OVLoadingLabel*>()) {
    label->setText(activity);
  }
  if (auto* const indicator = findChild<OVLoadingIndicator*>()) {
    indicator->setAccessibleName(activity);
  }
  fitTheWords();
}

// At once, so that no frame shows the new text cut off at the old width.
void OVLoadingPanel::fitTheWords() {
  const QWidget* const holder = parentWidget();
  if (layout() != nullptr) {
    layout()->activate();
  }
  if (holder != nullptr && holder->layout() != nullptr) {
    holder->layout()->activate();
  }
}

void OVLoadingPanel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  drawOnGround(painter, rect());
}
