#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>

#include "interleavings/AllOrders.h"
#include "interleavings/RaceWatch.h"
#include "platform/base/ThreadSafety.h"

// In place of the header of the same name: every operation is a step.
namespace platform {

class CAPABILITY("mutex") Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ACQUIRE() {
    take([this] { return !isLocked_; });
  }
  void unlock() RELEASE() {
    give();
    interleavings::step();
  }

 private:
  friend class Condition;

  // The lock's own state is the scheduler's.
  void take(const std::function<bool()>& isReady) {
    {
      const interleavings::Unwatched here;
      interleavings::waitUntil(isReady);
      isLocked_ = true;
    }
    interleavings::acquire(this);
  }
  void give() {
    interleavings::releaseToo(this);
    const interleavings::Unwatched here;
    isLocked_ = false;
  }

  bool isLocked_ = false;
};

template <typename Lockable>
class SCOPED_CAPABILITY LockOf {
 public:
  explicit LockOf(Lockable& lockable) ACQUIRE(lockable) : lock_(lockable) {}
  ~LockOf() RELEASE() = default;
  LockOf(const LockOf&) = delete;
  LockOf& operator=(const LockOf&) = delete;

  void unlock() RELEASE() { lock_.unlock(); }
  void lock() ACQUIRE() { lock_.lock(); }

 private:
  std::unique_lock<Lockable> lock_;
};

using MutexLock = LockOf<Mutex>;

class Condition {
 public:
  void notifyOne() noexcept {
    const interleavings::Unwatched here;
    if (!waiting_.empty()) {
      notify(waiting_.begin() + interleavings::choose(static_cast<int>(waiting_.size())));
    }
  }
  void notifyAll() noexcept {
    const interleavings::Unwatched here;
    while (!waiting_.empty()) {
      notify(waiting_.begin());
    }
  }

  void wait(Mutex& mutex) REQUIRES(mutex) {
    bool isNotified = false;
    mutex.give();
    {
      const interleavings::Unwatched here;
      waiting_.push_back(&isNotified);
    }
    mutex.take([&] { return isNotified && !mutex.isLocked_; });
  }

  // A deadline may pass at any time.
  bool waitUntil(Mutex& mutex, std::chrono::steady_clock::time_point /*deadline*/) REQUIRES(mutex) {
    if (interleavings::choose(2) == 0) {
      wait(mutex);
      return true;
    }
    mutex.unlock();
    mutex.lock();
    return false;
  }

 private:
  using Waiting = std::deque<bool*>;

  void notify(Waiting::iterator one) noexcept {
    **one = true;
    waiting_.erase(one);
  }

  Waiting waiting_;
};

}  // namespace platform
