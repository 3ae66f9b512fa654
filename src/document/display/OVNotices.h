#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include <QPointer>
#include <QString>

#include "controls/OVNoticeView.h"
#include "platform/mainloop/Timer.h"

class OVRecorderWindow;

/// What a notice is about, the most important first.
enum class OVNoticeSubject { lostFrames, disk, memory, microphone, silence, input, paused };

/// The line of notices of a document, whose view may be missing: what it says now, and for how
/// long. There is one notice per subject at most; the first subject that has one is shown.
///
/// A passing notice is shown for some seconds. The time that it spends hidden by a more important
/// one does not count, but it is dropped unseen once its news is old. A lasting notice stays until
/// it is withdrawn. Nothing runs while no passing notice is shown.
///
/// Texts are localised. They are shown in one line: white space, line breaks and control characters
/// become single spaces. A text counts as new, and is announced to
/// assistive technology, when it is first shown; the same text given again for a subject that still
/// has it only shows it for longer.
///
/// Threads: main. Real-time: not safe.
class OVNotices {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;
  using Clock = std::function<TimePoint()>;

  /// How long a passing notice is shown, and how long it may wait for that.
  static constexpr Duration kShownFor = std::chrono::seconds(6);
  static constexpr Duration kDroppedAfter = std::chrono::seconds(30);

  explicit OVNotices(Clock clock = &std::chrono::steady_clock::now) : clock_(std::move(clock)) {}

  void connect(OVRecorderWindow* window);

  /// A passing notice, which replaces the subject's former one. An empty text withdraws it.
  void show(OVNoticeSubject subject, const QString& text);
  /// A lasting notice, which replaces the subject's former one. An empty text withdraws it.
  void keep(OVNoticeSubject subject, const QString& text);
  /// Removes the subject's notice, if it has one.
  void withdraw(OVNoticeSubject subject);

  /// The text that is shown; empty if there is none.
  [[nodiscard]] const QString& text() const { return text_; }

  /// Ends what has been shown for long enough. The timer's tick, which may come early or late.
  void tick();
  [[nodiscard]] bool isTimerRunning() const { return timer_ != nullptr; }

 private:
  struct Notice {
    QString text;
    std::optional<Duration> left;  // none: lasting
    TimePoint droppedAt;           // passing only
    bool isAnnounced = false;
  };

  void put(OVNoticeSubject subject, const QString& text, std::optional<Duration> left);
  void passTime(TimePoint now);
  void update(TimePoint now);
  void startTimer();

  const Clock clock_;
  std::map<OVNoticeSubject, Notice> notices_;
  std::optional<OVNoticeSubject> shown_;
  TimePoint lastUpdate_;
  QString text_;
  QPointer<OVNoticeView> view_;
  std::unique_ptr<platform::Timer> timer_;  // runs while a passing notice is shown
};
