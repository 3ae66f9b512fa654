#pragma once

#include <functional>

#include <QTimer>

namespace platform {

/// A repeating timer on the main loop, running from its creation until it is destroyed: the
/// object that ends it is the registration itself.
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
