#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "storage/OVAudioBufferInterface.h"

/// A buffer that holds a few frames, answers reads, and remembers them.
class StoredFrames : public OVAudioBufferInterface {
 public:
  struct Read {
    std::uint64_t byteOffset;
    std::uint64_t byteCount;
  };

  explicit StoredFrames(std::vector<float> floats) : floats_(std::move(floats)) {}

  [[nodiscard]] const std::vector<float>& floats() const { return floats_; }
  [[nodiscard]] const std::vector<Read>& reads() const { return reads_; }

  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override {
    const std::size_t end = (atByteOffset + withSize) / sizeof(float);
    floats_.resize(std::max(floats_.size(), end));
    std::memcpy(bytes() + atByteOffset, data, withSize);
  }
  [[nodiscard]] BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                              std::uint64_t fromOffset) override {
    reads_.push_back({fromOffset, withSize});
    const std::uint64_t size = floats_.size() * sizeof(float);
    const std::uint64_t count = fromOffset < size ? std::min(withSize, size - fromOffset) : 0;
    if (count == 0) {
      return {};
    }
    std::memcpy(destination, bytes() + fromOffset, count);
    return {static_cast<float*>(destination), count / format().mBytesPerFrame, count};
  }
  [[nodiscard]] platform::AudioStreamBasicDescription format() const override {
    return platform::kWorkingFormat;
  }
  [[nodiscard]] std::uint64_t bufferSizeInFrames() const override { return floats_.size() / 2; }
  [[nodiscard]] std::uint64_t bufferFillSizeInFrames() const override {
    return bufferSizeInFrames();
  }
  void cutoffBufferAfterPosition(std::uint64_t /*frames*/) override {}
  void cutoffBufferBeforePosition(std::uint64_t /*frames*/) override {}
  void reverseBuffer() override {}
  void setWaypoint() override {}
  void undo() override {}
  void redo() override {}
  void lock() override {}
  void unlock() override {}
  [[nodiscard]] double powerAtPosition(std::uint64_t /*position*/) override { return 0.0; }
  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> delegate() const override { return {}; }
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate> /*delegate*/) override {}

 private:
  std::byte* bytes() { return reinterpret_cast<std::byte*>(floats_.data()); }

  std::vector<float> floats_;
  std::vector<Read> reads_;
};
