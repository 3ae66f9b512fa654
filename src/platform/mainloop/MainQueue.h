#pragma once

#include <functional>

#include "platform/base/GlobalQueue.h"
#include "platform/base/MainThread.h"
#include "platform/base/SerialQueue.h"

/// Dispatch queues: where a block of work runs, and after what. The serial and the global queue
/// have headers of their own, for code that does not know of a main loop.
///
/// A block captures what it touches by value or by weak reference; one that is still queued when
/// its object dies must find that out by itself.
///
/// Threads: any, unless said otherwise. Real-time: not safe.
namespace platform {

/// The main thread's queue. Its blocks run from the main loop, also from the loop of a modal
/// alert.
class MainQueue {
 public:
  void async(std::function<void()> block);

  /// Runs the block on the main thread and waits for it; on the main thread it runs at once. After
  /// shutDown() it returns without running it.
  void sync(const std::function<void()>& block);

  /// Drops what is queued and releases the threads that wait: the main loop will not run again.
  /// Threads: main.
  void shutDown();

 private:
  friend MainQueue& mainQueue();
  MainQueue();
  struct State;
  State* state_;  // never destroyed: threads may outlive main
};

MainQueue& mainQueue();

}  // namespace platform
