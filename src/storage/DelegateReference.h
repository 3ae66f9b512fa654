#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "storage/OVAudioBufferInterface.h"

/// A buffer's reference to its delegate, which it does not own. It has a lock of its own, so that
/// a writer can fetch the delegate while somebody holds the buffer's lock. That lock is not held
/// while the delegate is told.
///
/// Threads: any. Real-time: not safe.
class DelegateReference {
 public:
  [[nodiscard]] std::weak_ptr<OVAudioBufferDelegate> get() const {
    const std::lock_guard lock(mutex_);
    return delegate_;
  }

  void set(std::weak_ptr<OVAudioBufferDelegate> delegate) {
    const std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
  }

  /// Tells the delegate, if there is one, of a write, and before that of the errno with which it
  /// failed; 0 for none. Hold no lock of the buffer.
  void tellWrite(const void* data, std::uint64_t atByteOffset, std::uint32_t withSize,
                 int error) const;

  /// Tells it only of a failure that no write follows.
  void tellFailure(int error) const;

  /// Tells it of a read for which storage did not give all bytes back; an errno of 0 is told as
  /// EIO. Hold no lock of the buffer.
  void tellFailedRead(int error) const;

 private:
  mutable std::mutex mutex_;  // guards delegate_
  std::weak_ptr<OVAudioBufferDelegate> delegate_;
};
