#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace platform {

/// Carries captured samples from the device's real-time thread to an input queue's thread, in
/// blocks of a fixed number of interleaved stereo float frames. The two ends have their own types:
/// InputRingProducer and InputRingConsumer.
///
/// Memory is allocated at construction, and touched before the producer may use it: for some blocks
/// at construction, for the others by grow(). A block that comes back is filled again next, so a
/// consumer that keeps up takes no more memory, and room in the processor's caches, than it needs.
///
/// Threads: construction and destruction while neither end is in use.
class InputRing {
 public:
  /// Position of a finished block. Frames are counted from the producer's first one, including lost
  /// ones.
  struct Block {
    std::uint64_t firstFrame = 0;
    std::uint64_t endFrame = 0;    ///< one past the last frame
    std::uint64_t lostBefore = 0;  ///< frames lost between the previous block and this one
    /// Those of them that were lost before they reached the ring.
    std::uint64_t skippedBefore = 0;
    /// The frame before which these are missing, at the latest. Often an earlier one than
    /// firstFrame, since a loss outside the ring is found late.
    std::uint64_t skippedAtFrame = 0;

    /// The frame before which all those of lostBefore are missing, at the latest.
    [[nodiscard]] std::uint64_t lostAtFrame() const {
      return skippedBefore == lostBefore ? skippedAtFrame : firstFrame;
    }

    /// blockFrames(), except for a block within which the capture ended or frames were skipped.
    [[nodiscard]] std::uint32_t frames() const {
      return static_cast<std::uint32_t>(endFrame - firstFrame);
    }
  };

  /// `blockFrames` frames a block, at least 1; `blockCount` blocks, at least 2, of which the
  /// producer may use `blocksAtFirst`, at least 1, until the ring grows.
  InputRing(std::uint32_t blockFrames, std::uint32_t blockCount, std::uint32_t blocksAtFirst);
  InputRing(std::uint32_t blockFrames, std::uint32_t blockCount)
      : InputRing(blockFrames, blockCount, blockCount) {}

  /// From now on the producer may use all blocks. A second call does nothing.
  ///
  /// Threads: any, one at a time.
  /// Real-time: not safe.
  void grow();

  /// Threads: any.
  /// Real-time: safe.
  [[nodiscard]] std::uint32_t blockFrames() const { return blockFrames_; }
  [[nodiscard]] std::uint32_t blockCount() const { return blockCount_; }

  /// End of the newest finished block, in frames.
  ///
  /// Threads: any.
  /// Real-time: safe.
  [[nodiscard]] std::uint64_t publishedEndFrame() const {
    return publishedEndFrame_.load(std::memory_order_acquire);
  }

  /// Total frames lost because the ring was full, or skipped.
  ///
  /// Threads: any.
  /// Real-time: safe.
  [[nodiscard]] std::uint64_t lostFrames() const {
    return lostFrames_.load(std::memory_order_acquire);
  }

 private:
  friend class InputRingProducer;
  friend class InputRingConsumer;

  // Fixed after construction.
  const std::uint32_t blockFrames_;
  const std::uint32_t blockCount_;

  [[nodiscard]] float* samplesAt(std::uint32_t place) const noexcept;
  void touch(std::uint32_t firstPlace, std::uint32_t endPlace) noexcept;

  // Blocks numbered [tail_, head_) are finished and belong to the consumer; the others belong to
  // the producer. Block n is described at n modulo blockCount_; its samples are at a place of their
  // own, of which there are blockCount_, too.
  std::vector<Block> blocks_;
  std::vector<std::uint32_t> places_;
  const std::unique_ptr<float[]> samples_;

  // Invariant: tail_ <= head_ <= tail_ + blockCount_. Only writer: the producer, with release after
  // the block's content.
  alignas(64) std::atomic<std::uint64_t> head_{0};
  // Invariant: the endFrame of block head_ - 1. Only writer: the producer, after head_.
  std::atomic<std::uint64_t> publishedEndFrame_{0};
  // Only writer: the producer.
  std::atomic<std::uint64_t> lostFrames_{0};
  // Places below it belong to the two ends, the others to grow(). Only writer: grow(), with release
  // after they were touched.
  std::atomic<std::uint32_t> usablePlaces_;

  // Only writer: the consumer, with release after the block's content was read.
  alignas(64) std::atomic<std::uint64_t> tail_{0};
};

/// The producer's end.
class InputRingProducer {
 public:
  /// Real-time: not safe.
  explicit InputRingProducer(InputRing& ring);

  /// Appends `frames` interleaved frames; those that do not fit are counted as lost. Returns the
  /// number of blocks completed.
  ///
  /// Threads: the device's real-time thread.
  /// Real-time: safe.
  std::uint32_t write(const float* samples, std::uint32_t frames) noexcept;

  /// `frames` frames are lost, which stand before the next ones; found late, they are missing at
  /// the latest before the last `capturedSince` ones. The unfinished block, if any, is published
  /// with the frames that it has. Returns the number of blocks completed.
  ///
  /// Threads: the device's real-time thread.
  /// Real-time: safe.
  std::uint32_t skip(std::uint64_t frames, std::uint64_t capturedSince) noexcept;

  /// No more frames will come: publishes the unfinished block, if any, with the frames that it has.
  ///
  /// Threads: the device's real-time thread, or any after its last write.
  /// Real-time: safe.
  void finish() noexcept;

 private:
  [[nodiscard]] bool takePlace() noexcept;
  [[nodiscard]] bool beginBlock() noexcept;
  void endBlock() noexcept;
  void lose(std::uint64_t frames) noexcept;

  InputRing& ring_;
  std::vector<std::uint32_t> freePlaces_;  // never more than were reserved; the last is taken first
  std::uint64_t returnedBlocks_ = 0;       // those before this one came back, with their places
  std::uint32_t knownPlaces_ = 0;          // those below have been free or are in use
  std::uint32_t place_ = 0;                // of the unfinished block
  std::uint64_t captured_ = 0;             // frames offered so far
  std::uint64_t lostPending_ = 0;          // frames lost since the last block ended
  std::uint64_t skippedPending_ = 0;       // those of them that were skipped
  std::uint64_t skippedAtFrame_ = 0;       // before which these are missing, at the latest
  std::uint32_t filled_ = 0;               // frames in the unfinished block; 0 for none
};

/// The consumer's end.
class InputRingConsumer {
 public:
  explicit InputRingConsumer(InputRing& ring) : ring_(ring) {}

  /// The oldest finished block; null for none. Valid until pop().
  ///
  /// Threads: the consumer, one at a time.
  /// Real-time: safe.
  [[nodiscard]] const InputRing::Block* front() const noexcept;

  /// The interleaved frames of the oldest finished block, Block::frames() of them.
  ///
  /// Threads: the consumer, one at a time.
  /// Real-time: safe.
  [[nodiscard]] const float* frontSamples() const noexcept;

  /// Returns the oldest finished block to the producer.
  ///
  /// Threads: the consumer, one at a time.
  /// Real-time: safe.
  void pop() noexcept;

 private:
  InputRing& ring_;
};

}  // namespace platform
