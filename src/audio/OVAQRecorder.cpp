#include "audio/OVAQRecorder.h"

#include <algorithm>
#include <utility>

#include "audio/CheckAudioStatus.h"
#include "audio/DeviceFailure.h"
#include "audio/DeviceLossAlert.h"
#include "audio/QueueCallbackScope.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"

namespace {

constexpr int kQueueBufferCount = 3;
constexpr const char* kSupportMailAddress = "support@orvo.example";

}  // namespace

std::shared_ptr<OVAQRecorder> OVAQRecorder::initWithBuffer(
    std::shared_ptr<OVAudioBufferInterface> buffer, DeviceAlerts alerts) {
  auto recorder = std::make_shared<OVAQRecorder>(Key{});
  recorder->deviceAlerts_ = alerts;
  recorder->self_retain_ = recorder;
  recorder->setBuffer(std::move(buffer));
  recorder->setWritingPosition(0);
  if (!recorder->initAudioQueue()) {
    recorder->selfrelease();
    return nullptr;
  }
  return recorder;
}

OVAQRecorder::~OVAQRecorder() {
  isRunning_.store(false, std::memory_order_release);
  isRecording_.store(false, std::memory_order_release);
  destroyAudioQueue();
}

bool OVAQRecorder::initAudioQueue() {
  platform::AudioStreamBasicDescription format;
  queues_ = platform::audioQueues();
  // Without a buffer the format stays all zero, and the queue refuses it.
  if (const auto source = buffer()) {
    format = source->format();
    if (!checkDevice(queues_->completeFormat(format), "AudioFormatGetProperty failed")) {
      return false;
    }
  }
  if (!makeQueue(format) ||
      !enqueueBuffers(format.mBytesPerFrame * platform::kRecordingChunkFrames)) {
    return false;
  }
  if (!CheckAudioStatus(queue_->streamDescription(format), "couldn't get stream description")) {
    return false;
  }
  levels_.setChannelCount(format.mChannelsPerFrame);
  if (!CheckAudioStatus(queue_->enableLevelMetering(true), "couldn't enable metering")) {
    return false;
  }
  isRecording_.store(false, std::memory_order_release);
  isRunning_.store(true, std::memory_order_release);
  return checkDevice(queue_->start(), "AudioQueueStart failed");
}

bool OVAQRecorder::makeQueue(const platform::AudioStreamBasicDescription& format) {
  const auto callback = queueCallback(this, &OVAQRecorder::inputCallback);
  const auto failed = queueCallback(this, &OVAQRecorder::deviceFailed);
  auto made = queues_->newInput(format, callback, failed);
  const platform::AudioStatus status = made.error();
  if (made) {
    queue_ = *std::move(made);
  }
  return checkDevice(status, "lul AudioQueueNewInput failed");
}

bool OVAQRecorder::enqueueBuffers(std::uint32_t byteCapacity) {
  for (int i = 0; i < kQueueBufferCount; ++i) {
    const auto buffer = queue_->allocateBuffer(byteCapacity);
    if (!CheckAudioStatus(buffer.error(), "AudioQueueAllocateBuffer failed") ||
        !CheckAudioStatus(queue_->enqueueBuffer(*buffer), "AudioQueueEnqueueBuffer failed")) {
      return false;
    }
  }
  return true;
}

bool OVAQRecorder::checkDevice(platform::AudioStatus status, const std::string& label) {
  if (isDeviceFailure(status) &&
      (deviceAlerts_ == DeviceAlerts::heldBack || !queues_->claimInputFailureAlert())) {
    return CheckAudioStatusWithoutAlert(status, label);
  }
  return CheckAudioStatus(status, label, inputFailureReason(status));
}

void OVAQRecorder::record() {
  if (!queue_) {
    ShowModalAlert(
        platform::localizedUtf8("no queue on record!"),
        platform::localizedUtf8("this shouldn't happen. contact ") + kSupportMailAddress + "!");
    return;
  }
  if (isRecording()) {
    return;
  }
  queue_->prepareToRecord();
  {
    const platform::MutexLock lock(mutex_);
    span_ = Span{.after = queue_->capturedFrames()};
    writingStopped_ = false;
  }
  losses_.begin(queue_->lostFrames());
  silentFrames_.store(0, std::memory_order_relaxed);
  isRecording_.store(true, std::memory_order_release);
}

void OVAQRecorder::pause() {
  if (!isRecording()) {
    return;
  }
  if (queue_) {
    // Under the lock that the callback decides under: a buffer that it accepted before is within
    // the span's new end and is waited for; later ones are compared with that end.
    std::uint64_t pressed = 0;
    std::uint64_t lost = 0;
    {
      const platform::MutexLock lock(mutex_);
      pressed = queue_->capturedFrames();
      lost = queue_->lostFrames();
      span_.until = pressed;
    }
    queue_->waitUntilDelivered(pressed);
    losses_.end(lost, writingPosition() / platform::kWorkingFrameBytes);
  }
  isRecording_.store(false, std::memory_order_release);
}

void OVAQRecorder::prepareForDestruction() {
  if (queue_) {
    static_cast<void>(queue_->stopImmediately());
  }
  isRunning_.store(false, std::memory_order_release);
  isRecording_.store(false, std::memory_order_release);
  selfrelease();
}

void OVAQRecorder::selfrelease() {
  // Released at the end of this scope, not within the assignment: it may be the last reference.
  const auto released = std::exchange(self_retain_, nullptr);
}

void OVAQRecorder::destroyAudioQueue() {
  if (!queue_) {
    return;
  }
  static_cast<void>(queue_->stopImmediately());
  static_cast<void>(queue_->dispose());
  releaseQueue(std::exchange(queue_, nullptr), queues_, this);
}

std::optional<std::vector<float>> OVAQRecorder::powerLevels() {
  return levels_.powerLevels(queue_.get(), failure());
}

void OVAQRecorder::inputCallback(platform::AudioInputQueue& queue,
                                 platform::AudioQueueBuffer& captured) {
  if (!isRunning()) {
    return;  // not enqueued again: the queue drains
  }
  const auto destination = buffer();
  if (isRecording() && destination && isWanted(captured)) {
    measureSilence(captured);
    write(*destination, captured);
  }
  if (isRunning()) {
    static_cast<void>(queue.enqueueBuffer(&captured));
  }
}

void OVAQRecorder::write(OVAudioBufferInterface& destination,
                         const platform::AudioQueueBuffer& captured) {
  auto position = writingPosition();
  const auto byteCount = captured.mAudioDataByteSize;
  if (isLossBefore(captured)) {
    losses_.disregard(captured);
    if (captured.silencedFrames > 0) {
      return;
    }
  } else {
    losses_.written(captured, position / platform::kWorkingFrameBytes);
  }
  destination.writeData(captured.mAudioData, position, byteCount);
  writingPosition_.compare_exchange_strong(position, position + byteCount,
                                           std::memory_order_acq_rel);
}

void OVAQRecorder::measureSilence(const platform::AudioQueueBuffer& captured) {
  if (captured.silencedFrames > 0) {
    return;
  }
  const auto* const samples = reinterpret_cast<const float*>(captured.mAudioData);
  const std::size_t count = captured.mAudioDataByteSize / sizeof(float);
  if (std::all_of(samples, samples + count, [](float sample) { return sample == 0; })) {
    silentFrames_.fetch_add(count / platform::kWorkingChannels, std::memory_order_relaxed);
  } else {
    silentFrames_.store(0, std::memory_order_relaxed);
  }
}

bool OVAQRecorder::isWanted(const platform::AudioQueueBuffer& captured) const {
  const platform::MutexLock lock(mutex_);
  return !writingStopped_ && captured.endFrame > span_.after && captured.endFrame <= span_.until;
}

// Found while recording, but frames that were lost before it began.
bool OVAQRecorder::isLossBefore(const platform::AudioQueueBuffer& captured) const {
  const platform::MutexLock lock(mutex_);
  return (captured.silencedFrames > 0 || captured.missingBefore > 0) &&
         captured.lostAtFrame <= span_.after;
}

void OVAQRecorder::stopWriting() {
  const platform::MutexLock lock(mutex_);
  writingStopped_ = true;
}

void OVAQRecorder::deviceFailed(platform::AudioStatus status) {
  constexpr auto label = "AudioQueueStart failed";
  if (isDeviceLoss(status)) {
    const auto interrupted = isRecording() ? OVInterrupted::recording : OVInterrupted::nothing;
    if (isLossTold(interrupted, status)) {
      static_cast<void>(queues_->claimInputFailureAlert());  // the next recorder need not alert
    }
    reportDeviceLoss(interrupted, status, label);
  } else if (isRecording() && (!isDeviceFailure(status) || queues_->claimInputFailureAlert())) {
    CheckAudioStatus(status, label, inputFailureReason(status));
  } else {
    CheckAudioStatusWithoutAlert(status, label);
  }
  FailureHandler handler;
  {
    const platform::MutexLock lock(mutex_);
    failure_ = status;
    handler = std::exchange(failureHandler_, nullptr);
  }
  if (handler) {
    handler(status);
  }
}

void OVAQRecorder::setFailureHandler(FailureHandler handler) {
  platform::AudioStatus failed = platform::kAudioStatusOk;
  {
    const platform::MutexLock lock(mutex_);
    failed = failure_;
    if (failed == platform::kAudioStatusOk) {
      failureHandler_ = std::exchange(handler, nullptr);
    }
  }
  if (handler) {
    handler(failed);
  }
}

platform::AudioStatus OVAQRecorder::failure() const {
  const platform::MutexLock lock(mutex_);
  return failure_;
}
