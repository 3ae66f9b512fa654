#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "storage/OVAudioBufferInterface.h"

/// The document's buffer as a recorder or player holds it: replaced by its owner while a callback
/// of the queue looks at it.
///
/// Threads: any. Real-time: not safe.
class BufferReference {
 public:
  [[nodiscard]] std::shared_ptr<OVAudioBufferInterface> get() const {
    const std::lock_guard lock(mutex_);
    return buffer_;
  }

  void set(std::shared_ptr<OVAudioBufferInterface> buffer) {
    const std::lock_guard lock(mutex_);
    buffer_.swap(buffer);  // what was there is released with the parameter, outside the lock
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<OVAudioBufferInterface> buffer_;  // guarded by mutex_
};
