#pragma once

#include <chrono>
#include <mutex>
#include <set>

#include "platform/sound/AudioClock.h"

namespace platform {

/// A clock that moves only when a test advances it, for use with a ScriptedAudioDevice.
///
/// A thread that waits on it wakes within about a millisecond of real time after advance().
///
/// Threads: any. Real-time: not safe.
class ManualAudioClock final : public AudioClock {
 public:
  [[nodiscard]] TimePoint now() const noexcept override;
  [[nodiscard]] TimePoint nowWithSleep() const noexcept override;
  [[nodiscard]] bool waitUntil(Semaphore& semaphore, TimePoint deadline) override;

  void advance(std::chrono::nanoseconds duration);

  /// The machine sleeps: only nowWithSleep() moves.
  void sleep(std::chrono::nanoseconds duration);

  /// Waits in real time until some thread waits for a moment at most `duration` ahead of now, so
  /// that advance() can wake it. False if none does within 20 s.
  [[nodiscard]] bool awaitWaiter(std::chrono::nanoseconds duration) const;

 private:
  mutable std::mutex mutex_;
  // guarded by mutex_
  TimePoint now_{std::chrono::hours(1)};
  TimePoint::duration slept_{0};
  std::multiset<TimePoint> deadlines_;  // of the threads inside waitUntil()
};

}  // namespace platform
