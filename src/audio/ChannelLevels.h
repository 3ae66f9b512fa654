#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/base/AudioTypes.h"
#include "platform/sound/AudioQueue.h"

/// The average powers of the listed channels, in the order of the list.
///
/// @param channelNumbers  channels to report, 0 the first
/// @param levels          one entry a channel; channels without one are left out
/// @return linear levels (0 silence, 1 full scale); nothing when a channel number is negative, not
///         below the list's own length, or above 127
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<std::vector<float>> averagePowers(
    const std::vector<int>& channelNumbers,
    const std::vector<platform::AudioQueueLevelMeterState>& levels);

/// The channels that a recorder or player reports, in their order, and their last levels.
///
/// Threads: one, the owner's. Real-time: not safe.
class ChannelLevels {
 public:
  /// Adapts to a queue's channel count, at least 1: one channel is reported as [0], two and more as
  /// [1, 0], the second channel first.
  void setChannelCount(std::uint32_t channels);

  /// Reads the linear level meter of `queue`. Nothing on failure, which is alerted once until a
  /// read succeeds again: meters poll many times a second.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels(const platform::AudioQueue& queue);

  /// The same for a queue that may be null or whose device may have failed with `failure`, which is
  /// reported elsewhere: then nothing, without reading the meter.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels(const platform::AudioQueue* queue,
                                                              platform::AudioStatus failure);

  [[nodiscard]] const std::vector<int>& channelNumbers() const { return channelNumbers_; }

 private:
  std::vector<platform::AudioQueueLevelMeterState> chan_lvls_;
  std::vector<int> channelNumbers_;
  bool failureReported_ = false;
};
