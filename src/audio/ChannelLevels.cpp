#include "audio/ChannelLevels.h"

#include <algorithm>
#include <cstddef>

#include "audio/CheckAudioStatus.h"

namespace {

// The meter is always read for two channels, whatever the queue's channel count.
constexpr std::size_t kMeterReadChannels = 2;
constexpr int kHighestChannelNumber = 127;

// Only the low 16 bits of the meter's status count, sign-extended.
platform::AudioStatus lowWord(platform::AudioStatus status) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(status));
}

}  // namespace

std::optional<std::vector<float>> averagePowers(
    const std::vector<int>& channelNumbers,
    const std::vector<platform::AudioQueueLevelMeterState>& levels) {
  std::vector<float> powers;
  powers.reserve(channelNumbers.size());
  for (const int channel : channelNumbers) {
    const auto index = static_cast<std::size_t>(channel);
    if (channel < 0 || index >= channelNumbers.size() || channel > kHighestChannelNumber) {
      return std::nullopt;
    }
    if (index < levels.size()) {
      powers.push_back(levels[index].mAveragePower);
    }
  }
  return powers;
}

void ChannelLevels::setChannelCount(std::uint32_t channels) {
  if (channels == channelNumbers_.size()) {
    return;
  }
  channelNumbers_ = channels < 2 ? std::vector<int>{0} : std::vector<int>{1, 0};
  // A mono queue's array has room for the second channel too.
  chan_lvls_.resize(std::max<std::size_t>(channels, kMeterReadChannels));
}

std::optional<std::vector<float>> ChannelLevels::powerLevels(const platform::AudioQueue* queue,
                                                             platform::AudioStatus failure) {
  return queue == nullptr || failure != platform::kAudioStatusOk ? std::nullopt
                                                                 : powerLevels(*queue);
}

std::optional<std::vector<float>> ChannelLevels::powerLevels(const platform::AudioQueue& queue) {
  const auto cleared = std::min(channelNumbers_.size(), chan_lvls_.size());
  std::fill_n(chan_lvls_.begin(), cleared, platform::AudioQueueLevelMeterState{});
  std::size_t count = 0;
  const auto capacity = std::min(kMeterReadChannels, chan_lvls_.size());
  const auto status = lowWord(queue.currentLevels(chan_lvls_.data(), capacity, count));
  if (status != platform::kAudioStatusOk) {
    // The label deliberately names the decibel meter although the linear one is read.
    if (!failureReported_) {
      failureReported_ = true;
      CheckAudioStatus(status, "kAudioQueueProperty_CurrentLevelMeterDB");
    }
    return std::nullopt;
  }
  failureReported_ = false;
  return averagePowers(channelNumbers_, chan_lvls_);
}
