#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"
#include "platform/sound/LevelMeter.h"
#include "platform/sound/QueueBuffers.h"
#include "platform/sound/QueueThread.h"
#include "platform/sound/SharedInput.h"
#include "platform/sound/realtime/InputRing.h"

namespace platform {

/// The implementation of an input queue. It outlives its InputQueueHandle while its thread or the
/// control thread still holds it.
///
/// Threads: as AudioInputQueue, except where noted. Real-time: only captured() and skipped() are
/// safe.
class InputQueueCore final : public InputSink,
                             public InputSubscriber,
                             public std::enable_shared_from_this<InputQueueCore> {
 public:
  /// `owner` is passed to the callback; no callback runs once stop() has returned.
  InputQueueCore(AudioInputQueue& owner, AudioInputQueue::Callback callback,
                 AudioInputQueue::FailureListener failed, std::shared_ptr<SharedInput> input);

  /// Makes the device available; see SharedInput::acquire().
  [[nodiscard]] AudioStatus acquireDevice() { return input_->acquire(shared_from_this()); }

  [[nodiscard]] Result<AudioQueueBuffer*, AudioStatus> allocate(std::uint32_t byteCapacity);
  [[nodiscard]] AudioStatus enqueue(AudioQueueBuffer* buffer);
  [[nodiscard]] AudioStatus start();
  void stop();
  void dispose();
  void prepareToRecord();
  void waitUntilDelivered(std::uint64_t frame);
  [[nodiscard]] std::uint64_t capturedFrames() const;
  [[nodiscard]] std::uint64_t lostFrames() const;
  [[nodiscard]] LevelMeter& levels() { return levels_; }

  void captured(const float* samples, std::uint32_t frames) noexcept override;
  void skipped(std::uint64_t frames, std::uint64_t capturedSince) noexcept override;
  void inputFailed(AudioStatus status, LastBlock lastBlock) override;

 private:
  enum class State { kCreated, kRunning, kStopped };

  // On the queue's thread.
  void serve() EXCLUDES(mutex_);
  [[nodiscard]] bool deliverOne() EXCLUDES(mutex_);
  /// Fills the buffer with the oldest block, or with silence for frames lost before it. Returns the
  /// frames whose loss is to be logged, lost in the ring.
  std::uint64_t fill(AudioQueueBuffer& buffer) REQUIRES(mutex_);
  void fillWithSilence(AudioQueueBuffer& buffer, const InputRing::Block& next) REQUIRES(mutex_);
  void fillWithBlock(AudioQueueBuffer& buffer, const InputRing::Block& block) REQUIRES(mutex_);
  void logLoss(std::uint64_t frames);
  void reportFailure() EXCLUDES(mutex_);

  [[nodiscard]] bool isDelivered(std::uint64_t frame) const REQUIRES(mutex_);
  [[nodiscard]] bool canDeliver() const REQUIRES(mutex_);

  void logSystemLoss();
  void logRemainingLoss() EXCLUDES(mutex_);

  // Fixed after construction.
  AudioInputQueue& owner_;
  const std::shared_ptr<SharedInput> input_;
  AudioInputQueue::Callback callback_;  // released by dispose(), when no callback runs any more
  AudioInputQueue::FailureListener failed_;

  LevelMeter levels_;
  QueueThread thread_;

  // Created by start(), under mutex_, before the real-time thread and the queue's thread use this
  // queue; then fixed.
  std::optional<InputRing> ring_;
  // Real-time thread only; inputFailed(), under mutex_, once that thread has left for good.
  std::optional<InputRingProducer> producer_;

  mutable Mutex mutex_;
  Condition progress_;  // something that isDelivered() reads has changed
  State state_ GUARDED_BY(mutex_) = State::kCreated;
  QueueBuffers buffers_ GUARDED_BY(mutex_);
  std::deque<AudioQueueBuffer*> enqueued_ GUARDED_BY(mutex_);
  std::optional<InputRingConsumer> consumer_ GUARDED_BY(mutex_);
  // frames lost before the oldest block: unknown until it is looked at, then those for which
  // silence is still to be delivered
  std::optional<std::uint64_t> silenceLeft_ GUARDED_BY(mutex_);
  // endFrame of the buffer that the callback has
  std::optional<std::uint64_t> inCallback_ GUARDED_BY(mutex_);
  AudioStatus failure_ GUARDED_BY(mutex_) = kAudioStatusOk;
  // the device failed, and its last frames are in the ring
  bool captureEnded_ GUARDED_BY(mutex_) = false;
  bool failureReported_ GUARDED_BY(mutex_) = false;
  std::uint64_t loggedLoss_ GUARDED_BY(mutex_) = 0;  // frames
};

}  // namespace platform
