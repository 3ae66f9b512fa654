#include "platform/base/GlobalQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace platform {
namespace {

constexpr std::chrono::seconds kIdleThreadLife{5};

}  // namespace

struct GlobalQueue::State {
  std::mutex mutex;
  std::condition_variable workCame;
  std::condition_variable workDone;
  std::deque<std::function<void()>> blocks;  // guarded by mutex
  std::size_t threads = 0;                   // guarded by mutex
  std::size_t idle = 0;                      // guarded by mutex

  // With the mutex held. False when the system gives no thread: those that are there do the work.
  bool addThread() {
    ++threads;
    try {
      std::thread([this] { work(); }).detach();
      return true;
    } catch (const std::system_error&) {
      --threads;
      return false;
    }
  }

  // False when nothing came for a while. The last thread stays: it does the work when the system
  // has no thread to give.
  bool waitForWork(std::unique_lock<std::mutex>& lock) {
    while (!workCame.wait_for(lock, kIdleThreadLife, [&] { return !blocks.empty(); })) {
      if (threads > 1) {
        return false;
      }
    }
    return true;
  }

  void work() {
    std::unique_lock lock(mutex);
    for (;;) {
      ++idle;
      workDone.notify_all();
      const bool isNeeded = waitForWork(lock);
      --idle;
      if (!isNeeded) {
        --threads;
        workDone.notify_all();
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
  const std::lock_guard lock(state_->mutex);
  state_->blocks.push_back(std::move(block));
  const bool oneMore = state_->idle < state_->blocks.size() && state_->threads < kMaximumThreads;
  if (!oneMore || !state_->addThread()) {
    state_->workCame.notify_one();
  }
}

bool GlobalQueue::waitUntilIdle(double seconds) {
  std::unique_lock lock(state_->mutex);
  return state_->workDone.wait_for(lock, std::chrono::duration<double>(seconds), [&] {
    return state_->blocks.empty() && state_->idle == state_->threads;
  });
}

GlobalQueue& globalQueue() {
  static auto* queue = new GlobalQueue;
  return *queue;
}

}  // namespace platform
