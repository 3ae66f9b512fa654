#pragma once

#include <functional>

#include <QObject>
#include <QTimer>

/// Waits until the user sees the first window, so that work that is not needed earlier does not
/// delay it.
///
/// Threads: main. Real-time: not safe.
class OVFirstWindowWatcher : public QObject {
  Q_OBJECT

 public:
  /// The longest wait, in milliseconds, for a window that is not on the screen: minimised, on
  /// another desktop, or delayed by a slow display server.
  static constexpr int kMaxWait = 250;

  /// Calls `shown` once, from the event loop, after the first window of the program has been drawn
  /// or kMaxWait has passed.
  explicit OVFirstWindowWatcher(std::function<void()> shown);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QTimer wait_;
};
