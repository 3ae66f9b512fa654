#include "platform/base/SerialQueue.h"

#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/Eventually.h"

using platform::SerialQueue;

TEST(SerialQueueTest, SyncRunsOnTheCallersThreadAndReturnsTheResult) {
  SerialQueue queue("playback queue");
  const auto caller = std::this_thread::get_id();
  EXPECT_EQ(queue.label(), "playback queue");
  EXPECT_TRUE(queue.sync([&] { return std::this_thread::get_id() == caller; }));
}

TEST(SerialQueueTest, AsyncBlocksRunInTheOrderOfSubmission) {
  SerialQueue queue("fft");
  std::vector<int> order;
  for (int i = 0; i < 1000; ++i) {
    queue.async([&order, i] { order.push_back(i); });
  }
  queue.sync([] {});
  ASSERT_EQ(order.size(), 1000u);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
  }
}

TEST(SerialQueueTest, SyncComesAfterWhatWasSubmittedBefore) {
  SerialQueue queue("order");
  std::latch release(1);
  bool ran = false;
  queue.async([&] { release.wait(); });
  queue.async([&] { ran = true; });
  std::thread opener([&] { release.count_down(); });
  EXPECT_TRUE(queue.sync([&] { return ran; }));
  opener.join();
}

TEST(SerialQueueTest, NeverRunsTwoBlocksAtOnceWhateverTheThreads) {
  SerialQueue queue("counter");
  int counter = 0;  // no lock: the queue is the lock
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 500; ++i) {
        if (i % 3 == 0) {
          queue.async([&] { ++counter; });
        } else {
          queue.sync([&] { ++counter; });
        }
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(queue.sync([&] { return counter; }), 2000);
}

TEST(SerialQueueTest, BlocksStillQueuedWhenTheQueueDiesRunAllTheSame) {
  std::latch ran(2);
  {
    SerialQueue queue("dying");
    queue.async([&] { ran.count_down(); });
    queue.async([&] { ran.count_down(); });
  }
  EXPECT_TRUE(support::eventually([&] { return ran.try_wait(); }));
}

TEST(SerialQueueDeathTest, SyncFromInsideABlockOfTheSameQueueEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        SerialQueue queue("self");
        queue.sync([&] { queue.sync([] {}); });
      },
      "sync on a serial queue");
}
