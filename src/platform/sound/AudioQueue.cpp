#include "platform/sound/AudioQueue.h"

#include <atomic>
#include <cstdio>

namespace platform {

namespace {

/// The default: no sound is available.
class NoAudioQueues final : public AudioQueues {
 public:
  AudioStatus completeFormat(AudioStreamBasicDescription& format) const override {
    return completeWorkingFormat(format);
  }
  NewInput newInput(const AudioStreamBasicDescription&, AudioInputQueue::Callback,
                    AudioInputQueue::FailureListener) override {
    std::fputs("no sound input\n", stderr);
    return kDeviceUnavailableStatus;
  }
  NewOutput newOutput(const AudioStreamBasicDescription&, AudioOutputQueue::Callback) override {
    std::fputs("no sound output\n", stderr);
    return kDeviceUnavailableStatus;
  }
  bool claimInputFailureAlert() override { return !claimed_.exchange(true); }

 private:
  std::atomic<bool> claimed_{false};
};

}  // namespace

std::shared_ptr<AudioQueues> AudioQueues::whenNoneIsInstalled() {
  return std::make_shared<NoAudioQueues>();
}

AudioStatus completeWorkingFormat(AudioStreamBasicDescription& format) {
  AudioStreamBasicDescription completed = format;
  const auto& working = kWorkingFormat;
  const auto fill = [](std::uint32_t& field, std::uint32_t value) {
    if (field == 0) {
      field = value;
    }
  };
  fill(completed.mBytesPerPacket, working.mBytesPerPacket);
  fill(completed.mFramesPerPacket, working.mFramesPerPacket);
  fill(completed.mBytesPerFrame, working.mBytesPerFrame);
  fill(completed.mBitsPerChannel, working.mBitsPerChannel);
  if (completed != working) {
    return kInvalidParameterStatus;
  }
  format = completed;
  return kAudioStatusOk;
}

}  // namespace platform
