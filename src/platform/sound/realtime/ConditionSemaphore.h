#pragma once

#include <chrono>
#include <cstdint>

#include "platform/base/Mutex.h"

namespace platform {

/// A counting semaphore built on the standard library alone, for systems without their own
/// implementation of Semaphore. Same interface as Semaphore.
///
/// Threads: any.
/// Real-time: not safe; post() takes a lock.
class ConditionSemaphore {
 public:
  void post() noexcept EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    ++count_;
    posted_.notifyOne();
  }

  [[nodiscard]] bool tryWait() noexcept EXCLUDES(mutex_) {
    return waitUntil(std::chrono::steady_clock::time_point::min());
  }

  void wait() noexcept EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    while (count_ == 0) {
      posted_.wait(mutex_);
    }
    --count_;
  }

  [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline) noexcept
      EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    while (count_ == 0) {
      if (deadline <= std::chrono::steady_clock::now()) {
        return false;
      }
      posted_.waitUntil(mutex_, deadline);
    }
    --count_;
    return true;
  }

 private:
  Mutex mutex_;
  Condition posted_;
  std::uint64_t count_ GUARDED_BY(mutex_) = 0;
};

}  // namespace platform
