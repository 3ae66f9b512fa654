#pragma once

#include <chrono>
#include <mutex>
#include <set>

#include "platform/sound/AudioClock.h"

namespace platform {

/// A clock that stands still until it is turned: the clock of tests with a ScriptedAudioDevice.
///
/// A thread that waits on it wakes within about a millisecond of real time after the turn.
///
/// Threads: any. Real-time: not safe.
class ManualAudioClock final : public AudioClock {
 public:
  [[nodiscard]] TimePoint now() const noexcept override;
  [[nodiscard]] bool waitUntil(Semaphore& semaphore, TimePoint deadline) override;

  /// Moves time forward.
  void advance(std::chrono::nanoseconds duration);

  /// Waits in real time until some thread waits for a moment at most `duration` ahead of now: the
  /// time to turn the clock. False when none does within 20 s.
  [[nodiscard]] bool awaitWaiter(std::chrono::nanoseconds duration) const;

 private:
  mutable std::mutex mutex_;
  // guarded by mutex_
  TimePoint now_{std::chrono::hours(1)};
  std::multiset<TimePoint> deadlines_;  // of the threads inside waitUntil()
};

}  // namespace platform
