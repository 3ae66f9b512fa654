#include "interleavings/SteppedGlobalQueue.h"

#include <deque>
#include <functional>
#include <utility>

#include "interleavings/AllOrders.h"
#include "platform/base/GlobalQueue.h"

namespace {

std::deque<std::function<void()>> given;  // only one thread runs at a time

}  // namespace

// In place of the real one, which makes threads of its own.
namespace platform {

struct GlobalQueue::State {};

GlobalQueue::GlobalQueue() : state_(nullptr) {}

void GlobalQueue::async(std::function<void()> block) {
  interleavings::step();
  given.push_back(std::move(block));
}

GlobalQueue& globalQueue() {
  static auto* queue = new GlobalQueue;
  return *queue;
}

}  // namespace platform

namespace interleavings {

void workForTheGlobalQueue(const std::function<bool()>& isDone) {
  for (;;) {
    waitUntil([&] { return !given.empty() || isDone(); });
    if (given.empty()) {
      return;
    }
    const std::function<void()> block = std::move(given.front());
    given.pop_front();
    block();
  }
}

}  // namespace interleavings
