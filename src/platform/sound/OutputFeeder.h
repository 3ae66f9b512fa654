#pragma once

#include <atomic>
#include <cstdint>

#include "platform/sound/AudioQueue.h"
#include "platform/sound/QueueBuffers.h"
#include "platform/sound/realtime/RealTimeGracePeriod.h"
#include "platform/sound/realtime/SpscQueue.h"

namespace platform {

/// The way of an output queue's buffers through the device's real-time thread: enqueued buffers go
/// in, their samples go to the device, the emptied buffers come out.
///
/// Threads: said with each call. Real-time: fill() is safe.
class OutputFeeder {
 public:
  // --- The queue's side.

  /// Hands a buffer over. At most QueueBuffers::kMaxBuffers can be inside.
  ///
  /// Threads: one at a time, under the queue's lock.
  void push(AudioQueueBuffer* buffer) noexcept;

  /// A buffer whose samples were all taken, in order; null when there is none.
  ///
  /// Threads: the queue's thread.
  [[nodiscard]] AudioQueueBuffer* popTaken() noexcept;

  /// No more buffers will come: silence from now on is no underrun.
  void beginDraining() noexcept { draining_.store(true, std::memory_order_relaxed); }

  /// When it has returned no buffer is read any more; the device gets silence.
  void close() noexcept;

  /// Every sample that was pushed has been given to the device. Lasting only while draining.
  [[nodiscard]] bool isAllTaken() const noexcept;

  /// End of the last real frame given to the device, in frames since its stream was made, silence
  /// included. Compares with AudioOutputStream::position().
  [[nodiscard]] std::uint64_t realEndFrame() const noexcept {
    return realEnd_.load(std::memory_order_acquire);
  }

  /// Frames given to the device since its stream was made, silence included.
  [[nodiscard]] std::uint64_t givenFrames() const noexcept {
    return given_.load(std::memory_order_acquire);
  }

  [[nodiscard]] std::uint64_t underrunFrames() const noexcept {
    return underruns_.load(std::memory_order_relaxed);
  }

  // --- The device's side.

  /// Fills all `frames` interleaved frames. Where there are fewer, silence follows them; at the
  /// beginning of audio whose end is not announced yet, it stands before them, so that the audio
  /// goes on without a gap. Returns the number of buffers that were emptied.
  ///
  /// Threads: the device's real-time thread. Real-time: safe.
  std::uint32_t fill(float* samples, std::uint32_t frames) noexcept;

 private:
  [[nodiscard]] std::uint32_t take(float* samples, std::uint32_t frames,
                                   std::uint32_t& emptied) noexcept;
  void countUnderrun(std::uint32_t frames) noexcept;

  SpscQueue<AudioQueueBuffer*, QueueBuffers::kMaxBuffers> waiting_;  // to the real-time thread
  SpscQueue<AudioQueueBuffer*, QueueBuffers::kMaxBuffers> taken_;    // and back
  RealTimeGracePeriod section_;

  // Buffers pushed so far. Only writer: push().
  std::atomic<std::uint64_t> pushedBuffers_{0};
  // Buffers emptied so far. Only writer: the real-time thread, with release after realEnd_.
  std::atomic<std::uint64_t> emptiedBuffers_{0};
  // Only writer: the real-time thread.
  std::atomic<std::uint64_t> realEnd_{0};
  std::atomic<std::uint64_t> given_{0};
  std::atomic<std::uint64_t> underruns_{0};
  // Real-time thread only.
  AudioQueueBuffer* current_ = nullptr;
  std::uint32_t currentDone_ = 0;  // frames taken of current_

  // Set by the queue, never cleared.
  std::atomic<bool> draining_{false};
  std::atomic<bool> closed_{false};
};

}  // namespace platform
