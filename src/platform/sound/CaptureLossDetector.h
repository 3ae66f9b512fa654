#pragma once

#include <cstdint>
#include <limits>

#include "platform/sound/AudioClock.h"

namespace platform {

/// Detects frames lost before they reach the program, for example inside the sound server, by
/// comparing the number captured with a monotonic clock.
///
/// The lag is the number of frames due by now minus the number received. It varies with every
/// callback, but its minimum over a window of two seconds is stable. That minimum drifts slowly
/// with the device's clock (1000 ppm are 88 frames a window) and stays raised only when frames are
/// missing: after a stall without loss the late frames arrive in a burst. After a pause between two
/// callbacks of half a second or more, a shorter window begins, so that a loss is found soon.
///
/// Streams start unevenly, also with a burst of frames that had been kept back. So nothing is found
/// in the first half second, and the first windows are compared with the largest lag of that time,
/// not with the smallest: a burst is not taken for the level that later frames fall behind.
///
/// Threads: the device's real-time thread. Real-time: safe.
class CaptureLossDetector {
 public:
  /// Frames found missing.
  struct Loss {
    std::uint64_t frames = 0;  ///< nearly always 0
    /// They are missing before these frames, the last ones captured before this call; perhaps also
    /// before some earlier ones.
    std::uint64_t capturedSince = 0;
  };

  /// Smallest loss detected, in frames: 100 ms, more than a device's buffering varies.
  static constexpr std::int64_t kThresholdFrames = 4410;

  /// Records that `frames` arrived at `now`.
  Loss captured(std::uint32_t frames, AudioClock::TimePoint now) noexcept;

  /// Starts over for a new stream.
  void reset() noexcept { *this = CaptureLossDetector(); }

 private:
  static constexpr std::int64_t kNone = std::numeric_limits<std::int64_t>::max();

  void begin(AudioClock::TimePoint now) noexcept;
  /// True while the stream settles.
  [[nodiscard]] bool settle(std::int64_t lag, AudioClock::TimePoint now) noexcept;
  void beginWindow(AudioClock::TimePoint now) noexcept;
  void noteLag(std::int64_t lag) noexcept;
  [[nodiscard]] std::uint64_t closeWindow() noexcept;

  bool begun_ = false;
  AudioClock::TimePoint origin_;
  AudioClock::TimePoint windowStart_;
  AudioClock::TimePoint lastCall_;
  bool isSettled_ = false;
  bool isShort_ = true;             // this window
  std::int64_t captured_ = 0;       // frames since origin_
  std::int64_t windowLag_ = kNone;  // smallest lag in this window, frames
  // The lag that the burst after a stall has come down to, nearly, and captured_ then.
  std::int64_t restingLag_ = kNone;
  std::int64_t restingSince_ = 0;
  std::int64_t baselineLag_ = 0;  // the lag that a loss raises
  std::uint32_t windowCalls_ = 0;
};

}  // namespace platform
