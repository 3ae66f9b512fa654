#include "document/display/OVNotices.h"

#include <algorithm>
#include <utility>

#include "controls/OVRecorderWindow.h"
#include "platform/base/MainThread.h"

namespace {

// Controls include line breaks.
QString inOneLine(QString text) {
  std::ranges::replace_if(
      text, [](QChar c) { return c.category() == QChar::Other_Control; }, QLatin1Char(' '));
  return text.simplified();
}

}  // namespace

void OVNotices::connect(OVRecorderWindow* window) {
  view_ = window->findChild<OVNoticeView*>("noticeView");
}

void OVNotices::show(OVNoticeSubject subject, const QString& text) {
  put(subject, text, kShownFor);
}

void OVNotices::keep(OVNoticeSubject subject, const QString& text) {
  put(subject, text, std::nullopt);
}

void OVNotices::put(OVNoticeSubject subject, const QString& text, std::optional<Duration> left) {
  platform::assertMainThread();
  QString line = inOneLine(text);
  if (line.isEmpty()) {
    withdraw(subject);
    return;
  }
  if (const auto kept = notices_.find(subject);
      !left && kept != notices_.end() && !kept->second.left && kept->second.text == line) {
    return;  // given again, at every tick perhaps
  }
  const TimePoint now = clock_();
  passTime(now);
  Notice& notice = notices_[subject];
  if (notice.text != line) {
    notice.isAnnounced = false;
  }
  notice.text = std::move(line);
  notice.left = left;
  notice.droppedAt = now + kDroppedAfter;
  update(now);
}

void OVNotices::withdraw(OVNoticeSubject subject) {
  platform::assertMainThread();
  const TimePoint now = clock_();
  passTime(now);
  if (notices_.erase(subject) != 0) {
    update(now);
  }
}

void OVNotices::tick() {
  const TimePoint now = clock_();
  passTime(now);
  update(now);
}

// Only the shown notice's time runs.
void OVNotices::passTime(TimePoint now) {
  const Duration passed = now - std::exchange(lastUpdate_, now);
  if (const auto shown = shown_ ? notices_.find(*shown_) : notices_.end();
      shown != notices_.end() && shown->second.left) {
    *shown->second.left -= passed;
  }
}

void OVNotices::update(TimePoint now) {
  std::erase_if(notices_, [&](const auto& entry) {
    const auto& [subject, notice] = entry;
    const bool isOld = subject != shown_ && notice.droppedAt <= now;
    return notice.left && (*notice.left <= Duration::zero() || isOld);
  });
  bool isNews = false;
  shown_.reset();
  text_.clear();
  if (!notices_.empty()) {
    auto& [subject, notice] = *notices_.begin();
    shown_ = subject;
    text_ = notice.text;
    isNews = !std::exchange(notice.isAnnounced, true);
  }
  if (view_) {
    view_->setText(text_, isNews);
  }
  startTimer();
}

void OVNotices::startTimer() {
  timer_.reset();
  if (!shown_) {
    return;
  }
  if (const auto left = notices_.at(*shown_).left) {
    timer_ = std::make_unique<platform::Timer>(std::chrono::duration<double>(*left).count(),
                                               [this] { tick(); });
  }
}
