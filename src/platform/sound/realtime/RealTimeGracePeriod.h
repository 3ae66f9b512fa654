#pragma once

#include <atomic>
#include <cstdint>

namespace platform {

/// Lets an ordinary thread free an object that a real-time thread uses, without a lock on the
/// real-time side. The real-time thread brackets its use with enter() and leave(). The other thread
/// makes the object unreachable with a sequentially consistent store, calls waitUntilLeft(), and
/// may then free it.
///
/// Threads: construction and destruction while no other thread uses it.
class RealTimeGracePeriod {
 public:
  /// Threads: one real-time thread at a time.
  /// Real-time: safe.
  void enter() noexcept { passages_.fetch_add(1, std::memory_order_seq_cst); }

  /// Threads: the one that entered.
  /// Real-time: safe.
  void leave() noexcept { passages_.fetch_add(1, std::memory_order_seq_cst); }

  /// Returns when every section that may still see the old object has been left. A section lasts
  /// microseconds, longer only if its thread is preempted inside.
  ///
  /// Threads: any but the real-time thread, several at a time.
  /// Real-time: not safe.
  void waitUntilLeft() const noexcept;

 private:
  // Invariant: odd while the real-time thread is inside; never decreases. Only writer: the
  // real-time thread.
  std::atomic<std::uint64_t> passages_{0};
};

}  // namespace platform
