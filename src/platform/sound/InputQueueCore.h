#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/sound/AudioQueue.h"
#include "platform/sound/LevelMeter.h"
#include "platform/sound/QueueBuffers.h"
#include "platform/sound/QueueThread.h"
#include "platform/sound/SharedInput.h"
#include "platform/sound/realtime/InputRing.h"

namespace platform {

/// What an input queue is made of. It outlives its DeviceInputQueue for as long as its thread or
/// the control thread still holds it.
///
/// Threads: as AudioInputQueue, except where said. Real-time: only captured() is safe.
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
  void waitUntilDelivered(std::uint64_t frame);
  [[nodiscard]] std::uint64_t capturedFrames() const;
  [[nodiscard]] std::uint64_t lostFrames() const;
  [[nodiscard]] LevelMeter& levels() { return levels_; }

  void captured(const float* samples, std::uint32_t frames) noexcept override;
  void inputFailed(AudioStatus status) override;

 private:
  enum class State { kCreated, kRunning, kStopped };

  // On the queue's thread.
  void serve();
  [[nodiscard]] bool deliverOne();
  void fill(AudioQueueBuffer& buffer);
  void tellLoss(std::uint64_t frames);
  void tellFailure();

  // With mutex_ held.
  [[nodiscard]] bool isDelivered(std::uint64_t frame) const;
  [[nodiscard]] bool canDeliver() const;

  void tellLossInSystem();
  void tellLossAtTheEnd();

  // Fixed after construction.
  AudioInputQueue& owner_;
  const std::shared_ptr<SharedInput> input_;
  AudioInputQueue::Callback callback_;  // let go by dispose(), when no callback runs any more
  AudioInputQueue::FailureListener failed_;

  LevelMeter levels_;
  QueueThread thread_;

  // Made by start(), under mutex_, before the real-time thread and the queue's thread know of this
  // queue; then fixed.
  std::optional<InputRing> ring_;
  // Real-time thread only; once that has left for good, inputFailed() under mutex_.
  std::optional<InputRingProducer> producer_;

  mutable std::mutex mutex_;
  std::condition_variable progress_;  // something that isDelivered() looks at has changed
  // guarded by mutex_
  State state_ = State::kCreated;
  QueueBuffers buffers_;
  std::deque<AudioQueueBuffer*> enqueued_;
  std::optional<InputRingConsumer> consumer_;
  std::optional<std::uint64_t> inCallback_;  // endFrame of the buffer that the callback has
  AudioStatus failure_ = kAudioStatusOk;
  bool captureEnded_ = false;  // by the failure: the last frames are in the ring
  bool failureTold_ = false;
  std::uint64_t lossTold_ = 0;  // frames
};

}  // namespace platform
