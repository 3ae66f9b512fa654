#include "platform/base/GlobalQueue.h"

#include <chrono>
#include <deque>
#include <system_error>
#include <thread>

#include "platform/base/Mutex.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kIdleThreadLife{5};

}  // namespace

struct GlobalQueue::State {
  Mutex mutex;
  Condition workCame;
  Condition workDone;
  std::deque<std::function<void()>> blocks GUARDED_BY(mutex);
  std::size_t threads GUARDED_BY(mutex) = 0;
  std::size_t idle GUARDED_BY(mutex) = 0;

  // False when the system cannot create a thread: existing ones do the work.
  bool addThread() REQUIRES(mutex) {
    ++threads;
    try {
      std::thread([this] { work(); }).detach();
      return true;
    } catch (const std::system_error&) {
      --threads;
      return false;
    }
  }

  // False when no work arrived for a while. The last thread stays, for when the system cannot
  // create another.
  bool waitForWork() REQUIRES(mutex) {
    auto deadline = Clock::now() + kIdleThreadLife;
    while (blocks.empty()) {
      if (!workCame.waitUntil(mutex, deadline) && blocks.empty()) {
        if (threads > 1) {
          return false;
        }
        deadline += kIdleThreadLife;
      }
    }
    return true;
  }

  bool isIdle() const REQUIRES(mutex) { return blocks.empty() && idle == threads; }

  void work() EXCLUDES(mutex) {
    MutexLock lock(mutex);
    for (;;) {
      ++idle;
      workDone.notifyAll();
      const bool isNeeded = waitForWork();
      --idle;
      if (!isNeeded) {
        --threads;
        workDone.notifyAll();
        return;
      }
      auto block = std::move(blocks.front());
      blocks.pop_front();
      lock.unlock();
      block();
      block = nullptr;
      lock.lock();
    }
  }
};

GlobalQueue::GlobalQueue() : state_(new State) {}

void GlobalQueue::async(std::function<void()> block) {
  const MutexLock lock(state_->mutex);
  state_->blocks.push_back(std::move(block));
  const bool oneMore = state_->idle < state_->blocks.size() && state_->threads < kMaximumThreads;
  if (!oneMore || !state_->addThread()) {
    state_->workCame.notifyOne();
  }
}

bool GlobalQueue::waitUntilIdle(double seconds) {
  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                           std::chrono::duration<double>(seconds));
  const MutexLock lock(state_->mutex);
  while (!state_->isIdle()) {
    if (!state_->workDone.waitUntil(state_->mutex, deadline)) {
      return state_->isIdle();
    }
  }
  return true;
}

GlobalQueue& globalQueue() {
  static auto* queue = new GlobalQueue;
  return *queue;
}

}  // namespace platform
