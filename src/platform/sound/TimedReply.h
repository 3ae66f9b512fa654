#pragma once

#include <atomic>
#include <optional>

#include "platform/base/AudioTypes.h"
#include "platform/sound/AudioClock.h"

namespace platform {

/// The answer to one question put to the control thread. It reaches the asker, or the asker has
/// given up and give() says so: a failure is told exactly once.
///
/// Threads: give() on one, wait() on another. Real-time: not safe.
class TimedReply {
 public:
  /// False when nobody waits any more.
  bool give(AudioStatus status) {
    status_ = status;
    State expected = State::kOpen;
    const bool taken = state_.compare_exchange_strong(expected, State::kGiven);
    if (taken) {
      given_.post();
    }
    return taken;
  }

  /// The answer, or nothing when it has not come by `deadline` and is given up.
  [[nodiscard]] std::optional<AudioStatus> wait(AudioClock& clock, AudioClock::TimePoint deadline) {
    static_cast<void>(clock.waitUntil(given_, deadline));
    // Also decides when the answer and the deadline come together.
    State expected = State::kOpen;
    if (state_.compare_exchange_strong(expected, State::kGivenUp)) {
      return std::nullopt;
    }
    return status_;
  }

 private:
  enum class State { kOpen, kGiven, kGivenUp };

  // Leaves kOpen once, by whoever comes first: give() or wait().
  std::atomic<State> state_{State::kOpen};
  // Written by give() before state_ becomes kGiven, read after.
  AudioStatus status_ = kAudioStatusOk;
  Semaphore given_;
};

}  // namespace platform
