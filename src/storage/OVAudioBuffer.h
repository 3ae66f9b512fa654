#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/base/GuardedPointer.h"
#include "storage/OVAudioBufferInterface.h"

/// Audio held wholly in memory: one block that grows by half again, one level of undo, reversible.
///
/// Offsets, counts and capacities are in bytes, positions of cuts in frames of 8 bytes.
///
/// Threads: any, at the same time, except powerAtPosition() and exposeBuffer(), which look at the
/// block without the lock: use them while no other thread writes, cuts or undoes. lock() and
/// unlock() in pairs on one thread. Real-time: not safe.
class OVAudioBuffer : public OVAudioBufferInterface {
 public:
  /// An empty buffer with room for ten seconds. Never null.
  [[nodiscard]] static std::shared_ptr<OVAudioBuffer> init();
  ~OVAudioBuffer() override;
  OVAudioBuffer(const OVAudioBuffer&) = delete;
  OVAudioBuffer& operator=(const OVAudioBuffer&) = delete;

  /// Copies the bytes into the block, which grows when the write reaches its end. Bytes between the
  /// old end and the offset are what the block held there. A write for which there is no memory
  /// changes nothing and is reported as a failure (ENOMEM); one that would end past the highest
  /// address is refused with a console line.
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

  /// Shrinks the block to the position, and the recording ends there even where it was shorter.
  /// Nothing for a position beyond the capacity.
  void cutoffBufferAfterPosition(std::uint64_t frames) override;

  /// Moves what follows the position to the start. Nothing for a position at or beyond the
  /// capacity. The length underflows for a position past the end.
  void cutoffBufferBeforePosition(std::uint64_t frames) override;

  /// Reverses the order of the samples, not of the frames: left and right change places.
  void reverseBuffer() override;

  /// Copies the whole capacity, once; replaces the copy made before. Without the memory for it
  /// there is then no copy at all, and a console line says so.
  void setWaypoint() override;
  /// Both exchange the recording and the copy of the last waypoint; nothing without one.
  void undo() override;
  void redo() override;

  void lock() override;
  void unlock() override;

  /// Mean magnitude of the samples `position` and `position` + 1: a sample index, not a frame. 0
  /// outside the block.
  [[nodiscard]] double powerAtPosition(std::uint64_t position) override;

  /// The samples; valid until the next write, cut, undo or redo.
  [[nodiscard]] float* exposeBuffer();

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

  // The first three with bufferLock held.
  [[nodiscard]] bool growBeyond(std::uint64_t end);
  [[nodiscard]] std::uint64_t readableFrom(std::uint64_t offset, std::uint64_t byteCount) const;
  [[nodiscard]] bool makeCopy();
  void exchangeWithCopy();

  const platform::AudioStreamBasicDescription format_;
  std::mutex bufferLock_;

  // Guarded by bufferLock_. sampleBuffer_ can be larger than bufferCapacity_ after a cut.
  Samples sampleBuffer_;
  std::unique_ptr<Samples> tmpBuffer_;  // none before the first waypoint
  std::uint64_t tmpBufferFillSize_ = 0;
  std::uint64_t tmpBufferCapacity_ = 0;

  // Written with bufferLock_ held, read without it by the getters; each stands for itself.
  std::atomic<std::uint64_t> bufferCapacity_;
  std::atomic<std::uint64_t> bufferFillSize_{0};

  std::atomic<std::uint64_t> framesToPlay_{0};
  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> delegate_;
};
