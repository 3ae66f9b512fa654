#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "storage/OVAudioBufferInterface.h"

namespace support {

/// One call of a buffer's delegate.
struct DelegateCall {
  const void* data = nullptr;  ///< null for a failure
  std::uint64_t atByteOffset = 0;
  std::uint32_t withSize = 0;
  int error = 0;  ///< errno of a failure, 0 for a write

  friend bool operator==(const DelegateCall&, const DelegateCall&) = default;
};

/// Records every call of a buffer: writes and their failures in one list, failed reads in another.
///
/// Threads: any.
class RecordingDelegate : public OVAudioBufferDelegate {
 public:
  void audioBufferDidWriteData(const void* data, std::uint64_t atByteOffset,
                               std::uint32_t withSize) override {
    add({data, atByteOffset, withSize, 0});
  }

  void audioBufferFailedToWrite(int error) override { add({nullptr, 0, 0, error}); }

  void audioBufferFailedToRead(int error) override {
    std::function<void()> hook;
    {
      const std::lock_guard lock(mutex_);
      readErrors_.push_back(error);
      hook = hook_;
    }
    if (hook) {
      hook();
    }
  }

  std::vector<DelegateCall> calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }

  /// Errnos of the failed reads.
  std::vector<int> readErrors() const {
    const std::lock_guard lock(mutex_);
    return readErrors_;
  }

  /// Runs inside every call: on the writer's or reader's thread, outside the buffer's lock.
  void during(std::function<void()> hook) {
    const std::lock_guard lock(mutex_);
    hook_ = std::move(hook);
  }

 private:
  void add(const DelegateCall& call) {
    std::function<void()> hook;
    {
      const std::lock_guard lock(mutex_);
      calls_.push_back(call);
      hook = hook_;
    }
    if (hook) {
      hook();
    }
  }

  mutable std::mutex mutex_;  // guards everything below
  std::vector<DelegateCall> calls_;
  std::vector<int> readErrors_;
  std::function<void()> hook_;
};

}  // namespace support
