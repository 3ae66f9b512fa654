#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/base/AudioTypes.h"
#include "platform/base/Mutex.h"

namespace platform {

/// Levels of a queue's last buffer, for each channel of kWorkingFormat. Silence until enabled and
/// measured. Samples that are not finite count as 0.
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
  mutable Mutex mutex_;
  bool enabled_ GUARDED_BY(mutex_) = false;
  std::array<AudioQueueLevelMeterState, kWorkingChannels> levels_ GUARDED_BY(mutex_){};
};

}  // namespace platform
