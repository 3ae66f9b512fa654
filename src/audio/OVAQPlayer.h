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

/// Plays a document's buffer from a byte position to the end and notifies its delegate of progress
/// and the end. One player serves one playback; playing from elsewhere takes a new player.
///
///   primed --play()--> playing <--pause(), play()--> paused
///   playing --end of data--> draining (isDone) --last frame heard--> stopped, delegate notified
///   any state --stop()--> disposed
///
/// Three queue buffers of 1024 frames circulate, so the reading position is at most about 70 ms
/// ahead of what has gone to the device.
///
/// Threads: main, unless noted. Real-time: not safe.
class OVAQPlayer : public std::enable_shared_from_this<OVAQPlayer> {
  struct Key {};

 public:
  /// A primed player whose first buffers are read and queued; null if its queue could not be
  /// created, which is reported. `andPlaybackPosition` is a byte offset in the buffer.
  [[nodiscard]] static std::shared_ptr<OVAQPlayer> initWithBuffer(
      std::shared_ptr<OVAudioBufferInterface> buffer, std::uint64_t andPlaybackPosition);

  /// For initWithBuffer() only.
  explicit OVAQPlayer(Key) {}
  ~OVAQPlayer();
  OVAQPlayer(const OVAQPlayer&) = delete;
  OVAQPlayer& operator=(const OVAQPlayer&) = delete;

  /// Starts or resumes. Failures are reported. If the device fails, or the system cannot create a
  /// thread, isPlaying() becomes false, the delegate is notified that playback has stopped, and the
  /// user is alerted once per player. A stopped player reports a failure and stays stopped.
  void play();

  /// Pauses and keeps queued data; play() resumes at the exact sample. Failures are reported. Does
  /// nothing once stopped.
  void pause();

  /// Stops at once, disposes of the queue and releases the buffer. The delegate is not notified of
  /// progress after that. A second call does nothing.
  void stop();

  /// Average power of each channel over the last buffer passed to the device, linear (0 silence, 1
  /// full scale), the second channel first; nothing once stopped or when it cannot be read.
  [[nodiscard]] std::optional<std::vector<float>> powerLevels();

  /// Byte offset of the next data to read from the buffer. A position set while a buffer is being
  /// read is kept: that read does not advance it. Any thread.
  [[nodiscard]] std::uint64_t readingPosition() const {
    return readingPosition_.load(std::memory_order_acquire);
  }
  void setReadingPosition(std::uint64_t byteOffset) {
    readingPosition_.store(byteOffset, std::memory_order_release);
  }

  /// Whether all data has been enqueued. Any thread.
  [[nodiscard]] bool isDone() const { return isDone_.load(std::memory_order_acquire); }
  /// Whether the queue runs: set by its running state, play(), pause() and stop(). Any thread.
  [[nodiscard]] bool isPlaying() const { return isPlaying_.load(std::memory_order_acquire); }
  /// Null once stopped.
  [[nodiscard]] platform::AudioOutputQueue* queue() const { return queue_.get(); }

  /// The audio played; null once stopped. Any thread.
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> buffer() const { return buffer_.get(); }
  void setBuffer(std::shared_ptr<OVAudioBufferInterface> buffer) { buffer_.set(std::move(buffer)); }

  /// Not owning: an expired delegate is not called. Any thread.
  [[nodiscard]] std::shared_ptr<OVAQPlayerDelegate> delegate() const {
    return delegate_.get().lock();
  }
  void setDelegate(std::weak_ptr<OVAQPlayerDelegate> delegate) {
    delegate_.set(std::move(delegate));
  }

  /// The status of the device failure that ended playback; 0 for none. Any thread.
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

  // Main thread; finally the destructor's thread.
  std::shared_ptr<platform::AudioQueues> queues_;  // outlives queue_
  std::unique_ptr<platform::AudioOutputQueue> queue_;
  ChannelLevels levels_;

  // Fixed once primed.
  std::uint32_t bytesPerFrame_ = 0;

  // Set by the owner; advanced by the callback with compare-exchange, so that a position set by the
  // owner meanwhile wins.
  std::atomic<std::uint64_t> readingPosition_{0};

  // Read on any thread without a lock; release and acquire, so that a reader of a flag also sees
  // the writes before it. isDone_ is set by the callback and stop(), isPlaying_ under mutex_.
  std::atomic<bool> isDone_{false};
  std::atomic<bool> isPlaying_{false};
  // The device's first failure. Any thread.
  std::atomic<platform::AudioStatus> failure_{platform::kAudioStatusOk};

  platform::GuardedPointer<std::shared_ptr<OVAudioBufferInterface>> buffer_;
  platform::GuardedPointer<std::weak_ptr<OVAQPlayerDelegate>> delegate_;

  mutable platform::Mutex mutex_;  // also for writes of isPlaying_
  // Set by pause(): a change of the running state that is already on its way must not undo it.
  bool isPaused_ GUARDED_BY(mutex_) = false;
};
