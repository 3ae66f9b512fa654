#pragma once

#include <cstddef>
#include <functional>

namespace platform {

/// The concurrent queue of default priority. It starts threads as work arrives; all but one end
/// after a while without work. When the system cannot create a thread, work waits for an existing
/// one.
///
/// Threads: any. Real-time: not safe.
class GlobalQueue {
 public:
  /// Generous, since a block may wait for the user (an alert).
  static constexpr std::size_t kMaximumThreads = 64;

  void async(std::function<void()> block);

  /// Waits at most `seconds` until no block is queued or running; false on a timeout. Used at
  /// program exit.
  bool waitUntilIdle(double seconds);

 private:
  friend GlobalQueue& globalQueue();
  GlobalQueue();
  struct State;
  State* state_;  // never destroyed: threads may outlive main
};

GlobalQueue& globalQueue();

}  // namespace platform
