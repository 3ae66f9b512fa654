#pragma once

#include <functional>

#include <QTimer>

namespace platform {

/// A repeating timer on the main loop. It runs from construction to destruction.
///
/// Timers of one interval, below a second, tick together, so that the program wakes up once for all
/// of them: one that is not the first begins again with the next tick of the others. A tick that
/// runs the main loop holds up none but its own.
///
/// Threads: main. Real-time: not safe.
class Timer {
 public:
  /// Calls `tick` every `intervalInSeconds`, rounded to milliseconds, at least 1; for the first
  /// time after one interval, below a second after one to two.
  Timer(double intervalInSeconds, std::function<void()> tick);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  [[nodiscard]] double intervalInSeconds() const;

 private:
  QTimer timer_;
};

}  // namespace platform
