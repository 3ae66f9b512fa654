#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioClock.h"
#include "platform/sound/realtime/Semaphore.h"

namespace platform {

/// Decides when a stream that should move counts as standing still.
///
/// Threads: one at a time. Real-time: not safe.
class StallCount {
 public:
  /// How long a stream may stand still, once it has moved, and before that.
  static constexpr std::chrono::seconds kPatience{2};
  static constexpr std::chrono::seconds kFirstPatience{5};
  /// A look that is later than this starts the count anew: the program was stopped or the machine
  /// slept, so the stream had no chance to move.
  static constexpr std::chrono::milliseconds kLateness{500};

  StallCount(AudioClock::TimePoint now, std::uint64_t progress)
      : since_(now), progress_(progress) {}

  /// Whether the stream has stood still for too long. `late` is how much later than it should this
  /// look comes, the machine's sleep included.
  [[nodiscard]] bool look(AudioClock::TimePoint now, std::chrono::nanoseconds late,
                          std::uint64_t progress);

 private:
  AudioClock::TimePoint since_;
  std::uint64_t progress_;
  bool hasMoved_ = false;
};

/// Notices streams whose device has stopped calling back. A hanging sound server gives no error,
/// and the control thread may be waiting for it, so this has a thread of its own, which only
/// compares counts that the devices' callbacks leave behind. It ends while nothing is watched.
///
/// Threads: any. Real-time: not safe.
class StallWatch {
 public:
  static constexpr std::chrono::milliseconds kInterval{500};

  /// Incremented by the device's callback; only a count, so relaxed.
  using Progress = std::atomic<std::uint64_t>;

  /// A stream that is watched until the last reference is released. A call of `stalled` may be
  /// running then, but none begins.
  struct Stream {
    std::shared_ptr<const Progress> progress;
    std::function<void()> stalled;
  };

  explicit StallWatch(std::shared_ptr<AudioClock> clock) : clock_(std::move(clock)) {}
  ~StallWatch();
  StallWatch(const StallWatch&) = delete;
  StallWatch& operator=(const StallWatch&) = delete;

  /// Watches a stream from now on. `stalled` is called at most once, on the thread of this object;
  /// it must not keep the result or this object alive. If the system has no thread to give, nothing
  /// is noticed.
  [[nodiscard]] std::shared_ptr<Stream> watch(std::shared_ptr<const Progress> progress,
                                              std::function<void()> stalled) EXCLUDES(mutex_);

 private:
  struct Watched {
    std::weak_ptr<Stream> stream;
    StallCount count;
  };

  void run() EXCLUDES(mutex_);
  /// False if nothing is watched any more, and the thread must end.
  [[nodiscard]] bool lookAtAll(std::chrono::nanoseconds late) EXCLUDES(mutex_);

  const std::shared_ptr<AudioClock> clock_;
  Semaphore wake_;

  Mutex mutex_;
  std::vector<Watched> watched_ GUARDED_BY(mutex_);
  bool isEnding_ GUARDED_BY(mutex_) = false;
  bool isRunning_ GUARDED_BY(mutex_) = false;  // the thread has not decided to end
  std::thread thread_ GUARDED_BY(mutex_);
};

}  // namespace platform
