#pragma once

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

/// Dispatch queues: where a block of work runs, and after what.
///
/// A block captures what it touches by value or by weak reference; one that is still queued when
/// its object dies must find that out by itself.
///
/// Threads: any, unless said otherwise. Real-time: not safe.
namespace platform {

/// Runs blocks one after the other in the order in which they were submitted. A queue that is used
/// with sync() alone needs no thread: the block runs on the caller's thread when its turn has
/// come. Blocks submitted with async() run on the threads of the global queue. Blocks still queued
/// when the queue is destroyed are run all the same.
class SerialQueue {
 public:
  explicit SerialQueue(std::string label);
  ~SerialQueue();
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  [[nodiscard]] const std::string& label() const { return label_; }

  void async(std::function<void()> block);

  /// Runs the block and returns its result. From inside a block of this queue it could never run:
  /// that ends the program, in release builds too.
  template <typename Block>
  std::invoke_result_t<Block> sync(Block&& block) {
    const Turn turn(*state_);
    return std::forward<Block>(block)();
  }

 private:
  struct State;
  class Turn {
   public:
    explicit Turn(State& state);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    State& state_;
  };

  std::string label_;
  std::shared_ptr<State> state_;
};

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

/// Whether this is the thread that runs main().
[[nodiscard]] bool isMainThread();

/// The concurrent queue of default priority. Its threads come with the work and go after a while
/// without any.
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
