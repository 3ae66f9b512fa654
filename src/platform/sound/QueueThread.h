#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "platform/base/AudioTypes.h"
#include "platform/sound/realtime/Semaphore.h"

namespace platform {

/// The thread of one audio queue, on which its callbacks run. It holds a PostedAlertsScope, so that
/// an alert never holds up the sound.
///
/// Threads: start(), end() and destruction on the queue's owner thread; end() and destruction also
/// on this thread itself; the rest on any. Real-time: wake() is safe.
class QueueThread {
 public:
  QueueThread() : shared_(std::make_shared<Shared>()) {}
  ~QueueThread();
  QueueThread(const QueueThread&) = delete;
  QueueThread& operator=(const QueueThread&) = delete;

  /// Starts running `serve` once for every wake-up. The thread releases `serve` when it ends, which
  /// may be after the destruction of this object. kNoThreadStatus when the system cannot create a
  /// thread; the caller may retry.
  [[nodiscard]] AudioStatus start(std::function<void()> serve);

  void wake() noexcept { shared_->wake.post(); }

  /// After it returns `serve` is not running and will not run again. Called on this thread itself
  /// it returns at once, and the running `serve` is the last.
  void end();

  [[nodiscard]] bool isEnding() const { return shared_->ending.load(std::memory_order_acquire); }
  [[nodiscard]] bool isCurrent() const;

 private:
  struct Shared {
    Semaphore wake;
    // Set by end(), never cleared.
    std::atomic<bool> ending{false};
  };

  static void run(const std::shared_ptr<Shared>& shared, const std::function<void()>& serve);

  const std::shared_ptr<Shared> shared_;
  std::thread thread_;  // owner thread only
};

}  // namespace platform
