#pragma once

#include <condition_variable>
#include <mutex>

#include "support/Eventually.h"

namespace support {

/// Blocks threads until a test releases them, and lets the test wait for their arrival.
///
/// Threads: any. A thread that arrives after open() passes at once.
class Gate {
 public:
  Gate() = default;
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  /// Waits until open() is called, at most kPatience, so that a failing test ends.
  void pass() {
    std::unique_lock lock(mutex_);
    ++arrived_;
    changed_.notify_all();
    changed_.wait_for(lock, kPatience, [this] { return open_; });
  }

  /// Waits until so many threads have arrived; false if they have not within kPatience.
  [[nodiscard]] bool awaitArrival(int count = 1) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, [&] { return arrived_ >= count; });
  }

  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

  /// A hook with any arguments that passes this gate on its first call. The gate must outlive that
  /// call.
  [[nodiscard]] auto holdingTheFirst() {
    return [this, first = true](auto&&...) mutable {
      if (first) {
        first = false;
        pass();
      }
    };
  }

 private:
  std::mutex mutex_;  // guards everything below
  std::condition_variable changed_;
  bool open_ = false;
  int arrived_ = 0;
};

}  // namespace support
