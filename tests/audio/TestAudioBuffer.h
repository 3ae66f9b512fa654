#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "storage/OVAudioBufferInterface.h"

namespace testaudio {

inline constexpr std::uint64_t kFrameBytes = platform::kWorkingFormat.mBytesPerFrame;

/// `frames` stereo frames that count up: frame f is (f, -f), so that a gap or a repeat shows.
inline std::vector<float> ramp(std::uint64_t frames, std::uint64_t firstFrame = 0) {
  std::vector<float> samples;
  samples.reserve(frames * 2);
  for (std::uint64_t frame = firstFrame; frame < firstFrame + frames; ++frame) {
    samples.push_back(static_cast<float>(frame));
    samples.push_back(-static_cast<float>(frame));
  }
  return samples;
}

/// Audio in memory that tells a test about every transfer and lets it step in between.
///
/// Threads: any; the hooks are set before the threads start.
class TestAudioBuffer : public OVAudioBufferInterface {
 public:
  struct Write {
    std::uint64_t offset;
    std::uint32_t size;
    friend bool operator==(const Write&, const Write&) = default;
  };

  TestAudioBuffer() = default;
  explicit TestAudioBuffer(const std::vector<float>& samples) {
    bytes_.resize(samples.size() * sizeof(float));
    if (!samples.empty()) {
      std::memcpy(bytes_.data(), samples.data(), bytes_.size());
    }
  }

  std::function<void(const Write&)> beforeWrite;  ///< on the writer's thread, outside the lock
  std::function<void(std::uint64_t)> beforeRead;  ///< with the offset, outside the lock

  void writeData(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize) override {
    if (beforeWrite) {
      beforeWrite({atByteOffset, withSize});
    }
    const std::lock_guard guard(mutex_);
    bytes_.resize(std::max<std::size_t>(bytes_.size(), atByteOffset + withSize));
    std::memcpy(bytes_.data() + atByteOffset, data, withSize);
    writes_.push_back({atByteOffset, withSize});
  }

  BufferReadResult readDataInto(void* destination, std::uint64_t withSize,
                                std::uint64_t fromOffset) override {
    if (beforeRead) {
      beforeRead(fromOffset);
    }
    const std::lock_guard guard(mutex_);
    if (fromOffset >= bytes_.size()) {
      return {};
    }
    const auto count = std::min<std::uint64_t>(withSize, bytes_.size() - fromOffset);
    std::memcpy(destination, bytes_.data() + fromOffset, count);
    BufferReadResult result;
    result.data = static_cast<float*>(destination);
    result.frameCount = count / kFrameBytes;
    result.byteCount = count;
    return result;
  }

  platform::AudioStreamBasicDescription format() const override { return platform::kWorkingFormat; }
  std::uint64_t bufferSizeInFrames() const override {
    const std::lock_guard guard(mutex_);
    return bytes_.size() / kFrameBytes;
  }
  std::uint64_t bufferFillSizeInFrames() const override { return bufferSizeInFrames(); }

  void cutoffBufferAfterPosition(std::uint64_t) override {}
  void cutoffBufferBeforePosition(std::uint64_t) override {}
  void reverseBuffer() override {}
  void setWaypoint() override {}
  void undo() override {}
  void redo() override {}
  void lock() override { mutex_.lock(); }
  void unlock() override { mutex_.unlock(); }
  double powerAtPosition(std::uint64_t) override { return 0; }
  std::weak_ptr<OVAudioBufferDelegate> delegate() const override { return {}; }
  void setDelegate(std::weak_ptr<OVAudioBufferDelegate>) override {}

  std::vector<Write> writes() const {
    const std::lock_guard guard(mutex_);
    return writes_;
  }
  std::vector<float> samples() const {
    const std::lock_guard guard(mutex_);
    std::vector<float> copy(bytes_.size() / sizeof(float));
    if (!copy.empty()) {
      std::memcpy(copy.data(), bytes_.data(), copy.size() * sizeof(float));
    }
    return copy;
  }

 private:
  mutable std::mutex mutex_;  // guards everything below
  std::vector<std::byte> bytes_;
  std::vector<Write> writes_;
};

}  // namespace testaudio
