#include "platform/base/SerialQueue.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <thread>

#include "platform/base/GlobalQueue.h"

namespace platform {
namespace {

// A caller of sync() that waits for its turn.
struct Ticket {
  bool turn = false;
};

// What stands in line: a block to run, or a waiting caller.
struct Item {
  std::function<void()> block;
  Ticket* ticket = nullptr;
};

}  // namespace

// The right to run is handed from one holder to the next: a draining thread or a caller of sync().
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
  std::mutex mutex;
  std::condition_variable turnGiven;
  std::deque<Item> line;   // guarded by mutex
  bool busy = false;       // guarded by mutex: someone holds the right to run
  std::thread::id holder;  // guarded by mutex: the thread inside a block

  void submitDrain() {
    globalQueue().async([state = shared_from_this()] { state->drain(); });
  }

  // Runs blocks until the line is empty or a waiting caller takes over.
  void drain() {
    std::unique_lock lock(mutex);
    while (!line.empty()) {
      Item item = std::move(line.front());
      line.pop_front();
      if (item.ticket != nullptr) {
        item.ticket->turn = true;
        turnGiven.notify_all();
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

  void enter() {
    std::unique_lock lock(mutex);
    if (holder == std::this_thread::get_id()) {
      std::fputs("sync on a serial queue from inside one of its blocks\n", stderr);
      std::abort();
    }
    if (busy) {
      Ticket ticket;
      line.push_back({nullptr, &ticket});
      turnGiven.wait(lock, [&] { return ticket.turn; });
    }
    busy = true;
    holder = std::this_thread::get_id();
  }

  void leave() {
    const std::lock_guard lock(mutex);
    holder = {};
    if (line.empty()) {
      busy = false;
    } else if (line.front().ticket != nullptr) {
      line.front().ticket->turn = true;
      line.pop_front();
      turnGiven.notify_all();
    } else {
      submitDrain();
    }
  }
};

SerialQueue::SerialQueue(std::string label)
    : label_(std::move(label)), state_(std::make_shared<State>()) {}

SerialQueue::~SerialQueue() = default;

void SerialQueue::async(std::function<void()> block) {
  const std::lock_guard lock(state_->mutex);
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
