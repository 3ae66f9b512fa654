#pragma once

#include <functional>

#include <QTimer>

namespace platform {

/// A repeating timer on the main loop. It runs from construction to destruction.
///
/// Threads: main. Real-time: not safe.
class Timer {
 public:
  /// Calls `tick` every `intervalInSeconds`, rounded to milliseconds, at least 1.
  Timer(double intervalInSeconds, std::function<void()> tick);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  [[nodiscard]] double intervalInSeconds() const;

 private:
  QTimer timer_;
};

}  // namespace platform
