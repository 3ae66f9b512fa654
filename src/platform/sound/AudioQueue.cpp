#include "platform/sound/AudioQueue.h"

#include <mutex>
#include <utility>

namespace platform {

namespace {

/// Installed where there is no sound at all.
class NoAudioQueues final : public AudioQueues {
 public:
  AudioStatus completeFormat(AudioStreamBasicDescription& format) const override {
    return completeWorkingFormat(format);
  }
  AudioStatus newInput(const AudioStreamBasicDescription&, AudioInputQueue::Callback,
                       AudioInputQueue::FailureListener,
                       std::unique_ptr<AudioInputQueue>&) override {
    return kDeviceUnavailableStatus;
  }
  AudioStatus newOutput(const AudioStreamBasicDescription&, AudioOutputQueue::Callback,
                        std::unique_ptr<AudioOutputQueue>&) override {
    return kDeviceUnavailableStatus;
  }
  bool claimInputFailureAlert() override {
    const std::lock_guard lock(mutex_);
    return !std::exchange(reported_, true);
  }
  bool claimDeviceLossAlert() override { return true; }

 private:
  std::mutex mutex_;
  bool reported_ = false;  // guarded by mutex_
};

struct Installed {
  std::mutex mutex;  // guards queues
  std::shared_ptr<AudioQueues> queues = std::make_shared<NoAudioQueues>();
};

// Never destroyed: what is still installed at the end must not call into a sound library from a
// static destructor.
Installed& installed() {
  static auto* instance = new Installed;
  return *instance;
}

std::shared_ptr<AudioQueues> exchange(std::shared_ptr<AudioQueues> queues) {
  const std::lock_guard lock(installed().mutex);
  std::swap(installed().queues, queues);
  return queues;
}

}  // namespace

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

std::shared_ptr<AudioQueues> audioQueues() {
  const std::lock_guard lock(installed().mutex);
  return installed().queues;
}

AudioQueuesInstallation::AudioQueuesInstallation(std::shared_ptr<AudioQueues> queues)
    : previous_(exchange(std::move(queues))) {}

AudioQueuesInstallation::~AudioQueuesInstallation() {
  exchange(std::move(previous_));
}

}  // namespace platform
