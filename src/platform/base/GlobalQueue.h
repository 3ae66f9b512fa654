#pragma once

#include <cstddef>
#include <functional>

namespace platform {

/// The concurrent queue of default priority. Its threads come with the work, and all but one go
/// after a while without any; work for which the system gives no thread waits for one of those that
/// are there.
///
/// Threads: any. Real-time: not safe.
class GlobalQueue {
 public:
  /// A block may wait for a person (an alert), so the number of threads is generous.
  static constexpr std::size_t kMaximumThreads = 64;

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
