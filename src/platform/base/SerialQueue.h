#pragma once

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace platform {

/// Runs blocks one at a time in the order of submission. sync() runs the block on the caller's
/// thread when its turn comes and needs no other thread; async() uses the threads of the global
/// queue. Blocks still queued when the queue is destroyed run all the same.
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

  /// Runs the block and returns its result. Called from a block of the same queue it would
  /// deadlock, so it aborts instead, in release builds too.
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
