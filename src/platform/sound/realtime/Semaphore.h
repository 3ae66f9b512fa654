#pragma once

#include <chrono>

#if defined(__linux__)
#include <atomic>
#include <cstdint>
#elif defined(__APPLE__)
#include <dispatch/dispatch.h>
#else
#include "platform/sound/realtime/ConditionSemaphore.h"
#endif

namespace platform {

#if defined(__linux__) || defined(__APPLE__)

/// A counting semaphore whose post() takes no lock: an atomic addition and, only if a thread waits,
/// one kernel wake-up. std::counting_semaphore is not used because libstdc++'s can lose a wake-up.
///
/// post() synchronizes with the wait that takes it. A semaphore may be destroyed as soon as every
/// post has been taken. At most 2^24 - 1 posts may be untaken, and at most 255 threads may wait.
///
/// Threads: construction and destruction while no other thread uses it.
class Semaphore {
 public:
  Semaphore();
  ~Semaphore();
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Threads: any.
  /// Real-time: safe.
  void post() noexcept;

  /// Takes a post; false when there is none.
  ///
  /// Threads: any.
  /// Real-time: safe.
  [[nodiscard]] bool tryWait() noexcept;

  /// Takes a post; sleeps until there is one.
  ///
  /// Threads: any.
  /// Real-time: not safe.
  void wait() noexcept;

  /// The same, at most until `deadline`; false if there was no post by then. Changes to the
  /// system's time of day have no effect.
  ///
  /// Threads: any.
  /// Real-time: not safe.
  [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline) noexcept;

 private:
#if defined(__linux__)
  // Untaken posts in the low 24 bits, waiting threads in the high 8. post() reads both in one step
  // and does not touch the semaphore afterwards, so the woken thread may destroy it. Invariant: a
  // waiting thread is counted before it looks for a post. Written by all threads, by atomic
  // additions and exchanges only.
  std::atomic<std::uint32_t> state_{0};
#else
  const dispatch_semaphore_t semaphore_;
#endif
};

#else

/// No lock-free semaphore for this system: a post by a real-time thread may wait for a lock.
using Semaphore = ConditionSemaphore;

#endif

}  // namespace platform
