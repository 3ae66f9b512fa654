#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "audio/ChannelLevels.h"
#include "audio/OVRecordingLosses.h"
#include "platform/base/AudioTypes.h"
#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"
#include "storage/OVAudioBufferInterface.h"

/// Captures the default input into a document's buffer.
///
/// The input queue runs from creation on, so that levels are live. Recording is a flag that decides
/// whether captured buffers (three of 4096 frames circulate) are written. A recorder keeps itself
/// alive until prepareForDestruction(). Once stopped it cannot be restarted: create a new one.
///
///   created, monitoring --record()--> recording --pause()--> monitoring
///     --prepareForDestruction()--> stopped --last reference--> destroyed
///
/// Threads: main, unless noted. Real-time: not safe.
class OVAQRecorder : public std::enable_shared_from_this<OVAQRecorder> {
  struct Key {};

 public:
  using FailureHandler = std::function<void(platform::AudioStatus)>;

  /// Whether a device that cannot be opened is alerted.
  enum class DeviceAlerts {
    shown,     ///< once until its state changes, for any number of recorders
    heldBack,  ///< it is only printed: nobody has asked for a recording yet
  };

  /// A monitoring recorder that writes from byte 0 of `buffer` on. Null if its queue could not be
  /// created or started, which is reported; the recorder's reference to itself is then dropped.
  [[nodiscard]] static std::shared_ptr<OVAQRecorder> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> buffer, DeviceAlerts alerts = DeviceAlerts::shown);

  /// For initWithBuffer() only.
  explicit OVAQRecorder(Key) {}
  ~OVAQRecorder();
  OVAQRecorder(const OVAQRecorder&) = delete;
  OVAQRecorder& operator=(const OVAQRecorder&) = delete;

  /// From now on captured data is written at writingPosition(), except for queue buffers captured
  /// entirely before the call, and silence for frames lost before it. Does nothing while recording;
  /// alerts if there is no queue.
  void record();

  /// Ends recording at the moment of the call: queue buffers captured entirely before it are still
  /// written, later ones are not. Returns once they are written, without a time limit, since
  /// captured audio matters more than a responsive window: a hanging storage blocks the caller. The
  /// queue keeps running. Does nothing while not recording.
  void pause();

  /// Stops the queue at once, ends recording and drops the recorder's reference to itself. Nothing
  /// is written after that. To keep what was captured, call pause() first.
  void prepareForDestruction();

  /// Drops the recorder's reference to itself.
  void selfrelease();

  /// Stops the queue at once and disposes of it; queue() is null afterwards.
  void destroyAudioQueue();

  /// Average power of each channel over the last captured buffer, linear (0 silence, 1 full scale),
  /// the second channel first; nothing without a queue or when it cannot be read.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels();

  /// While true, the input callback stores and re-enqueues buffers. Any thread.
  [[nodiscard]] bool isRunning() const { return isRunning_.load(std::memory_order_acquire); }
  /// Whether captured data is written. Any thread.
  [[nodiscard]] bool isRecording() const { return isRecording_.load(std::memory_order_acquire); }
  [[nodiscard]] platform::AudioInputQueue* queue() const { return queue_.get(); }

  /// Destination of captured data. Any thread.
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_.get(); }
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) { buffer_.set(std::move(buffer)); }

  /// Byte offset in the buffer of the next captured data. A position set while a captured buffer is
  /// being written is kept: that write does not advance it. Any thread.
  [[nodiscard]] std::uint64_t writingPosition() const {
    return writingPosition_.load(std::memory_order_acquire);
  }
  void setWritingPosition(std::uint64_t byteOffset) {
    writingPosition_.store(byteOffset, std::memory_order_release);
  }

  /// Stops writing captured buffers until the next record(); isRecording() stays true until
  /// pause(). The handler of failed writes calls this on a full disk, so that no more lost
  /// stretches are mapped. A running write completes. Any thread.
  void stopWriting();

  /// Called once when the device fails or vanishes after creation: on the queue's thread, or within
  /// setFailureHandler() if it had failed before. The user is alerted (a late failure to open only
  /// while recording). A replaced handler may still be running.
  void setFailureHandler(FailureHandler handler);

  /// Frames of digital silence that the recording ends with so far; 0 while not recording. Silence
  /// for lost frames does not count. Any thread.
  [[nodiscard]] std::uint64_t silentFrames() const {
    return isRecording() ? silentFrames_.load(std::memory_order_relaxed) : 0;
  }

  /// The gaps of the recording, or of the last one. Any thread.
  [[nodiscard]] std::vector<OVRecordingLoss> losses() const { return losses_.all(); }
  [[nodiscard]] std::size_t lossCount() const { return losses_.count(); }

  /// The status of the device failure that ended the queue; 0 for none. Any thread.
  [[nodiscard]] platform::AudioStatus failure() const;

 private:
  /// The frames to write, counted from the queue's start: those of queue buffers that end within
  /// (after, until].
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
  [[nodiscard]] bool isLossBefore(const platform::AudioQueueBuffer& buffer) const;
  void measureSilence(const platform::AudioQueueBuffer& buffer);
  void deviceFailed(platform::AudioStatus status);

  // Main thread; finally the destructor's thread.
  std::shared_ptr<platform::AudioQueues> queues_;  // outlives queue_
  std::unique_ptr<platform::AudioInputQueue> queue_;
  ChannelLevels levels_;
  std::shared_ptr<OVAQRecorder> self_retain_;
  DeviceAlerts deviceAlerts_ = DeviceAlerts::shown;

  // Written by the main thread, read by the queue's thread without a lock; release and acquire,
  // so that a reader of a flag also sees the writes before it.
  std::atomic<bool> isRunning_{false};
  std::atomic<bool> isRecording_{false};

  // Set by the owner; advanced by the callback with compare-exchange, so that a position set by the
  // owner meanwhile wins.
  std::atomic<std::uint64_t> writingPosition_{0};

  // Set by the callback, and to 0 by record(); only a count, so relaxed.
  std::atomic<std::uint64_t> silentFrames_{0};
  OVRecordingLosses losses_;  // thread-safe

  platform::GuardedPointer<std::shared_ptr<OVAudioBufferInterface>> buffer_;

  mutable platform::Mutex mutex_;
  Span span_ GUARDED_BY(mutex_);
  bool writingStopped_ GUARDED_BY(mutex_) = false;
  platform::AudioStatus failure_ GUARDED_BY(mutex_) = platform::kAudioStatusOk;
  FailureHandler failureHandler_ GUARDED_BY(mutex_);
};
