#pragma once

#include <atomic>
#include <cstdint>

namespace platform {

/// Lets an ordinary thread take something away from a real-time thread without a lock on the
/// real-time side. The real-time thread brackets its use with enter() and leave(); the other
/// thread first makes the thing unreachable with a sequentially consistent store, then calls
/// waitUntilLeft(), and may free it.
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

  /// Returns when every section that may still see what was there before has been left. A section
  /// lasts microseconds, longer only when its thread was preempted inside.
  ///
  /// Threads: any but the real-time thread, several at a time.
  /// Real-time: not safe.
  void waitUntilLeft() const noexcept;

 private:
  // Invariant: odd while the real-time thread is inside, and never less than before. Only writer:
  // the real-time thread.
  std::atomic<std::uint64_t> passages_{0};
};

}  // namespace platform
