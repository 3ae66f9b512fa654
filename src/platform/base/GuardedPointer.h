#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace platform {

/// A std::shared_ptr or std::weak_ptr that threads replace while others copy it. The lock covers
/// the copy alone: the former value is released after it.
///
/// Threads: any. Real-time: not safe.
template <typename Pointer>
class GuardedPointer {
 public:
  GuardedPointer() = default;
  explicit GuardedPointer(Pointer pointer) : pointer_(std::move(pointer)) {}

  [[nodiscard]] Pointer get() const {
    const std::lock_guard lock(mutex_);
    return pointer_;
  }

  void set(Pointer pointer) { static_cast<void>(exchange(std::move(pointer))); }

  /// Returns the former value.
  [[nodiscard]] Pointer exchange(Pointer pointer) {
    const std::lock_guard lock(mutex_);
    pointer_.swap(pointer);
    return pointer;
  }

 private:
  mutable std::mutex mutex_;
  Pointer pointer_;  // guarded by mutex_
};

}  // namespace platform
