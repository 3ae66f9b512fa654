#include "platform/sound/DeviceAudioQueues.h"

#include <utility>

#include "platform/sound/DeviceQueues.h"
#include "platform/sound/DeviceThread.h"
#include "platform/sound/RecentFailure.h"
#include "platform/sound/SharedInput.h"

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
      input_(SharedInput::create(deviceThread_->control(), clock_)),
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
  auto made = std::make_unique<DeviceInputQueue>(std::move(callback), std::move(failed),
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
  auto made = std::make_unique<DeviceOutputQueue>(std::move(callback), deviceThread_, clock_,
                                                  outputFailure_);
  if (const AudioStatus status = made->open(); status != kAudioStatusOk) {
    return status;
  }
  return made;
}

bool DeviceAudioQueues::claimInputFailureAlert() {
  return input_->takeFailureReport();
}

bool DeviceAudioQueues::claimDeviceLossAlert() {
  const std::lock_guard lock(mutex_);
  const AudioClock::TimePoint now = clock_->now();
  if (lossToldAt_ && now - *lossToldAt_ < RecentFailure::kMemory) {
    return false;
  }
  lossToldAt_ = now;
  return true;
}

}  // namespace platform
