#include "platform/QueueThread.h"

#include <memory>

#include <gtest/gtest.h>

#include "platform/AudioQueueFixture.h"

namespace platform::test {
namespace {

TEST(QueueThreadTest, ServesOnceForEveryWakeUpAlsoForThoseBeforeItsStart) {
  QueueThread thread;
  Record<bool> served;
  thread.wake();
  thread.start([&] { served.add(thread.isCurrent()); });
  thread.wake();
  ASSERT_TRUE(served.awaitCount(2));
  thread.end();
  EXPECT_EQ(served.values(), (std::vector<bool>{true, true}));
  EXPECT_FALSE(thread.isCurrent());
}

TEST(QueueThreadTest, EndWaitsForTheServingThatRuns) {
  QueueThread thread;
  Door door;
  std::atomic<bool> finished{false};
  thread.start([&] {
    door.pass();
    finished = true;
  });
  thread.wake();
  ASSERT_TRUE(door.awaitArrival());
  std::thread opener([&] { door.open(); });
  thread.end();
  EXPECT_TRUE(finished);
  opener.join();
}

TEST(QueueThreadTest, EndingAndDestroyingItFromItsOwnThreadIsAllowed) {
  auto thread = std::make_unique<QueueThread>();
  Record<int> served;
  thread->start([&] {
    thread->end();
    thread.reset();
    served.add(1);
  });
  thread->wake();
  EXPECT_TRUE(served.awaitCount(1));
}

TEST(QueueThreadTest, EndWithoutAStartAndTwiceDoesNothing) {
  QueueThread thread;
  thread.end();
  thread.end();
  QueueThread started;
  started.start([] {});
  started.end();
  started.end();
}

TEST(QueueThreadTest, AlertsOnItArePostedAndNotWaitedFor) {
  const support::InstalledRecordingServices services;
  QueueThread thread;
  Record<int> served;
  thread.start([&] {
    ShowModalAlert("title", "message");
    served.add(1);
  });
  thread.wake();
  ASSERT_TRUE(served.awaitCount(1));
  EXPECT_EQ(services->alerts().size(), 0U);
  EXPECT_EQ(services->postedAlerts().size(), 1U);
}

}  // namespace
}  // namespace platform::test
