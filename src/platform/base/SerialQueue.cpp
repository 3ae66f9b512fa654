#include "platform/base/SerialQueue.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <thread>

#include "platform/base/GlobalQueue.h"
#include "platform/base/Mutex.h"

namespace platform {
namespace {

// A caller of sync() waiting for its turn.
struct Ticket {
  bool turn = false;
};

// A queue entry: a block to run, or a waiting caller.
struct Item {
  std::function<void()> block;
  Ticket* ticket = nullptr;
};

}  // namespace

// The right to run passes from one holder to the next: a draining thread or a caller of sync().
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
  Mutex mutex;
  Condition turnGiven;
  std::deque<Item> line GUARDED_BY(mutex);
  bool busy GUARDED_BY(mutex) = false;       // a thread holds the right to run
  std::thread::id holder GUARDED_BY(mutex);  // the thread inside a block

  void submitDrain() {
    globalQueue().async([state = shared_from_this()] { state->drain(); });
  }

  // Runs blocks until the queue is empty or a waiting caller takes over.
  void drain() EXCLUDES(mutex) {
    MutexLock lock(mutex);
    while (!line.empty()) {
      Item item = std::move(line.front());
      line.pop_front();
      if (item.ticket != nullptr) {
        item.ticket->turn = true;
        turnGiven.notifyAll();
        return;
      }
      holder = std::this_thread::get_id();
      lock.unlock();
      item.block();
      item.block = nullptr;
      lock.lock();
      holder = {};
    }
    busy = false;
  }

  void enter() EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    if (holder == std::this_thread::get_id()) {
      std::fputs("sync on a serial queue from inside one of its blocks\n", stderr);
      std::abort();
    }
    if (busy) {
      Ticket ticket;
      line.push_back({nullptr, &ticket});
      while (!ticket.turn) {
        turnGiven.wait(mutex);
      }
    }
    busy = true;
    holder = std::this_thread::get_id();
  }

  void leave() EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    holder = {};
    if (line.empty()) {
      busy = false;
    } else if (line.front().ticket != nullptr) {
      line.front().ticket->turn = true;
      line.pop_front();
      turnGiven.notifyAll();
    } else {
      submitDrain();
    }
  }
};

SerialQueue::SerialQueue(std::string label)
    : label_(std::move(label)), state_(std::make_shared<State>()) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::async(std::function<void()> block) {
  const MutexLock lock(state_->mutex);
  state_->line.push_back({std::move(block), nullptr});
  if (!state_->busy) {
    state_->busy = true;
    state_->submitDrain();
  }
}

SerialQueue::Turn::Turn(State& state) : state_(state) {
  state_.enter();
}
SerialQueue::Turn::~Turn() {
  state_.leave();
}

}  // namespace platform
