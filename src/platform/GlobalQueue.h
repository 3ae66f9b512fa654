#pragma once

#include <functional>

namespace platform {

/// The concurrent queue of default priority. Its threads come with the work and go after a while
/// without any.
///
/// Threads: any. Real-time: not safe.
class GlobalQueue {
 public:
  void async(std::function<void()> block);

  /// Waits until no block is queued or running, at most `seconds`. For the end of the program.
  bool waitUntilIdle(double seconds);

 private:
  friend GlobalQueue& globalQueue();
  GlobalQueue();
  struct State;
  State* state_;  // never destroyed: threads may outlive main
};

GlobalQueue& globalQueue();

}  // namespace platform
