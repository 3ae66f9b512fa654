#pragma once

#include <chrono>
#include <memory>

#include "platform/sound/realtime/Semaphore.h"

namespace platform {

/// The clock of the audio queues, for time limits on the sound system, the closing of an unused
/// input device and the end of a draining output. The real one is the system's monotonic clock;
/// tests advance a ManualAudioClock.
///
/// Threads: any. Real-time: now() and nowWithSleep() are safe, waitUntil() is not.
class AudioClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  virtual ~AudioClock() = default;

  [[nodiscard]] virtual TimePoint now() const noexcept = 0;

  /// The same clock, which also runs while the machine sleeps, where the system has one. Only
  /// differences between two of its own values mean something.
  [[nodiscard]] virtual TimePoint nowWithSleep() const noexcept { return now(); }

  /// Waits for `semaphore`; false when `deadline` passed first.
  [[nodiscard]] virtual bool waitUntil(Semaphore& semaphore, TimePoint deadline) = 0;
};

/// The system's monotonic clock. It stops while the machine sleeps.
///
/// Threads, Real-time: as AudioClock.
class SteadyAudioClock final : public AudioClock {
 public:
  [[nodiscard]] TimePoint now() const noexcept override { return std::chrono::steady_clock::now(); }
  [[nodiscard]] TimePoint nowWithSleep() const noexcept override;
  [[nodiscard]] bool waitUntil(Semaphore& semaphore, TimePoint deadline) override {
    return semaphore.waitUntil(deadline);
  }
};

}  // namespace platform
