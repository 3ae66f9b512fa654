#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "storage/OVAudioBufferInterface.h"

/// A buffer in memory that can have holes, records its transfers, and lets a test intervene before
/// each.
///
/// Reads behave as in every buffer: under one lock, up to the end or the next hole. The rest of the
/// interface does nothing.
///
/// Threads: any, except that hooks are set while no other thread reads or writes.
class MemoryTestBuffer : public OVAudioBufferInterface {
 public:
  static constexpr std::uint64_t kFrameBytes = platform::kWorkingFormat.mBytesPerFrame;

  struct Transfer {
    std::uint64_t byteOffset;
    std::uint64_t byteCount;
    friend bool operator==(const Transfer&, const Transfer&) = default;
  };

  /// Called with the byte offset of a read before it takes the lock; may write, cut or wait.
  std::function<void(std::uint64_t fromOffset)> beforeRead;
  /// The same before a write.
  std::function<void(const Transfer&)> beforeWrite;

  MemoryTestBuffer() = default;
  explicit MemoryTestBuffer(const std::vector<float>& samples) { append(samples); }

  void append(const void* data, std::size_t byteCount) {
    const std::lock_guard guard(lock_);
    const auto* bytes = static_cast<const std::byte*>(data);
    bytes_.insert(bytes_.end(), bytes, bytes + byteCount);
  }
  void append(const std::vector<float>& samples) {
    append(samples.data(), samples.size() * sizeof(float));
  }

  /// Makes the bytes from `begin` up to `end` unreadable, until clearHoles().
  void addHole(std::uint64_t begin, std::uint64_t end) {
    const std::lock_guard guard(lock_);
    holes_[begin] = std::max(holes_[begin], end);
  }
  void clearHoles() {
    const std::lock_guard guard(lock_);
    holes_.clear();
  }
  void resizeInBytes(std::uint64_t byteCount) {
    const std::lock_guard guard(lock_);
    bytes_.resize(byteCount);
  }
  void dropFirstBytes(std::uint64_t byteCount) {
    const std::lock_guard guard(lock_);
    const auto count = std::min<std::uint64_t>(byteCount, bytes_.size());
    bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(count));
  }
  [[nodiscard]] std::uint64_t byteCount() const {
    const std::lock_guard guard(lock_);
    return bytes_.size();
  }
  [[nodiscard]] std::uint64_t readCount() const { return readCount_; }

  [[nodiscard]] std::vector<Transfer> reads() const {
    const std::lock_guard guard(lock_);
    return reads_;
  }
  [[nodiscard]] std::vector<Transfer> writes() const {
    const std::lock_guard guard(lock_);
    return writes_;
  }
  [[nodiscard]] std::vector<float> samples() const {
    const std::lock_guard guard(lock_);
    std::vector<float> samples(bytes_.size() / sizeof(float));
    if (!samples.empty()) {
      std::memcpy(samples.data(), bytes_.data(), samples.size() * sizeof(float));
    }
    return samples;
  }

  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override {
    if (beforeWrite) {
      beforeWrite({atByteOffset, withSize});
    }
    const std::lock_guard guard(lock_);
    writes_.push_back({atByteOffset, withSize});
    bytes_.resize(std::max<std::uint64_t>(bytes_.size(), atByteOffset + withSize));
    // Not memcpy: the address of an empty write may be null.
    std::copy_n(static_cast<const std::byte*>(data), withSize,
                bytes_.begin() + static_cast<std::ptrdiff_t>(atByteOffset));
  }

  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override {
    if (beforeRead) {
      beforeRead(fromOffset);
    }
    ++readCount_;
    const std::lock_guard guard(lock_);
    reads_.push_back({fromOffset, withSize});
    const std::uint64_t end = readableEnd(fromOffset);
    const std::uint64_t count = end > fromOffset ? std::min(withSize, end - fromOffset) : 0;
    if (count == 0) {
      return {};
    }
    std::memcpy(destination, bytes_.data() + fromOffset, count);
    return {.data = static_cast<float*>(destination),
            .frameCount = count / kFrameBytes,
            .byteCount = count};
  }

  [[nodiscard]] platform::AudioStreamBasicDescription format() const override {
    return platform::kWorkingFormat;
  }
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override {
    return byteCount() / kFrameBytes;
  }
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override {
    return bufferSizeInFrames();
  }

  void cutoffBufferAfterPosition(std::uint64_t frames) override {
    resizeInBytes(frames * kFrameBytes);
  }
  void cutoffBufferBeforePosition(std::uint64_t) override {}
  void reverseBuffer() override {}
  void setWaypoint() override {}
  void undo() override {}
  void redo() override {}
  void lock() override { lock_.lock(); }
  void unlock() override { lock_.unlock(); }
  [[nodiscard]] double powerAtPosition(std::uint64_t) override { return 0.0; }
  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override { return {}; }
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate>) override {}

 private:
  /// One past the last byte that a read from an offset reaches; the offset itself in a hole.
  [[nodiscard]] std::uint64_t readableEnd(std::uint64_t fromOffset) const {
    std::uint64_t end = bytes_.size();
    for (const auto& [holeBegin, holeEnd] : holes_) {
      if (holeEnd > fromOffset) {
        end = std::min(end, std::max(holeBegin, fromOffset));
      }
    }
    return end;
  }

  mutable std::mutex lock_;
  std::vector<std::byte> bytes_;                  ///< guarded by lock_
  std::map<std::uint64_t, std::uint64_t> holes_;  ///< guarded by lock_; begin to end
  std::vector<Transfer> reads_;                   ///< guarded by lock_
  std::vector<Transfer> writes_;                  ///< guarded by lock_
  std::atomic<std::uint64_t> readCount_ = 0;
};
