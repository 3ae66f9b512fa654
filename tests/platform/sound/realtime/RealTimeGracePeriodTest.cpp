#include "platform/sound/realtime/RealTimeGracePeriod.h"

#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(RealTimeGracePeriodTest, NobodyWaitsWhileTheRealTimeThreadIsOutside) {
  RealTimeGracePeriod period;
  period.waitUntilLeft();
  period.enter();
  period.leave();
  period.waitUntilLeft();
}

TEST(RealTimeGracePeriodTest, AWaitEndsAfterTheSectionAndNotBefore) {
  for (int round = 0; round < 100; ++round) {
    RealTimeGracePeriod period;
    std::promise<void> entered;
    std::atomic<bool> waiting{false};
    std::atomic<bool> leaving{false};
    const std::jthread realTime([&] {
      period.enter();
      entered.set_value();
      while (!waiting.load()) {
        std::this_thread::yield();
      }
      for (int turn = 0; turn < 10; ++turn) {
        std::this_thread::yield();  // gives a faulty wait time to return early
      }
      leaving.store(true);
      period.leave();
    });
    entered.get_future().wait();
    waiting.store(true);
    period.waitUntilLeft();
    EXPECT_TRUE(leaving.load());
  }
}

TEST(RealTimeGracePeriodTest, AWaitEndsThoughTheRealTimeThreadKeepsComingBack) {
  RealTimeGracePeriod period;
  std::atomic<bool> done{false};
  const std::jthread realTime([&] {
    while (!done.load(std::memory_order_relaxed)) {
      period.enter();
      period.leave();
    }
  });
  for (int turn = 0; turn < 1000; ++turn) {
    period.waitUntilLeft();
  }
  done.store(true);
}

// Two values that are equal while any thread may read them.
struct Pair {
  int left = 0;
  int right = 0;
};

TEST(RealTimeGracePeriodTest, WhatWasReplacedBeforeTheWaitIsNotLookedAtAfterIt) {
  RealTimeGracePeriod period;
  auto owned = std::make_unique<Pair>();
  std::atomic<const Pair*> current{owned.get()};
  std::atomic<bool> done{false};
  std::atomic<int> torn{0};
  std::atomic<int> looks{0};
  const std::jthread realTime([&] {
    while (!done.load(std::memory_order_relaxed)) {
      period.enter();
      const Pair* pair = current.load(std::memory_order_seq_cst);
      torn += pair->left == pair->right ? 0 : 1;
      period.leave();
      ++looks;
    }
  });
  for (int value = 1; value <= 2000 || looks.load() < 2000; ++value) {
    auto next = std::make_unique<Pair>(Pair{value, value});
    current.store(next.get(), std::memory_order_seq_cst);
    period.waitUntilLeft();
    owned->left = -1;  // a thread that still reads sees a difference or freed memory
    owned = std::move(next);
  }
  done.store(true);
  EXPECT_EQ(torn.load(), 0);
}

}  // namespace
}  // namespace platform::test
