#include "interleavings/SteppedGlobalQueue.h"

#include <deque>
#include <functional>
#include <utility>

#include "interleavings/AllOrders.h"
#include "interleavings/RaceWatch.h"
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
  interleavings::releaseToo(&given);
  const interleavings::Unwatched here;
  given.push_back(std::move(block));
}

GlobalQueue& globalQueue() {
  static auto* queue = new GlobalQueue;
  return *queue;
}

}  // namespace platform

namespace interleavings {
namespace {

std::function<void()> next(const std::function<bool()>& isDone) {
  const Unwatched here;
  waitUntil([&] { return !given.empty() || isDone(); });
  if (given.empty()) {
    return nullptr;
  }
  std::function<void()> block = std::move(given.front());
  given.pop_front();
  return block;
}

}  // namespace

void workForTheGlobalQueue(const std::function<bool()>& isDone) {
  for (;;) {
    const std::function<void()> block = next(isDone);
    if (!block) {
      return;
    }
    acquire(&given);
    block();
  }
}

}  // namespace interleavings
