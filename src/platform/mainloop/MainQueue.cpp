#include <deque>
#include <optional>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include "platform/base/Mutex.h"

#include "platform/mainloop/MainQueue.h"

namespace platform {
namespace {

// The state of a block that another thread waits for.
struct Waiting {
  Mutex mutex;
  Condition finished;
  bool done GUARDED_BY(mutex) = false;  // run or dropped

  void finish() {
    const MutexLock lock(mutex);
    done = true;
    finished.notifyAll();
  }
  void wait() {
    const MutexLock lock(mutex);
    while (!done) {
      finished.wait(mutex);
    }
  }
};

// Whether a block has an event of the main loop for itself.
enum class Turn { own, shared };

struct Item {
  std::function<void()> block;
  std::shared_ptr<Waiting> waiting;
  Turn turn = Turn::own;
};

}  // namespace

// Blocks are passed under our own mutex, and Qt only wakes the main loop. So ThreadSanitizer sees
// every transfer although the system's Qt is not instrumented.
struct MainQueue::State : QObject {
  Mutex mutex;
  std::deque<Item> items GUARDED_BY(mutex);
  bool wakePosted GUARDED_BY(mutex) = false;  // an event is on its way
  bool closed GUARDED_BY(mutex) = false;

  static QEvent::Type wakeType() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
  }

  // Under the lock, so that the event's creation is ordered before its deletion.
  void wake() REQUIRES(mutex) {
    if (!wakePosted && QCoreApplication::instance() != nullptr) {
      wakePosted = true;
      QCoreApplication::postEvent(this, new QEvent(wakeType()));
    }
  }

  bool submit(Item item) {
    const MutexLock lock(mutex);
    if (closed) {
      return false;
    }
    items.push_back(std::move(item));
    wake();
    return true;
  }

  std::optional<Item> next() {
    const MutexLock lock(mutex);
    wakePosted = false;
    if (items.empty()) {
      return std::nullopt;
    }
    return takeFirst();
  }

  // The next one, if it shares the turn of the one before.
  std::optional<Item> nextShared() {
    const MutexLock lock(mutex);
    if (items.empty() || items.front().turn != Turn::shared) {
      return std::nullopt;
    }
    return takeFirst();
  }

  Item takeFirst() REQUIRES(mutex) {
    Item item = std::move(items.front());
    items.pop_front();
    if (!items.empty()) {
      wake();  // a block may run its own loop: the rest must not wait for its end
    }
    return item;
  }

  bool event(QEvent* event) override {
    {
      const MutexLock lock(mutex);  // orders the event's creation before its reading
    }
    if (event->type() != wakeType()) {
      return QObject::event(event);
    }
    for (auto item = next(); item;
         item = item->turn == Turn::shared ? nextShared() : std::nullopt) {
      item->block();
      if (item->waiting) {
        item->waiting->finish();
      }
    }
    return true;
  }
};

MainQueue::MainQueue() : state_(new State) {}

void MainQueue::async(std::function<void()> block) {
  state_->submit({std::move(block), nullptr});
}

void MainQueue::asyncShared(std::function<void()> block) {
  state_->submit({std::move(block), nullptr, Turn::shared});
}

void MainQueue::sync(const std::function<void()>& block) {
  if (isMainThread()) {
    block();
    return;
  }
  const auto waiting = std::make_shared<Waiting>();
  if (state_->submit({block, waiting})) {
    waiting->wait();
  }
}

void MainQueue::shutDown() {
  assertMainThread();
  std::deque<Item> dropped;
  {
    const MutexLock lock(state_->mutex);
    state_->closed = true;
    dropped.swap(state_->items);
  }
  for (const Item& item : dropped) {
    if (item.waiting) {
      item.waiting->finish();
    }
  }
}

MainQueue& mainQueue() {
  static auto* queue = new MainQueue;
  return *queue;
}

namespace {

// Created before any other thread can use it, so that it belongs to the main thread.
[[maybe_unused]] const MainQueue& kMadeAtStart = mainQueue();

}  // namespace

}  // namespace platform
