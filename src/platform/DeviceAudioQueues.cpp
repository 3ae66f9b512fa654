#include "platform/DeviceAudioQueues.h"

#include <utility>

#include "platform/AudioControlThread.h"
#include "platform/DeviceInputQueue.h"
#include "platform/DeviceOutputQueue.h"
#include "platform/KnownFailure.h"
#include "platform/SharedInput.h"

namespace platform {

namespace {
bool isWorkingFormat(AudioStreamBasicDescription format) {
  return completeWorkingFormat(format) == kAudioStatusOk;
}
}  // namespace

DeviceAudioQueues::DeviceAudioQueues(std::shared_ptr<AudioDevice> device,
                                     std::shared_ptr<AudioClock> clock)
    : clock_(std::move(clock)),
      controlThread_(std::make_shared<AudioControlThread>(std::move(device), clock_)),
      input_(SharedInput::create(controlThread_->control(), clock_)),
      outputFailure_(std::make_shared<KnownFailure>()) {}

DeviceAudioQueues::~DeviceAudioQueues() = default;

void DeviceAudioQueues::prepareInput(std::future<void> start) {
  if (start.valid()) {
    controlThread_->control()->post([start = start.share()](AudioDevice&) { start.wait(); });
  }
  input_->prepare();
  controlThread_->control()->post([](AudioDevice& device) { device.prepare(); });
}

AudioStatus DeviceAudioQueues::completeFormat(AudioStreamBasicDescription& format) const {
  return completeWorkingFormat(format);
}

AudioStatus DeviceAudioQueues::newInput(const AudioStreamBasicDescription& format,
                                        AudioInputQueue::Callback callback,
                                        AudioInputQueue::FailureListener failed,
                                        std::unique_ptr<AudioInputQueue>& queue) {
  queue.reset();
  if (!isWorkingFormat(format)) {
    return kInvalidParameterStatus;
  }
  auto made = std::make_unique<DeviceInputQueue>(std::move(callback), std::move(failed),
                                                 controlThread_, input_);
  const AudioStatus status = made->acquireDevice();
  if (status == kAudioStatusOk) {
    queue = std::move(made);
  }
  return status;
}

AudioStatus DeviceAudioQueues::newOutput(const AudioStreamBasicDescription& format,
                                         AudioOutputQueue::Callback callback,
                                         std::unique_ptr<AudioOutputQueue>& queue) {
  queue.reset();
  if (!isWorkingFormat(format)) {
    return kInvalidParameterStatus;
  }
  const AudioStatus known = outputFailure_->recent(clock_->now());
  if (known != kAudioStatusOk) {
    return known;
  }
  auto made = std::make_unique<DeviceOutputQueue>(std::move(callback), controlThread_, clock_,
                                                  outputFailure_);
  const AudioStatus status = made->open();
  if (status == kAudioStatusOk) {
    queue = std::move(made);
  }
  return status;
}

bool DeviceAudioQueues::takeInputFailureReport() {
  return input_->takeFailureReport();
}

bool DeviceAudioQueues::takeLossReport() {
  const std::lock_guard lock(mutex_);
  const AudioClock::TimePoint now = clock_->now();
  if (lossToldAt_ && now - *lossToldAt_ < KnownFailure::kMemory) {
    return false;
  }
  lossToldAt_ = now;
  return true;
}

}  // namespace platform
