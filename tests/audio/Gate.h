#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace testaudio {

/// Holds a thread back until a test lets it go, and tells the test that it has come.
///
/// Threads: any.
class Gate {
 public:
  /// Waits until open() was called, at most 20 s, so that a failing test ends.
  void pass() {
    std::unique_lock lock(mutex_);
    ++arrived_;
    changed_.notify_all();
    changed_.wait_for(lock, std::chrono::seconds(20), [this] { return open_; });
  }

  /// Waits until a thread stands at the gate or has passed it; false when none came within 20 s.
  [[nodiscard]] bool awaitArrival() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(20), [this] { return arrived_ > 0; });
  }

  /// From now on everybody passes at once.
  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;  // guards everything below
  std::condition_variable changed_;
  bool open_ = false;
  int arrived_ = 0;
};

}  // namespace testaudio
