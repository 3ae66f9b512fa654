#include "controls/OVLoadingPanel.h"

#include <QLayout>
#include <QPainter>

#include "controls/OVLoadingIndicator.h"
#include "controls/OVLoadingLabel.h"
#include "platform/base/MainThread.h"

namespace {

// Between the two colours of the waveform's gradient, and nearly opaque.
const QColor kGround = QColor::fromRgb(36, 50, 69, 230);

}  // namespace

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

// At once, so that no frame shows the new words cut off at the old width.
void OVLoadingPanel::fitTheWords() {
  const QWidget* const holder = parentWidget();
  if (layout() != nullptr) {
    layout()->activate();
  }
  if (holder != nullptr && holder->layout() != nullptr) {
    holder->layout()->activate();
  }
}

void OVLoadingPanel::paintEvent(QPaintEvent* event) {
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(rect()), kGround);
  }
  OVOverlayView::paintEvent(event);
}
