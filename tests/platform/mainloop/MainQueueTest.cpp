#include "platform/mainloop/MainQueue.h"

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/MainLoop.h"

using platform::isMainThread;
using platform::mainQueue;
using platform::SerialQueue;

TEST(SerialQueue, SyncRunsOnTheCallersThreadAndReturnsTheResult) {
  SerialQueue queue("playback queue");
  const auto caller = std::this_thread::get_id();
  EXPECT_EQ(queue.label(), "playback queue");
  EXPECT_TRUE(queue.sync([&] { return std::this_thread::get_id() == caller; }));
}

TEST(SerialQueue, AsyncBlocksRunInTheOrderOfSubmission) {
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

TEST(SerialQueue, SyncComesAfterWhatWasSubmittedBefore) {
  SerialQueue queue("order");
  std::latch release(1);
  bool ran = false;
  queue.async([&] { release.wait(); });
  queue.async([&] { ran = true; });
  std::thread opener([&] { release.count_down(); });
  EXPECT_TRUE(queue.sync([&] { return ran; }));
  opener.join();
}

TEST(SerialQueue, NeverRunsTwoBlocksAtOnceWhateverTheThreads) {
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

TEST(SerialQueue, BlocksStillQueuedWhenTheQueueDiesRunAllTheSame) {
  std::latch ran(2);
  {
    SerialQueue queue("dying");
    queue.async([&] { ran.count_down(); });
    queue.async([&] { ran.count_down(); });
  }
  ran.wait();
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

TEST(MainQueue, AsyncFromAnotherThreadRunsOnTheMainThread) {
  std::atomic<bool> onMain = false;
  std::thread worker([&] { mainQueue().async([&] { onMain = isMainThread(); }); });
  worker.join();
  EXPECT_TRUE(runMainLoopUntil([&] { return onMain.load(); }));
}

TEST(MainQueue, SyncFromTheMainThreadRunsAtOnce) {
  bool ran = false;
  mainQueue().sync([&] { ran = true; });
  EXPECT_TRUE(ran);
}

TEST(MainQueue, SyncFromAnotherThreadWaitsForTheBlock) {
  bool ran = false;
  std::atomic<bool> finished = false;
  std::thread worker([&] {
    mainQueue().sync([&] { ran = isMainThread(); });
    finished = true;
  });
  EXPECT_TRUE(runMainLoopUntil([&] { return finished.load(); }));
  worker.join();
  EXPECT_TRUE(ran);
}

TEST(MainQueue, BlocksRunInOrderAndALoopInsideABlockServesTheRest) {
  std::vector<int> order;
  mainQueue().async([&] {
    order.push_back(1);
    EXPECT_TRUE(runMainLoopUntil([&] { return order.size() == 3; }));
    order.push_back(4);
  });
  mainQueue().async([&] { order.push_back(2); });
  mainQueue().async([&] { order.push_back(3); });
  EXPECT_TRUE(runMainLoopUntil([&] { return order.size() == 4; }));
  EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
}
