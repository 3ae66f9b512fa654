#include "audio/OVAQPlayer.h"

#include <utility>

#include "audio/CheckAudioStatus.h"
#include "audio/DeviceFailure.h"
#include "audio/DeviceLossAlert.h"
#include "audio/QueueCallbackScope.h"
#include "platform/mainloop/MainQueue.h"

namespace {

constexpr int kQueueBufferCount = 3;
constexpr std::uint32_t kFramesPerQueueBuffer = 1024;  // 23.2 ms at 44100 Hz
constexpr const char* kStartFailed = "AudioQueueStart failed";

}  // namespace

std::shared_ptr<OVAQPlayer> OVAQPlayer::initWithBuffer(
    std::shared_ptr<OVAudioBufferInterface> buffer, std::uint64_t andPlaybackPosition) {
  auto player = std::make_shared<OVAQPlayer>(Key{});
  player->setReadingPosition(andPlaybackPosition);
  player->setBuffer(std::move(buffer));
  return player->initializePlayer() ? player : nullptr;
}

OVAQPlayer::~OVAQPlayer() {
  stop();
  setBuffer(nullptr);
}

bool OVAQPlayer::initializePlayer() {
  platform::AudioStreamBasicDescription format;
  if (const auto source = buffer()) {
    format = source->format();
  }
  bytesPerFrame_ = format.mBytesPerFrame;
  if (!makeQueue(format)) {
    return false;
  }
  levels_.setChannelCount(format.mChannelsPerFrame);
  if (!CheckAudioStatus(queue_->enableLevelMetering(true), "couldn't enable metering")) {
    return false;
  }
  const auto listener = queueCallback(this, &OVAQPlayer::runningChanged);
  if (!CheckAudioStatus(queue_->setRunningListener(listener), "couldn't install listener")) {
    return false;
  }
  isDone_.store(false, std::memory_order_release);
  return prime(bytesPerFrame_ * kFramesPerQueueBuffer);
}

bool OVAQPlayer::makeQueue(const platform::AudioStreamBasicDescription& format) {
  queues_ = platform::audioQueues();
  auto made = queues_->newOutput(format, queueCallback(this, &OVAQPlayer::outputCallback));
  const platform::AudioStatus status = made.error();
  if (made) {
    queue_ = *std::move(made);
  }
  return CheckAudioStatus(status, "AudioQueueNewOutput failed", outputFailureReason(status));
}

bool OVAQPlayer::prime(std::uint32_t byteCapacity) {
  for (int i = 0; i < kQueueBufferCount && !isDone(); ++i) {
    const auto buffer = queue_->allocateBuffer(byteCapacity);
    if (!CheckAudioStatus(buffer.error(), "AudioQueueAllocateBuffer failed")) {
      return false;
    }
    outputCallback(*queue_, **buffer);
  }
  return true;
}

void OVAQPlayer::play() {
  const auto alive = shared_from_this();  // an alert runs the main loop, which may release this
  if (!queue_) {
    CheckAudioStatus(platform::kInvalidQueueStateStatus, kStartFailed);
    return;
  }
  {
    const platform::MutexLock lock(mutex_);
    isPaused_ = false;
    isPlaying_.store(true, std::memory_order_release);
  }
  const auto status = queue_->start();
  if (isDeviceFailure(status) || status == platform::kNoThreadStatus) {
    deviceFailed(status, kStartFailed);
    postStoppedPlayback();
  } else {
    CheckAudioStatus(status, kStartFailed);
  }
}

void OVAQPlayer::pause() {
  const auto alive = shared_from_this();
  if (!queue_) {
    return;
  }
  const auto status = queue_->pause();
  {
    const platform::MutexLock lock(mutex_);
    isPaused_ = true;
    isPlaying_.store(false, std::memory_order_release);
  }
  check(status, "AudioQueuePause failed");
}

void OVAQPlayer::stop() {
  const auto alive = weak_from_this().lock();  // null in the destructor
  if (!queue_) {
    return;
  }
  const auto status = queue_->stopImmediately();
  isDone_.store(true, std::memory_order_release);
  {
    const platform::MutexLock lock(mutex_);
    isPlaying_.store(false, std::memory_order_release);
  }
  static_cast<void>(queue_->dispose());
  setBuffer(nullptr);
  releaseQueue(std::exchange(queue_, nullptr), queues_, this);
  check(status, "AudioQueueStop failed");
}

std::optional<std::vector<float>> OVAQPlayer::powerLevels() {
  return levels_.powerLevels(queue_.get(), failure());
}

void OVAQPlayer::outputCallback(platform::AudioOutputQueue& queue,
                                platform::AudioQueueBuffer& filled) {
  if (isDone()) {
    return;  // not enqueued again: the queue drains
  }
  filled.mAudioDataByteSize = readInto(filled);
  filled.mPacketDescriptionCount = 0;
  if (filled.mAudioDataByteSize == 0) {
    static_cast<void>(queue.stopAfterQueued());
    isDone_.store(true, std::memory_order_release);
    return;
  }
  static_cast<void>(queue.enqueueBuffer(&filled));
  if (const auto listener = delegate()) {
    listener->playerAdvancedToFrame(readingPosition() / bytesPerFrame_);
  }
}

std::uint32_t OVAQPlayer::readInto(platform::AudioQueueBuffer& filled) {
  const auto source = buffer();
  if (!source) {
    return 0;
  }
  auto position = readingPosition();
  const auto read =
      source->readDataInto(filled.mAudioData, filled.mAudioDataBytesCapacity, position);
  readingPosition_.compare_exchange_strong(position, position + read.byteCount,
                                           std::memory_order_acq_rel);
  return static_cast<std::uint32_t>(read.byteCount);
}

void OVAQPlayer::runningChanged(platform::AudioOutputQueue& queue) {
  std::uint32_t running = 0;
  if ((queue.isRunning(running) & 0xffff) != 0) {
    running = 0;
  }
  {
    const platform::MutexLock lock(mutex_);
    isPlaying_.store((running & 0xffU) != 0 && !isPaused_, std::memory_order_release);
  }
  if (running != 0) {
    return;
  }
  if (const auto status = queue.failure(); status != platform::kAudioStatusOk) {
    deviceFailed(status, kStartFailed);
  }
  postStoppedPlayback();
}

void OVAQPlayer::postStoppedPlayback() {
  platform::mainQueue().async([weak = weak_from_this()] {
    const auto self = weak.lock();
    if (const auto listener = self ? self->delegate() : nullptr) {
      listener->playerStoppedPlayback(self.get());
    }
  });
}

void OVAQPlayer::deviceFailed(platform::AudioStatus status, const std::string& label) {
  {
    const platform::MutexLock lock(mutex_);
    isPlaying_.store(false, std::memory_order_release);
  }
  auto none = platform::kAudioStatusOk;
  const bool first = failure_.compare_exchange_strong(none, status, std::memory_order_acq_rel);
  if (first && isDeviceLoss(status)) {
    reportDeviceLoss(OVInterrupted::playback, status, label);
  } else if (first) {
    CheckAudioStatus(status, label, outputFailureReason(status));
  } else {
    CheckAudioStatusWithoutAlert(status, label);
  }
}

void OVAQPlayer::check(platform::AudioStatus status, const std::string& label) {
  // Follows from the device's failure, which was alerted already.
  if (failure() != platform::kAudioStatusOk) {
    CheckAudioStatusWithoutAlert(status, label);
  } else {
    CheckAudioStatus(status, label, outputFailureReason(status));
  }
}
