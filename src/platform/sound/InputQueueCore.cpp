#include "platform/sound/InputQueueCore.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/base/ApplicationServices.h"

namespace platform {

InputQueueCore::InputQueueCore(AudioInputQueue& owner, AudioInputQueue::Callback callback,
                               AudioInputQueue::FailureListener failed,
                               std::shared_ptr<SharedInput> input)
    : owner_(owner),
      input_(std::move(input)),
      callback_(std::move(callback)),
      failed_(std::move(failed)) {}

Result<AudioQueueBuffer*, AudioStatus> InputQueueCore::allocate(std::uint32_t byteCapacity) {
  const MutexLock lock(mutex_);
  if (state_ != State::kCreated) {
    return kInvalidQueueStateStatus;
  }
  if (byteCapacity / kWorkingFrameBytes > kInputRingFrames / 2) {
    return kInvalidParameterStatus;
  }
  return buffers_.allocate(byteCapacity);
}

AudioStatus InputQueueCore::enqueue(AudioQueueBuffer* buffer) {
  {
    const MutexLock lock(mutex_);
    if (state_ == State::kStopped) {
      return kInvalidQueueStateStatus;
    }
    const AudioStatus status = buffers_.markEnqueued(buffer);
    if (status != kAudioStatusOk) {
      return status;
    }
    enqueued_.push_back(buffer);
  }
  thread_.wake();
  return kAudioStatusOk;
}

AudioStatus InputQueueCore::start() {
  const MutexLock lock(mutex_);
  if (state_ == State::kStopped) {
    return kInvalidQueueStateStatus;
  }
  if (failure_ != kAudioStatusOk) {
    failureReported_ = true;
    return failure_;
  }
  if (state_ == State::kRunning) {
    return kAudioStatusOk;
  }
  const std::uint32_t blockFrames = buffers_.smallestFrames();
  if (blockFrames == 0) {
    return kInvalidQueueStateStatus;  // without a buffer the block size is unknown
  }
  ring_.emplace(blockFrames, kInputRingFrames / blockFrames,
                std::max<std::uint32_t>(kMonitoringRingFrames / blockFrames, 2));
  producer_.emplace(*ring_);
  consumer_.emplace(*ring_);
  const AudioStatus status = thread_.start([self = shared_from_this()] { self->serve(); });
  if (status == kAudioStatusOk) {
    state_ = State::kRunning;
    input_->fanOut().add(*this);
  }
  return status;
}

void InputQueueCore::stop() {
  {
    const MutexLock lock(mutex_);
    state_ = State::kStopped;
  }
  input_->fanOut().remove(*this);
  input_->release(*this);
  progress_.notifyAll();
  thread_.end();
  if (!thread_.isCurrent()) {
    logRemainingLoss();
  }
}

void InputQueueCore::dispose() {
  stop();
  if (thread_.isCurrent()) {
    return;  // buffers and callbacks are still in use; the thread releases them
  }
  // Released outside the lock: they may hold the last reference to the owner of this queue.
  const auto callback = std::exchange(callback_, nullptr);
  const auto failed = std::exchange(failed_, nullptr);
  const MutexLock lock(mutex_);
  enqueued_.clear();
  buffers_.clear();
}

void InputQueueCore::prepareToRecord() {
  const MutexLock lock(mutex_);
  if (ring_) {
    ring_->grow();
  }
}

std::uint64_t InputQueueCore::capturedFrames() const {
  const MutexLock lock(mutex_);
  return ring_ ? ring_->publishedEndFrame() : 0;
}

std::uint64_t InputQueueCore::lostFrames() const {
  const MutexLock lock(mutex_);
  return ring_ ? ring_->lostFrames() : 0;
}

bool InputQueueCore::isDelivered(std::uint64_t frame) const {
  if (state_ != State::kRunning) {
    return true;
  }
  if (inCallback_) {
    return *inCallback_ > frame;
  }
  const InputRing::Block* next = consumer_->front();
  return next == nullptr || next->endFrame > frame || enqueued_.empty();
}

void InputQueueCore::waitUntilDelivered(std::uint64_t frame) {
  if (thread_.isCurrent()) {
    return;  // would wait for itself
  }
  const MutexLock lock(mutex_);
  while (!isDelivered(frame)) {
    progress_.wait(mutex_);
  }
}

void InputQueueCore::captured(const float* samples, std::uint32_t frames) noexcept {
  if (producer_->write(samples, frames) > 0) {
    thread_.wake();
  }
}

void InputQueueCore::skipped(std::uint64_t frames, std::uint64_t capturedSince) noexcept {
  if (producer_->skip(frames, capturedSince) > 0) {
    thread_.wake();
  }
}

void InputQueueCore::inputFailed(AudioStatus status, LastBlock lastBlock) {
  {
    const MutexLock lock(mutex_);
    if (failure_ != kAudioStatusOk) {
      return;
    }
    failure_ = status;
  }
  input_->fanOut().remove(*this);
  {
    // The real-time thread has left: its unfinished block is the last of the capture.
    const MutexLock lock(mutex_);
    if (producer_ && lastBlock == LastBlock::kDelivered) {
      producer_->finish();
    }
    captureEnded_ = true;
  }
  thread_.wake();
}

void InputQueueCore::serve() {
  while (!thread_.isEnding() && deliverOne()) {
  }
  logSystemLoss();
  if (!thread_.isEnding()) {
    reportFailure();
  }
}

bool InputQueueCore::canDeliver() const {
  return state_ == State::kRunning && consumer_->front() != nullptr && !enqueued_.empty();
}

bool InputQueueCore::deliverOne() {
  AudioQueueBuffer* buffer = nullptr;
  std::uint64_t lost = 0;
  {
    const MutexLock lock(mutex_);
    if (!canDeliver()) {
      return false;
    }
    buffer = enqueued_.front();
    enqueued_.pop_front();
    buffers_.markReturned(buffer);
    lost = fill(*buffer);
    inCallback_ = buffer->endFrame;
  }
  logLoss(lost);
  levels_.measure(reinterpret_cast<const float*>(buffer->mAudioData),
                  buffer->mAudioDataByteSize / kWorkingFrameBytes);
  if (callback_) {
    callback_(owner_, *buffer);
  }
  {
    const MutexLock lock(mutex_);
    inCallback_.reset();
  }
  progress_.notifyAll();
  return true;
}

std::uint64_t InputQueueCore::fill(AudioQueueBuffer& buffer) {
  const InputRing::Block& block = *consumer_->front();
  buffer.mPacketDescriptionCount = 0;
  buffer.lostAtFrame = block.lostAtFrame();
  std::uint64_t lostInRing = 0;
  if (!silenceLeft_) {
    silenceLeft_ = block.lostBefore <= kMaxSilencedFrames ? block.lostBefore : 0;
    lostInRing = block.lostBefore - block.skippedBefore;
    loggedLoss_ += block.lostBefore;
  }
  if (*silenceLeft_ > 0) {
    fillWithSilence(buffer, block);
  } else {
    fillWithBlock(buffer, block);
    silenceLeft_.reset();
    consumer_->pop();
  }
  return lostInRing;
}

void InputQueueCore::fillWithSilence(AudioQueueBuffer& buffer, const InputRing::Block& next) {
  const auto frames = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(buffer.mAudioDataBytesCapacity / kWorkingFrameBytes, *silenceLeft_));
  *silenceLeft_ -= frames;
  std::memset(buffer.mAudioData, 0, std::size_t{frames} * kWorkingFrameBytes);
  buffer.mAudioDataByteSize = frames * kWorkingFrameBytes;
  buffer.endFrame = next.firstFrame - *silenceLeft_;
  buffer.silencedFrames = frames;
  buffer.missingBefore = 0;
}

void InputQueueCore::fillWithBlock(AudioQueueBuffer& buffer, const InputRing::Block& block) {
  const std::uint32_t bytes = block.frames() * kWorkingFrameBytes;
  std::memcpy(buffer.mAudioData, consumer_->frontSamples(), bytes);
  buffer.mAudioDataByteSize = bytes;
  buffer.endFrame = block.endFrame;
  buffer.silencedFrames = 0;
  buffer.missingBefore = block.lostBefore > kMaxSilencedFrames ? block.lostBefore : 0;
}

void InputQueueCore::logLoss(std::uint64_t frames) {
  if (frames > 0) {
    ConsoleLog("Audio input: %llu frames were lost, their receiver was held up for too long",
               static_cast<unsigned long long>(frames));
  }
}

void InputQueueCore::logSystemLoss() {
  if (const std::uint64_t lost = input_->takeFramesLostInSystem()) {
    ConsoleLog("Audio input: about %llu frames were lost inside the sound system",
               static_cast<unsigned long long>(lost));
  }
}

void InputQueueCore::logRemainingLoss() {
  logSystemLoss();
  std::uint64_t unlogged = 0;
  {
    const MutexLock lock(mutex_);
    if (ring_) {
      unlogged = ring_->lostFrames() - loggedLoss_;
      loggedLoss_ += unlogged;
    }
  }
  logLoss(unlogged);
}

void InputQueueCore::reportFailure() {
  AudioStatus status = kAudioStatusOk;
  {
    const MutexLock lock(mutex_);
    // Blocks finished since the last check of the ring go first; their wake-up is under way.
    if (!captureEnded_ || canDeliver() || std::exchange(failureReported_, true)) {
      return;
    }
    status = failure_;
  }
  if (failed_) {
    failed_(status);
  }
}

}  // namespace platform
