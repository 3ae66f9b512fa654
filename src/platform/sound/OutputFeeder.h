#pragma once

#include <atomic>
#include <cstdint>

#include "platform/sound/AudioQueue.h"
#include "platform/sound/QueueBuffers.h"
#include "platform/sound/realtime/RealTimeGracePeriod.h"
#include "platform/sound/realtime/SpscQueue.h"

namespace platform {

/// Passes an output queue's buffers through the device's real-time thread: enqueued buffers go in,
/// their samples go to the device, emptied buffers come out.
///
/// Threads: see each function. Real-time: fill() is safe.
class OutputFeeder {
 public:
  // --- The queue's side.

  /// Adds a buffer. At most QueueBuffers::kMaxBuffers can be inside.
  ///
  /// Threads: one at a time, under the queue's lock.
  void push(AudioQueueBuffer* buffer) noexcept;

  /// The next emptied buffer, in order; null for none.
  ///
  /// Threads: the queue's thread.
  [[nodiscard]] AudioQueueBuffer* popTaken() noexcept;

  /// No more buffers will come: silence from now on is no underrun.
  void beginDraining() noexcept { draining_.store(true, std::memory_order_relaxed); }

  /// After it returns no buffer is read; the device gets silence.
  void close() noexcept;

  /// Whether every pushed sample has been passed to the device. Final only while draining.
  [[nodiscard]] bool isAllTaken() const noexcept;

  /// End of the last real frame passed to the device, in frames since its stream was created,
  /// including silence. Compares with AudioOutputStream::position().
  [[nodiscard]] std::uint64_t realEndFrame() const noexcept {
    return realEnd_.load(std::memory_order_acquire);
  }

  /// Frames passed to the device since its stream was created, including silence.
  [[nodiscard]] std::uint64_t givenFrames() const noexcept {
    return given_.load(std::memory_order_acquire);
  }

  [[nodiscard]] std::uint64_t underrunFrames() const noexcept {
    return underruns_.load(std::memory_order_relaxed);
  }

  // --- The device's side.

  /// Fills all `frames` interleaved frames. If fewer are ready, silence follows them; at the start
  /// of audio whose end is not announced yet, silence precedes them, so that the audio continues
  /// without a gap. Returns the number of buffers emptied.
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
