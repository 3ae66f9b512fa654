#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "platform/base/AudioTypes.h"

namespace platform {

/// Levels of the last buffer of a queue, for each channel of kWorkingFormat. Silence until it is
/// enabled and has measured. A sample that is not a finite number counts as 0.
///
/// Threads: any. Real-time: not safe.
class LevelMeter {
 public:
  /// Switching off clears the levels.
  void enable(bool enabled);

  /// Measures `frames` interleaved frames; without effect while switched off or for 0 frames.
  void measure(const float* samples, std::size_t frames);

  /// Copies the levels of the first `capacity` channels; returns how many.
  std::size_t read(AudioQueueLevelMeterState* levels, std::size_t capacity) const;

 private:
  mutable std::mutex mutex_;
  // guarded by mutex_
  bool enabled_ = false;
  std::array<AudioQueueLevelMeterState, kWorkingChannels> levels_{};
};

}  // namespace platform
