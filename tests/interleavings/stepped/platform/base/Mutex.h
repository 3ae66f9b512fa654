#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <mutex>

#include "interleavings/AllOrders.h"
#include "platform/base/ThreadSafety.h"

// In place of the header of the same name: every operation is a step.
namespace platform {

class CAPABILITY("mutex") Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ACQUIRE() {
    interleavings::waitUntil([this] { return !isLocked_; });
    isLocked_ = true;
  }
  void unlock() RELEASE() {
    isLocked_ = false;
    interleavings::step();
  }

 private:
  friend class Condition;
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
    if (!waiting_.empty()) {
      notify(waiting_.begin() + interleavings::choose(static_cast<int>(waiting_.size())));
    }
  }
  void notifyAll() noexcept {
    while (!waiting_.empty()) {
      notify(waiting_.begin());
    }
  }

  void wait(Mutex& mutex) REQUIRES(mutex) {
    bool isNotified = false;
    waiting_.push_back(&isNotified);
    mutex.isLocked_ = false;
    interleavings::waitUntil([&] { return isNotified && !mutex.isLocked_; });
    mutex.isLocked_ = true;
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
