#include "platform/sound/LevelMeter.h"

#include <algorithm>
#include <cmath>

namespace platform {

void LevelMeter::enable(bool enabled) {
  const std::lock_guard lock(mutex_);
  enabled_ = enabled;
  if (!enabled) {
    levels_ = {};
  }
}

void LevelMeter::measure(const float* samples, std::size_t frames) {
  {
    const std::lock_guard lock(mutex_);
    if (!enabled_ || frames == 0) {
      return;
    }
  }
  std::array<double, kWorkingChannels> squares{};
  std::array<float, kWorkingChannels> peaks{};
  for (std::size_t frame = 0; frame < frames; ++frame) {
    for (std::size_t channel = 0; channel < kWorkingChannels; ++channel) {
      const float sample = samples[frame * kWorkingChannels + channel];
      const float magnitude = std::isfinite(sample) ? std::fabs(sample) : 0.0F;
      squares[channel] += double{magnitude} * double{magnitude};
      peaks[channel] = std::max(peaks[channel], magnitude);
    }
  }
  const std::lock_guard lock(mutex_);
  if (!enabled_) {
    return;
  }
  for (std::size_t channel = 0; channel < kWorkingChannels; ++channel) {
    const double mean = squares[channel] / static_cast<double>(frames);
    levels_[channel] = {static_cast<float>(std::sqrt(mean)), peaks[channel]};
  }
}

std::size_t LevelMeter::read(AudioQueueLevelMeterState* levels, std::size_t capacity) const {
  const std::lock_guard lock(mutex_);
  const std::size_t count = std::min(capacity, kWorkingChannels);
  std::copy_n(levels_.begin(), count, levels);
  return count;
}

}  // namespace platform
