#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/base/ThreadSafety.h"

namespace platform {

/// A mutex that clang's thread safety analysis checks: members are marked GUARDED_BY(mutex_),
/// functions REQUIRES(mutex_), and clang reports any use without the lock. libstdc++'s std::mutex
/// lacks these attributes.
///
/// Threads: any. Real-time: not safe.
class CAPABILITY("mutex") Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ACQUIRE() { mutex_.lock(); }
  void unlock() RELEASE() { mutex_.unlock(); }

 private:
  friend class Condition;
  std::mutex mutex_;
};

/// Holds a lock until the end of the scope, or until unlock().
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

/// A condition variable. A wait may end spuriously, so the caller loops: `while (!done_)
/// changed_.wait(mutex_);`. There is no overload with a predicate, since clang would not know that
/// the predicate runs with the lock held.
///
/// Threads: any. Real-time: not safe.
class Condition {
 public:
  void notifyOne() noexcept { condition_.notify_one(); }
  void notifyAll() noexcept { condition_.notify_all(); }

  void wait(Mutex& mutex) REQUIRES(mutex) {
    Held held(mutex);
    condition_.wait(held.lock);
  }

  /// False when `deadline` has passed.
  bool waitUntil(Mutex& mutex, std::chrono::steady_clock::time_point deadline) REQUIRES(mutex) {
    Held held(mutex);
    return condition_.wait_until(held.lock, deadline) == std::cv_status::no_timeout;
  }

 private:
  // Lends the caller's lock to std::condition_variable; it is still locked afterwards.
  struct Held {
    explicit Held(Mutex& mutex) : lock(mutex.mutex_, std::adopt_lock) {}
    ~Held() { lock.release(); }
    std::unique_lock<std::mutex> lock;
  };

  std::condition_variable condition_;
};

}  // namespace platform
