#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "audio/ChannelLevels.h"
#include "platform/base/AudioTypes.h"
#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"
#include "storage/OVAudioBufferInterface.h"

/// Captures the default input into a document's buffer.
///
/// The input queue runs from creation on, so that levels are live; recording is only a flag that
/// decides whether captured buffers (3 of 4096 frames travel in turn) are written. A recorder
/// keeps itself alive until prepareForDestruction(). It never starts again: a stopped one is
/// replaced by a new one.
///
///   created, monitoring --record()--> recording --pause()--> monitoring
///     --prepareForDestruction()--> stopped --last reference--> destroyed
///
/// Threads: main, unless said otherwise. Real-time: not safe.
class OVAQRecorder : public std::enable_shared_from_this<OVAQRecorder> {
  struct Key {};

 public:
  using FailureHandler = std::function<void(platform::AudioStatus)>;

  /// A monitoring recorder that writes from byte 0 of `buffer` on, or null when its queue could
  /// not be created or started; this is reported, and the recorder's reference to itself is
  /// dropped. A failing device is alerted once until its state changes, however many recorders are
  /// created meanwhile.
  [[nodiscard]] static std::shared_ptr<OVAQRecorder> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> buffer);

  /// For initWithBuffer() only.
  explicit OVAQRecorder(Key) {}
  ~OVAQRecorder();
  OVAQRecorder(const OVAQRecorder&) = delete;
  OVAQRecorder& operator=(const OVAQRecorder&) = delete;

  /// From now on captured data is written at writingPosition(). A queue buffer that was wholly
  /// captured before the call is not. Nothing while already recording; an alert without a queue.
  void record();

  /// Ends recording at the moment of the call: queue buffers that were wholly captured before it
  /// are still written, also when the queue's thread was behind, later ones are not. Returns when
  /// that is done: no write is running and none will come. The queue keeps running. Nothing while
  /// not recording. There is no limit to the wait: a storage that hangs holds the caller until it
  /// answers, since what was captured is worth more than a window that reacts.
  void pause();

  /// Stops the queue at once, ends recording and drops the recorder's reference to itself. When
  /// it has returned nothing is written any more. To keep what was captured, pause() first.
  void prepareForDestruction();

  /// Drops the recorder's reference to itself.
  void selfrelease();

  /// Stops the queue at once and disposes of it; queue() is null afterwards.
  void destroyAudioQueue();

  /// Average power of each channel over the last captured buffer, linear (0 silence, 1 full
  /// scale), the second channel first; none without a queue or when it cannot be read.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels();

  /// While true the input callback stores and re-enqueues. Any thread.
  [[nodiscard]] bool isRunning() const { return isRunning_.load(std::memory_order_acquire); }
  /// Whether captured data is written. Any thread.
  [[nodiscard]] bool isRecording() const { return isRecording_.load(std::memory_order_acquire); }
  [[nodiscard]] platform::AudioInputQueue* queue() const { return queue_.get(); }

  /// Where captured data goes. Any thread.
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_.get(); }
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) { buffer_.set(std::move(buffer)); }

  /// Byte offset in the buffer of the next captured data. A position that is set while a captured
  /// buffer is being written stays: that write does not advance it. Any thread.
  [[nodiscard]] std::uint64_t writingPosition() const {
    return writingPosition_.load(std::memory_order_acquire);
  }
  void setWritingPosition(std::uint64_t byteOffset) {
    writingPosition_.store(byteOffset, std::memory_order_release);
  }

  /// From now on no captured buffer is written, until the next record(); isRecording() stays true
  /// until pause(). For a full disk: the buffer's failed-write notification calls this, so that
  /// no further lost stretch is mapped. A write that is running is completed. Any thread.
  void stopWriting();

  /// Called once when the device fails or vanishes after creation, after the alert. On
  /// the queue's thread; or, when it happened before the handler was set, by setFailureHandler()
  /// on its caller's thread. A handler that is being called may still run when it has been
  /// replaced.
  void setFailureHandler(FailureHandler handler);

  /// The status with which the device ended the queue, 0 while there is none. Any thread.
  [[nodiscard]] platform::AudioStatus failure() const;

 private:
  /// Captured frames of the queue, counted from its start, that are written: those of buffers
  /// whose end lies in (after, until].
  struct Span {
    std::uint64_t after = 0;
    std::uint64_t until = std::numeric_limits<std::uint64_t>::max();
  };

  [[nodiscard]] bool initAudioQueue();
  [[nodiscard]] bool makeQueue(const platform::AudioStreamBasicDescription& format);
  [[nodiscard]] bool enqueueBuffers(std::uint32_t byteCapacity);
  [[nodiscard]] bool checkDevice(platform::AudioStatus status, const std::string& label);
  void inputCallback(platform::AudioInputQueue& queue, platform::AudioQueueBuffer& buffer);
  void write(OVAudioBufferInterface& destination, const platform::AudioQueueBuffer& buffer);
  [[nodiscard]] bool isWanted(const platform::AudioQueueBuffer& buffer) const;
  void deviceFailed(platform::AudioStatus status);

  // Main thread; the destructor's thread at the end.
  std::shared_ptr<platform::AudioQueues> queues_;  // outlives queue_
  std::unique_ptr<platform::AudioInputQueue> queue_;
  ChannelLevels levels_;
  std::shared_ptr<OVAQRecorder> self_retain_;

  // Written by the main thread, read by the queue's thread without a lock; release and acquire,
  // so that a reader of a flag also sees the writes before it.
  std::atomic<bool> isRunning_{false};
  std::atomic<bool> isRecording_{false};

  // Set by the owner, advanced by the callback by compare-exchange: a position that the owner set
  // meanwhile wins.
  std::atomic<std::uint64_t> writingPosition_{0};

  platform::GuardedPointer<std::shared_ptr<OVAudioBufferInterface>> buffer_;

  mutable platform::Mutex mutex_;
  Span span_ GUARDED_BY(mutex_);
  bool writingStopped_ GUARDED_BY(mutex_) = false;
  platform::AudioStatus failure_ GUARDED_BY(mutex_) = platform::kAudioStatusOk;
  FailureHandler failureHandler_ GUARDED_BY(mutex_);
};
