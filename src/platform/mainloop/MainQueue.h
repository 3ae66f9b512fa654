#pragma once

#include <functional>

#include "platform/base/GlobalQueue.h"
#include "platform/base/MainThread.h"
#include "platform/base/SerialQueue.h"

/// The main dispatch queue. The serial and the global queue have their own headers, for code that
/// does not depend on a main loop.
///
/// Blocks must capture by value or by weak reference, and check that their objects still exist.
///
/// Threads: any, unless noted. Real-time: not safe.
namespace platform {

/// The main thread's queue. Its blocks run from the main loop, including that of a modal alert.
class MainQueue {
 public:
  void async(std::function<void()> block);

  /// The same for a short block that runs no loop of its own: those of this kind that wait directly
  /// after each other run in one event of the main loop, so that nothing is drawn in between.
  void asyncShared(std::function<void()> block);

  /// Runs the block on the main thread and waits for it; called on the main thread, runs it at
  /// once. After shutDown() it returns without running the block.
  void sync(const std::function<void()>& block);

  /// Drops queued blocks and releases waiting threads: the main loop will not run again.
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
