#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/base/GuardedPointer.h"
#include "platform/base/Mutex.h"
#include "storage/OVAudioBufferInterface.h"

/// Audio held entirely in memory: one block that grows by half its size, one level of undo,
/// reversible. No document of the application uses it.
///
/// Offsets, counts and capacities are in bytes, positions of cuts in frames of 8 bytes.
///
/// Threads: any, concurrently, except powerAtPosition() and exposeBuffer(), which read the block
/// without the lock: use them while no other thread writes, cuts or undoes. lock() and unlock() in
/// pairs on one thread. Real-time: not safe.
class OVAudioBuffer : public OVAudioBufferInterface {
 public:
  /// An empty buffer with a capacity of ten seconds. Never null.
  [[nodiscard]] static std::shared_ptr<OVAudioBuffer> init();
  ~OVAudioBuffer() override;
  OVAudioBuffer(const OVAudioBuffer&) = delete;
  OVAudioBuffer& operator=(const OVAudioBuffer&) = delete;

  /// Copies the bytes into the block, which grows when the write reaches its end. Bytes between the
  /// old end and the offset keep the block's old content. When memory runs out the write changes
  /// nothing and is reported as a failure (ENOMEM). A write that would end past the highest address
  /// is refused and logged to the console.
  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override;

  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override;
  /// The same as readDataInto().
  [[nodiscard]] BufferReadResult readDataIntoNoCache(void* destination, std::uint64_t withSize,
                                                     std::uint64_t fromOffset);

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override;

  /// Take no lock.
  [[nodiscard]] std::uint64_t bufferCapacityInFrames() const;
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override;
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override;

  /// Shrinks the block to the position; the recording ends there even if it was shorter. Does
  /// nothing for a position beyond the capacity.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// Moves the audio after the position to the start. Does nothing for a position at or beyond the
  /// capacity. The length underflows for a position past the end.
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// Reverses the order of the samples, not of the frames: left and right are swapped.
  void reverseBuffer() override;

  /// Copies the whole capacity, replacing the previous copy. When memory runs out no copy exists,
  /// which is logged to the console.
  void setWaypoint() override;
  /// Both swap the recording with the copy of the last waypoint; do nothing without one.
  void undo() override;
  void redo() override;

  void lock() override ACQUIRE(bufferLock_);
  void unlock() override RELEASE(bufferLock_);

  /// Mean magnitude of the samples `position` and `position` + 1: a sample index, not a frame. 0
  /// outside the block.
  [[nodiscard]] double powerAtPosition(std::uint64_t position) override NO_THREAD_SAFETY_ANALYSIS;

  /// The samples; valid until the next write, cut, undo or redo.
  [[nodiscard]] float* exposeBuffer() NO_THREAD_SAFETY_ANALYSIS;

  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate> delegate) override;

  /// Kept for callers; the buffer does not use it.
  [[nodiscard]] std::uint64_t framesToPlay() const { return framesToPlay_; }
  void setFramesToPlay(std::uint64_t frames) { framesToPlay_ = frames; }

  /// Bytes. Take no lock.
  [[nodiscard]] std::uint64_t bufferCapacity() const { return bufferCapacity_; }
  [[nodiscard]] std::uint64_t bufferFillSize() const { return bufferFillSize_; }

 private:
  using Samples = std::vector<std::byte>;

  OVAudioBuffer();

  [[nodiscard]] bool growBeyond(std::uint64_t end) REQUIRES(bufferLock_);
  [[nodiscard]] std::uint64_t readableFrom(std::uint64_t offset, std::uint64_t byteCount) const
      REQUIRES(bufferLock_);
  [[nodiscard]] bool makeCopy() REQUIRES(bufferLock_);
  void exchangeWithCopy() EXCLUDES(bufferLock_);

  const platform::AudioStreamBasicDescription format_;
  platform::Mutex bufferLock_;

  Samples sampleBuffer_ GUARDED_BY(bufferLock_);  // can exceed bufferCapacity_ after a cut
  // Null before the first waypoint.
  std::unique_ptr<Samples> tmpBuffer_ GUARDED_BY(bufferLock_) PT_GUARDED_BY(bufferLock_);
  std::uint64_t tmpBufferFillSize_ GUARDED_BY(bufferLock_) = 0;
  std::uint64_t tmpBufferCapacity_ GUARDED_BY(bufferLock_) = 0;

  // Written with bufferLock_ held, read without it by the getters; independent of each other.
  std::atomic<std::uint64_t> bufferCapacity_;
  std::atomic<std::uint64_t> bufferFillSize_{0};

  std::atomic<std::uint64_t> framesToPlay_{0};
  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
};
