#pragma once

#include <cerrno>
#include <memory>
#include <mutex>
#include <utility>

#include "storage/OVAudioBufferInterface.h"

/// A buffer's reference to its delegate, which it does not own. It has a lock of its own, so that
/// a writer can fetch the delegate while somebody holds the buffer's lock.
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

  /// Tells the delegate of a read for which storage did not give all bytes back; an errno of 0 is
  /// told as EIO. Hold no lock of the buffer.
  void tellFailedRead(int error) const {
    if (const auto delegate = get().lock()) {
      delegate->audioBufferFailedToRead(error != 0 ? error : EIO);
    }
  }

 private:
  mutable std::mutex mutex_;  // guards delegate_
  std::weak_ptr<OVAudioBufferDelegate> delegate_;
};
