#include "platform/sound/QueueThread.h"

#include <memory>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"
#include "support/fakes/NoMoreThreads.h"

namespace platform::test {
namespace {

TEST(QueueThreadTest, ServesOnceForEveryWakeUpAlsoForThoseBeforeItsStart) {
  QueueThread thread;
  Record<bool> served;
  thread.wake();
  ASSERT_EQ(thread.start([&] { served.add(thread.isCurrent()); }), kAudioStatusOk);
  thread.wake();
  ASSERT_TRUE(served.awaitCount(2));
  thread.end();
  EXPECT_EQ(served.values(), (std::vector<bool>{true, true}));
  EXPECT_FALSE(thread.isCurrent());
}

TEST(QueueThreadTest, EndWaitsForTheServingThatRuns) {
  QueueThread thread;
  Gate door;
  std::atomic<bool> finished{false};
  ASSERT_EQ(thread.start([&] {
    door.pass();
    finished = true;
  }),
            kAudioStatusOk);
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
  ASSERT_EQ(thread->start([&] {
    thread->end();
    thread.reset();
    served.add(1);
  }),
            kAudioStatusOk);
  thread->wake();
  EXPECT_TRUE(served.awaitCount(1));
}

TEST(QueueThreadTest, EndWithoutAStartAndTwiceDoesNothing) {
  QueueThread thread;
  thread.end();
  thread.end();
  QueueThread started;
  ASSERT_EQ(started.start([] {}), kAudioStatusOk);
  started.end();
  started.end();
}

TEST(QueueThreadTest, ASystemWithoutAThreadToGiveIsAnsweredAndMayBeAskedAgain) {
  QueueThread thread;
  Record<int> served;
  {
    const support::NoMoreThreads limit;
    if (!limit.isInForce()) {
      GTEST_SKIP() << "no way to make the system refuse a thread";
    }
    EXPECT_EQ(thread.start([&] { served.add(1); }), kNoThreadStatus);
  }
  ASSERT_EQ(thread.start([&] { served.add(2); }), kAudioStatusOk);
  thread.wake();
  ASSERT_TRUE(served.awaitCount(1));
  EXPECT_EQ(served.values(), std::vector<int>{2});
}

TEST(QueueThreadTest, AlertsOnItArePostedAndNotWaitedFor) {
  const support::InstalledRecordingServices services;
  QueueThread thread;
  Record<int> served;
  ASSERT_EQ(thread.start([&] {
    ShowModalAlert("title", "message");
    served.add(1);
  }),
            kAudioStatusOk);
  thread.wake();
  ASSERT_TRUE(served.awaitCount(1));
  EXPECT_EQ(services->alerts().size(), 0U);
  EXPECT_EQ(services->postedAlerts().size(), 1U);
}

}  // namespace
}  // namespace platform::test
