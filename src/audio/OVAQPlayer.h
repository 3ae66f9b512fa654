#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "audio/ChannelLevels.h"
#include "audio/OVAQPlayerDelegate.h"
#include "platform/base/AudioTypes.h"
#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "platform/sound/AudioQueue.h"
#include "storage/OVAudioBufferInterface.h"

/// Plays a document's buffer from a byte position to the end of the data and notifies its delegate
/// of the advance and the end. One player serves one run of playback; to play from
/// elsewhere, make a new one.
///
///   primed --play()--> playing <--pause(), play()--> paused
///   playing --end of the data--> draining (isDone) --last frame heard--> stopped, delegate
///   notified any state --stop()--> disposed
///
/// At most 3 queue buffers of 1024 frames travel in turn, so that the reading position is at most
/// about 70 ms ahead of what has gone to the device.
///
/// Threads: main, unless said otherwise. Real-time: not safe.
class OVAQPlayer : public std::enable_shared_from_this<OVAQPlayer> {
  struct Key {};

 public:
  /// A primed player whose first buffers are read and queued, or null when its queue could not be
  /// created, which is reported. `andPlaybackPosition` is a byte offset in the buffer.
  [[nodiscard]] static std::shared_ptr<OVAQPlayer> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> buffer, std::uint64_t andPlaybackPosition);

  /// For initWithBuffer() only.
  explicit OVAQPlayer(Key) {}
  ~OVAQPlayer();
  OVAQPlayer(const OVAQPlayer&) = delete;
  OVAQPlayer& operator=(const OVAQPlayer&) = delete;

  /// Starts or resumes. A failure is reported. When the device has failed, or the system gives no
  /// thread, isPlaying() is false afterwards and the delegate is notified that playback has
  /// stopped; the user is alerted once per player. A player that was stopped reports a failure and
  /// stays stopped.
  void play();

  /// Halts and keeps what is queued; play() resumes sample for sample. A failure is reported.
  /// Nothing once stopped.
  void pause();

  /// Stops at once, disposes of the queue and releases the buffer. After it has
  /// returned, the delegate is not notified of any advance. A second call does nothing.
  void stop();

  /// Average power of each channel over the last buffer given to the device, linear (0 silence,
  /// 1 full scale), the second channel first; none once stopped or when it cannot be read.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels();

  /// Byte offset in the buffer of the next data to enqueue. A position that is set while a buffer
  /// is being read stays: that read does not advance it. Any thread.
  [[nodiscard]] std::uint64_t readingPosition() const {
    return readingPosition_.load(std::memory_order_acquire);
  }
  void setReadingPosition(std::uint64_t byteOffset) {
    readingPosition_.store(byteOffset, std::memory_order_release);
  }

  /// Whether no more data will be enqueued. Any thread.
  [[nodiscard]] bool isDone() const { return isDone_.load(std::memory_order_acquire); }
  /// Whether the queue runs: follows its running state, and play(), pause() and stop(). Any thread.
  [[nodiscard]] bool isPlaying() const { return isPlaying_.load(std::memory_order_acquire); }
  /// Null once stopped.
  [[nodiscard]] platform::AudioOutputQueue* queue() const { return queue_.get(); }

  /// What is played; null once stopped. Any thread.
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_.get(); }
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) { buffer_.set(std::move(buffer)); }

  /// Weak: a destroyed delegate is not called. Any thread.
  [[nodiscard]] std::shared_ptr<OVAQPlayerDelegate> delegate() const {
    return delegate_.get().lock();
  }
  void setDelegate(std::weak_ptr<OVAQPlayerDelegate> delegate) {
    delegate_.set(std::move(delegate));
  }

  /// The status with which the device ended the playback, 0 while there is none. Any thread.
  [[nodiscard]] platform::AudioStatus failure() const {
    return failure_.load(std::memory_order_acquire);
  }

 private:
  [[nodiscard]] bool initializePlayer();
  [[nodiscard]] bool makeQueue(const platform::AudioStreamBasicDescription& format);
  [[nodiscard]] bool prime(std::uint32_t byteCapacity);
  void outputCallback(platform::AudioOutputQueue& queue, platform::AudioQueueBuffer& buffer);
  [[nodiscard]] std::uint32_t readInto(platform::AudioQueueBuffer& buffer);
  void runningChanged(platform::AudioOutputQueue& queue);
  void postStoppedPlayback();
  void deviceFailed(platform::AudioStatus status, const std::string& label);
  void check(platform::AudioStatus status, const std::string& label);

  // Main thread; the destructor's thread at the end.
  std::shared_ptr<platform::AudioQueues> queues_;  // outlives queue_
  std::unique_ptr<platform::AudioOutputQueue> queue_;
  ChannelLevels levels_;

  // Fixed once primed.
  std::uint32_t bytesPerFrame_ = 0;

  // Set by the owner, advanced by the callback by compare-exchange: a position that the owner set
  // meanwhile wins.
  std::atomic<std::uint64_t> readingPosition_{0};

  // Read on any thread without a lock; release and acquire, so that a reader of a flag also sees
  // the writes before it. isDone_ is set by the callback and stop(); isPlaying_ is written under
  // mutex_.
  std::atomic<bool> isDone_{false};
  std::atomic<bool> isPlaying_{false};
  // First failure of the device. Any thread.
  std::atomic<platform::AudioStatus> failure_{platform::kAudioStatusOk};

  platform::GuardedPointer<std::shared_ptr<OVAudioBufferInterface>> buffer_;
  platform::GuardedPointer<std::weak_ptr<OVAQPlayerDelegate>> delegate_;

  mutable platform::Mutex mutex_;  // also for the writes of isPlaying_
  // Set by pause(): a report of the running state that was on its way must not undo it.
  bool isPaused_ GUARDED_BY(mutex_) = false;
};
