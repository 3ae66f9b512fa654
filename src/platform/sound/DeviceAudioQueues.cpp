#include "platform/sound/DeviceAudioQueues.h"

#include <utility>

#include "platform/sound/DeviceThread.h"
#include "platform/sound/QueueHandles.h"
#include "platform/sound/RecentFailure.h"
#include "platform/sound/SharedInput.h"
#include "platform/sound/StallWatch.h"

namespace platform {

namespace {
bool isWorkingFormat(AudioStreamBasicDescription format) {
  return completeWorkingFormat(format) == kAudioStatusOk;
}
}  // namespace

DeviceAudioQueues::DeviceAudioQueues(std::shared_ptr<AudioDevice> device,
                                     std::shared_ptr<AudioClock> clock)
    : clock_(std::move(clock)),
      deviceThread_(std::make_shared<DeviceThread>(std::move(device), clock_)),
      stallWatch_(std::make_shared<StallWatch>(clock_)),
      input_(SharedInput::create(deviceThread_->control(), clock_, stallWatch_)),
      outputFailure_(std::make_shared<RecentFailure>()) {}

DeviceAudioQueues::~DeviceAudioQueues() = default;

void DeviceAudioQueues::prepareInput(std::future<void> start) {
  if (start.valid()) {
    deviceThread_->control()->post([start = start.share()](AudioDevice&) { start.wait(); });
  }
  input_->prepare();
  deviceThread_->control()->post([](AudioDevice& device) { device.prepare(); });
}

AudioStatus DeviceAudioQueues::completeFormat(AudioStreamBasicDescription& format) const {
  return completeWorkingFormat(format);
}

AudioQueues::NewInput DeviceAudioQueues::newInput(const AudioStreamBasicDescription& format,
                                                  AudioInputQueue::Callback callback,
                                                  AudioInputQueue::FailureListener failed) {
  if (!isWorkingFormat(format)) {
    return kInvalidParameterStatus;
  }
  auto made = std::make_unique<InputQueueHandle>(std::move(callback), std::move(failed),
                                                 deviceThread_, input_);
  if (const AudioStatus status = made->acquireDevice(); status != kAudioStatusOk) {
    return status;
  }
  return made;
}

AudioQueues::NewOutput DeviceAudioQueues::newOutput(const AudioStreamBasicDescription& format,
                                                    AudioOutputQueue::Callback callback) {
  if (!isWorkingFormat(format)) {
    return kInvalidParameterStatus;
  }
  if (const AudioStatus known = outputFailure_->recent(clock_->now()); known != kAudioStatusOk) {
    return known;
  }
  auto made = std::make_unique<OutputQueueHandle>(std::move(callback), deviceThread_, clock_,
                                                  stallWatch_, outputFailure_);
  if (const AudioStatus status = made->open(); status != kAudioStatusOk) {
    return status;
  }
  return made;
}

bool DeviceAudioQueues::claimInputFailureAlert() {
  return input_->claimFailureAlert();
}

AudioInputSource DeviceAudioQueues::inputSource() const {
  return input_->source();
}

std::uint64_t DeviceAudioQueues::inputSourceRevision() const {
  return input_->sourceRevision();
}

AudioInputSource DeviceAudioQueues::lostInput() const {
  return input_->lost();
}

}  // namespace platform
