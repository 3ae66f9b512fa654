#include "waveform/views/OVLossMarksView.h"

#include <utility>

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStringList>
#include <QToolTip>

#include "platform/mainloop/Localization.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr qsizetype kTextsAtMost = 5;  // of a tooltip: the whole view is a few hundred points wide

}  // namespace

OVLossMarksView::OVLossMarksView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  platform::describeView(this, platform::localized("Lost sound"), QAccessible::Indicator);
  if (parent != nullptr) {
    parent->installEventFilter(this);
  }
}

void OVLossMarksView::setMarks(std::vector<OVLossMark> marks, const QString& summary) {
  summary_ = summary;
  if (marks == marks_) {
    return;
  }
  marks_ = std::move(marks);
  update(strip());
}

void OVLossMarksView::setLengthInFrames(std::uint64_t frames) {
  if (std::exchange(lengthInFrames_, frames) != frames) {
    update(strip());
  }
}

QString OVLossMarksView::textAt(QPoint point) const {
  QStringList texts;
  for (const OVLossMark& mark : marks_) {
    const QRectF bounds = lossMarkBounds(size(), mark, lengthInFrames_);
    if (!bounds.isEmpty() && texts.size() < kTextsAtMost &&
        bounds.adjusted(-kReach, 0, kReach, kReach).contains(point)) {
      texts.append(mark.text);
    }
  }
  return texts.join(QLatin1Char('\n'));
}

bool OVLossMarksView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ToolTip && isVisible() && watched == parent()) {
    const auto* const help = static_cast<const QHelpEvent*>(event);
    const QPoint point = mapFromParent(help->pos());
    if (const QString text = textAt(point); !text.isEmpty()) {
      // Gone once the pointer has left the place.
      const QRect place(help->pos() - QPoint(kReach, kReach), QSize(2 * kReach, 2 * kReach));
      QToolTip::showText(help->globalPos(), text, parentWidget(), place);
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

QRect OVLossMarksView::strip() const {
  return lossMarkStrip(size()).toAlignedRect();
}

void OVLossMarksView::paintEvent(QPaintEvent* event) {
  if (!event->region().intersects(strip())) {
    return;  // the marker below was redrawn elsewhere
  }
  QPainter painter(this);
  platform::useViewCoordinates(painter, size());
  for (const OVLossMark& mark : marks_) {
    drawLossMark(painter, size(), mark, lengthInFrames_);
  }
}
