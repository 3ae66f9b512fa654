#include "platform/sound/DeviceThread.h"

#include <memory>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

class DeviceThreadTest : public testing::Test {
 protected:
  DeviceTasks& control() { return *thread_->control(); }
  /// A task that records its name.
  DeviceTasks::Task note(int name) {
    return [this, name](AudioDevice&) { ran_.add(name); };
  }

  Record<int> ran_;
  std::shared_ptr<ManualAudioClock> clock_ = std::make_shared<ManualAudioClock>();
  std::shared_ptr<ScriptedAudioDevice> device_ = std::make_shared<ScriptedAudioDevice>();
  std::unique_ptr<DeviceThread> thread_ = std::make_unique<DeviceThread>(device_, clock_);
};

TEST_F(DeviceThreadTest, TasksRunInTheOrderOfPostingOnOneOtherThread) {
  std::vector<std::thread::id> ids;
  for (int i = 0; i < 100; ++i) {
    control().post([this, i, &ids](AudioDevice&) {
      ids.push_back(std::this_thread::get_id());
      ran_.add(i);
    });
  }
  ASSERT_TRUE(ran_.awaitCount(100));
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(ran_.values()[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(ids[static_cast<std::size_t>(i)], ids[0]);
  }
  EXPECT_NE(ids[0], std::this_thread::get_id());
}

TEST_F(DeviceThreadTest, ADelayedTaskWaitsForTheClockAndNotForLaterOnes) {
  control().postAfter(std::chrono::seconds(2), note(2));
  control().postAfter(std::chrono::seconds(1), note(1));
  ASSERT_TRUE(clock_->awaitWaiter(std::chrono::seconds(1)));
  clock_->advance(std::chrono::milliseconds(999));
  control().post(note(0));
  ASSERT_TRUE(ran_.awaitCount(1));
  clock_->advance(std::chrono::milliseconds(1));
  ASSERT_TRUE(ran_.awaitCount(2));
  clock_->advance(std::chrono::seconds(1));
  ASSERT_TRUE(ran_.awaitCount(3));
  EXPECT_EQ(ran_.values(), (std::vector<int>{0, 1, 2}));
}

TEST_F(DeviceThreadTest, ASignalRunsItsTaskOnceForManyRaises) {
  Gate door;
  const auto signal = control().makeSignal(note(7));
  control().post([&](AudioDevice&) { door.pass(); });
  ASSERT_TRUE(door.awaitArrival());
  signal->raise();
  signal->raise();
  control().post(note(8));
  door.open();
  ASSERT_TRUE(ran_.awaitCount(2));
  EXPECT_EQ(ran_.values(), (std::vector<int>{7, 8}));
  signal->raise();
  ASSERT_TRUE(ran_.awaitCount(3));
}

TEST_F(DeviceThreadTest, EndingRunsWhatIsPostedThenTheLastTasksAndDropsDelayedOnes) {
  control().postAtEnd(note(3));
  control().postAfter(std::chrono::seconds(1), note(9));
  control().post(note(1));
  control().post(note(2));
  const auto kept = thread_->control();
  thread_.reset();
  EXPECT_EQ(ran_.values(), (std::vector<int>{1, 2, 3}));
  kept->post(note(4));
  EXPECT_EQ(ran_.count(), 3U);
}

TEST_F(DeviceThreadTest, EndingReleasesTheDevice) {
  EXPECT_GT(device_.use_count(), 1);
  thread_.reset();
  EXPECT_EQ(device_.use_count(), 1);
}

TEST_F(DeviceThreadTest, AThreadThatHangsIsLeftBehindAndFinishesLater) {
  const auto door = std::make_shared<Gate>();
  const auto last = std::make_shared<Record<int>>();
  control().post([door](AudioDevice&) { door->pass(); });
  control().postAtEnd([last](AudioDevice&) { last->add(1); });
  ASSERT_TRUE(door->awaitArrival());
  thread_.reset();  // would wait forever
  EXPECT_EQ(last->count(), 0U);
  door->open();
  EXPECT_TRUE(last->awaitCount(1));
  EXPECT_TRUE(support::eventually([&] { return device_.use_count() == 1; }));
}

}  // namespace
}  // namespace platform::test
