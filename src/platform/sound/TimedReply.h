#pragma once

#include <atomic>
#include <optional>

#include "platform/base/AudioTypes.h"
#include "platform/sound/AudioClock.h"

namespace platform {

/// The reply to one request to the control thread. Either the requester receives it, or it has
/// given up and give() returns false: a failure is reported exactly once.
///
/// Threads: give() on one, wait() on another. Real-time: not safe.
class TimedReply {
 public:
  /// False when the requester has given up.
  bool give(AudioStatus status) {
    status_ = status;
    State expected = State::kOpen;
    const bool taken = state_.compare_exchange_strong(expected, State::kGiven);
    if (taken) {
      given_.post();
    }
    return taken;
  }

  /// The reply, or nothing if `deadline` passed first; the reply is then given up.
  [[nodiscard]] std::optional<AudioStatus> wait(AudioClock& clock, AudioClock::TimePoint deadline) {
    static_cast<void>(clock.waitUntil(given_, deadline));
    // Also decides when the reply and the deadline coincide.
    State expected = State::kOpen;
    if (state_.compare_exchange_strong(expected, State::kGivenUp)) {
      return std::nullopt;
    }
    return status_;
  }

 private:
  enum class State { kOpen, kGiven, kGivenUp };

  // Leaves kOpen once, through give() or wait(), whichever comes first.
  std::atomic<State> state_{State::kOpen};
  // Written by give() before state_ becomes kGiven, read after.
  AudioStatus status_ = kAudioStatusOk;
  Semaphore given_;
};

}  // namespace platform
