#include "platform/mainloop/MainQueue.h"

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <QMetaObject>
#include <QObject>

#include "support/MainLoop.h"

using platform::isMainThread;
using platform::mainQueue;

TEST(MainQueueTest, AsyncFromAnotherThreadRunsOnTheMainThread) {
  std::atomic<bool> onMain = false;
  std::thread worker([&] { mainQueue().async([&] { onMain = isMainThread(); }); });
  worker.join();
  EXPECT_TRUE(runMainLoopUntil([&] { return onMain.load(); }));
}

TEST(MainQueueTest, SyncFromTheMainThreadRunsAtOnce) {
  bool ran = false;
  mainQueue().sync([&] { ran = true; });
  EXPECT_TRUE(ran);
}

TEST(MainQueueTest, SyncFromAnotherThreadWaitsForTheBlock) {
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

TEST(MainQueueTest, OnlyBlocksThatShareATurnRunWithoutAnEventInBetween) {
  ASSERT_TRUE(drainMainQueue()) << "of what other tests have left";
  std::string order;
  QObject receiver;
  const auto append = [&](char step) { return [&order, step] { order += step; }; };
  mainQueue().asyncShared(append('1'));
  mainQueue().asyncShared(append('2'));
  mainQueue().async(append('3'));
  mainQueue().asyncShared(append('4'));
  QMetaObject::invokeMethod(&receiver, append('e'), Qt::QueuedConnection);
  EXPECT_TRUE(runMainLoopUntil([&] { return order.size() == 5; }));
  EXPECT_EQ(order, "12e34");
}

TEST(MainQueueTest, BlocksRunInOrderAndALoopInsideABlockServesTheRest) {
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
