#include "controls/OVNoticeView.h"

#include <algorithm>

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include "controls/OVOverlayView.h"
#include "platform/base/MainThread.h"
#include "platform/views/ViewAccessibility.h"
#include "platform/views/ViewDrawing.h"

namespace {

constexpr int kFontSize = 11;            // points of the views' grid
constexpr int kPadding = 10;             // points, left and right of the text
constexpr double kFrameInterval = 0.04;  // seconds
const QColor kColor = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.8F);

}  // namespace

OVNoticeView::OVNoticeView(QWidget* parent)
    : QWidget(parent), font_(platform::viewFont(kFontSize)) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  setFixedHeight(kHeight);
  QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  policy.setRetainSizeWhenHidden(true);  // nothing else moves when a notice comes or goes
  setSizePolicy(policy);
  platform::describeView(this, QString(), platform::kAnnouncerRole);
  setVisible(false);
}

void OVNoticeView::setText(const QString& text, bool isNews) {
  platform::assertMainThread();
  if (text != text_) {
    text_ = text;
    if (!text.isEmpty()) {
      drawn_ = text;
      picture_.forget();
      setAccessibleName(text);
      update();
    }
  }
  if (isNews && !text.isEmpty()) {
    platform::announce(this, text);
  }
  if (!text.isEmpty()) {
    setVisible(true);
  }
  if (!isAnimated()) {
    showFrame(lastFrame());
  } else if (frame_ != lastFrame() && !timer_) {
    timer_ = std::make_unique<platform::Timer>(kFrameInterval, [this] { fade(); });
  }
}

// Nobody sees a fade in a window that is not on the screen.
bool OVNoticeView::isAnimated() const {
  return isVisible() && style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
}

void OVNoticeView::fade() {
  showFrame(frame_ < lastFrame() ? frame_ + 1 : std::max(frame_ - 1, lastFrame()));
}

void OVNoticeView::showFrame(int frame) {
  frame_ = std::clamp(frame, 0, kFadeFrames);
  if (frame_ == lastFrame()) {
    timer_.reset();
  }
  if (frame_ == 0) {
    drawn_.clear();
    setAccessibleName(QString());
    setVisible(false);
  }
  update();
}

double OVNoticeView::opacity() const {
  return static_cast<double>(frame_) / kFadeFrames;
}

QString OVNoticeView::line() const {
  return QFontMetrics(font_).elidedText(drawn_, Qt::ElideRight, width() - 2 * kPadding);
}

QRect OVNoticeView::panel() const {
  const QString shown = line();
  return shown.isEmpty()
             ? QRect()
             : QRect(0, 0, QFontMetrics(font_).horizontalAdvance(shown) + 2 * kPadding, height());
}

void OVNoticeView::paintEvent(QPaintEvent* /*event*/) {
  const QRect bounds = panel();
  if (bounds.isEmpty()) {
    return;
  }
  QPainter painter(this);
  picture_.draw(
      painter, bounds, [&](QPainter& first) { draw(first, bounds); }, opacity());
}

void OVNoticeView::draw(QPainter& painter, const QRect& bounds) const {
  OVOverlayView::drawOnGround(painter, bounds);
  painter.setFont(font_);
  painter.setPen(kColor);
  painter.drawText(bounds.adjusted(kPadding, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, line());
}
