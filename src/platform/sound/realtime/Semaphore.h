#pragma once

#include <chrono>

#include <semaphore.h>

namespace platform {

/// A counting semaphore whose post() a real-time thread may call: one atomic add and, when
/// somebody waits, one wake-up by the kernel. std::counting_semaphore is not used because the
/// standard library of the older compiler we support could sleep through a release.
///
/// Threads: any. Real-time: post() and tryWait() are safe, the waits are not.
class Semaphore {
 public:
  Semaphore();
  ~Semaphore();
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  void post() noexcept;
  [[nodiscard]] bool tryWait() noexcept;
  void wait() noexcept;
  /// False when `deadline` passed first.
  [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline) noexcept;

 private:
  sem_t semaphore_;
};

}  // namespace platform
