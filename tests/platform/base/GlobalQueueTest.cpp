#include "platform/base/GlobalQueue.h"

#include <atomic>
#include <latch>

#include <gtest/gtest.h>

#include "platform/mainloop/MainQueue.h"
#include "support/fakes/NoMoreThreads.h"

using platform::globalQueue;
using platform::isMainThread;

TEST(GlobalQueue, RunsBlocksOffTheMainThreadAndSeveralAtOnce) {
  std::latch together(4);
  std::atomic<int> offMain = 0;
  for (int i = 0; i < 4; ++i) {
    globalQueue().async([&] {
      offMain += isMainThread() ? 0 : 1;
      together.arrive_and_wait();
    });
  }
  EXPECT_TRUE(globalQueue().waitUntilIdle(20));
  EXPECT_EQ(offMain, 4);
}

TEST(GlobalQueue, WaitingForIdleGivesUpAtItsDeadline) {
  std::latch release(1);
  globalQueue().async([&] { release.wait(); });
  EXPECT_FALSE(globalQueue().waitUntilIdle(0.01));
  release.count_down();
  EXPECT_TRUE(globalQueue().waitUntilIdle(20));
}

TEST(GlobalQueue, BlocksForWhichThereIsNoThreadAreRunByThoseThatAreThere) {
  globalQueue().async([] {});
  ASSERT_TRUE(globalQueue().waitUntilIdle(20));
  const support::NoMoreThreads limit;
  if (!limit.isInForce()) {
    GTEST_SKIP() << "the system's threads cannot be withheld";
  }
  constexpr int kBlocks = 2 * platform::GlobalQueue::kMaximumThreads;
  std::latch release(1);
  std::atomic<int> ran = 0;
  for (int i = 0; i < kBlocks; ++i) {
    ASSERT_NO_THROW(globalQueue().async([&] {
      release.wait();
      ++ran;
    }));
  }
  release.count_down();
  EXPECT_TRUE(globalQueue().waitUntilIdle(20));
  EXPECT_EQ(ran, kBlocks);
}
