#pragma once

#include <memory>
#include <utility>

#include "platform/base/Mutex.h"

namespace platform {

/// A std::shared_ptr or std::weak_ptr that some threads replace while others copy it. The lock
/// covers only the copy; the former value is released after unlocking.
///
/// Threads: any. Real-time: not safe.
template <typename Pointer>
class GuardedPointer {
 public:
  GuardedPointer() = default;
  explicit GuardedPointer(Pointer pointer) : pointer_(std::move(pointer)) {}

  [[nodiscard]] Pointer get() const {
    const MutexLock lock(mutex_);
    return pointer_;
  }

  void set(Pointer pointer) { static_cast<void>(exchange(std::move(pointer))); }

  /// Returns the former value.
  [[nodiscard]] Pointer exchange(Pointer pointer) {
    const MutexLock lock(mutex_);
    pointer_.swap(pointer);
    return pointer;
  }

 private:
  mutable Mutex mutex_;
  Pointer pointer_ GUARDED_BY(mutex_);
};

}  // namespace platform
