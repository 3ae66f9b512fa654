#pragma once

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace platform {

/// Runs blocks one after the other in the order in which they were submitted. A queue that is used
/// with sync() alone needs no thread: the block runs on the caller's thread when its turn has
/// come. Blocks submitted with async() run on the threads of the global queue. Blocks still queued
/// when the queue is destroyed are run all the same.
///
/// Threads: any. Real-time: not safe.
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

}  // namespace platform
