#include "platform/mainloop/WaitingWork.h"

#include <atomic>
#include <memory>

#include <gtest/gtest.h>

#include "support/MainLoop.h"

namespace {

using platform::beginWaitingWork;

TEST(WaitingWorkTest, TheResultArrivesOnTheMainThread) {
  QObject owner;
  int result = 0;
  ASSERT_TRUE(beginWaitingWork(
      &owner,
      [] {
        EXPECT_FALSE(platform::isMainThread());
        return 7;
      },
      [&result](int value) {
        EXPECT_TRUE(platform::isMainThread());
        result = value;
      }));
  EXPECT_TRUE(runMainLoopUntil([&] { return result == 7; }));
}

TEST(WaitingWorkTest, NothingArrivesForAnOwnerThatHasGone) {
  auto owner = std::make_unique<QObject>();
  std::atomic<bool> done = false;
  ASSERT_TRUE(beginWaitingWork(
      owner.get(), [] { return 1; }, [](int) { ADD_FAILURE() << "arrived"; }));
  owner.reset();
  ASSERT_TRUE(beginWaitingWork([&done] { done = true; }));
  EXPECT_TRUE(runMainLoopUntil([&] { return done.load(); }));
  EXPECT_TRUE(drainMainQueue());
}

TEST(WaitingWorkTest, WorkThatNeverReturnsHoldsNothingElseUntilThereIsTooMuchOfIt) {
  const auto release = std::make_shared<std::atomic<bool>>(false);
  const auto running = std::make_shared<std::atomic<int>>(0);
  int begun = 0;
  while (beginWaitingWork([release, running] {
    ++*running;
    release->wait(false);
    --*running;
  })) {
    ASSERT_LT(++begun, 1000);
  }
  EXPECT_GT(begun, 8);
  EXPECT_TRUE(awaitGlobalQueue()) << "the global queue does other work";
  *release = true;
  release->notify_all();
  EXPECT_TRUE(runMainLoopUntil([&] { return running->load() == 0; }));
  EXPECT_TRUE(runMainLoopUntil([] { return beginWaitingWork([] {}); }));
}

}  // namespace
