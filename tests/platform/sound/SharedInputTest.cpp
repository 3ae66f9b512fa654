#include <atomic>
#include <filesystem>
#include <future>
#include <thread>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

using SharedInputTest = AudioQueueFixture;
using SharedInputTimeTest = TurnedClockFixture;

std::size_t threadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

TEST_F(SharedInputTest, TwoQueuesShareOneStreamAndBothGetEverything) {
  Recording one;
  Recording two;
  ASSERT_EQ(one.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(two.begin(*queues, 1000), kAudioStatusOk);
  ASSERT_TRUE(device->feed(ramp(0, 3 * kRecordFrames)));
  ASSERT_TRUE(one.endFrames.awaitCount(3));
  ASSERT_TRUE(two.endFrames.awaitCount(12));
  EXPECT_EQ(one.samples(), ramp(0, 3 * kRecordFrames));
  EXPECT_EQ(two.samples(), ramp(0, 12000));
  EXPECT_EQ(device->inputsOpened(), 1U);
}

TEST_F(SharedInputTest, QueuesThatComeAndGoWhileTheDeviceRunsCostAnotherNoFrame) {
  Recording steady;
  ASSERT_EQ(steady.begin(*queues, 512), kAudioStatusOk);
  std::atomic<bool> stop{false};
  std::uint64_t fed = 0;
  std::thread microphone([&] {
    while (!stop) {
      // Only as fast as the steady queue follows, so that its ring never fills.
      if (fed - steady.endFrames.count() * 512 < kInputRingFrames / 2) {
        device->feed(ramp(fed, 300));
        fed += 300;
      } else {
        std::this_thread::yield();
      }
    }
  });
  for (int i = 0; i < 40; ++i) {
    Recording passing;
    ASSERT_EQ(passing.begin(*queues, 64), kAudioStatusOk);
    ASSERT_TRUE(passing.endFrames.awaitCount(2));
    EXPECT_EQ(passing.queue->dispose(), kAudioStatusOk);
    // The microphone waits only for the steady queue and may be faster than this one.
    auto samples = passing.samples();
    if (passing.queue->lostFrames() > 0) {
      samples.resize(2 * 128);
    }
    EXPECT_EQ(samples, ramp(static_cast<std::uint64_t>(samples[0]), samples.size() / 2));
  }
  stop = true;
  microphone.join();
  steady.queue->waitUntilDelivered(steady.queue->capturedFrames());
  EXPECT_EQ(steady.samples(), ramp(0, fed / 512 * 512));
  EXPECT_EQ(steady.queue->lostFrames(), 0U);
  EXPECT_EQ(device->inputsOpened(), 1U);
}

TEST_F(SharedInputTest, TwoHundredQueuesLeaveNoThreadBehind) {
  Recording first;
  ASSERT_EQ(first.begin(*queues), kAudioStatusOk);
  const std::size_t before = threadCount();
  for (int i = 0; i < 200; ++i) {
    Recording recording;
    ASSERT_EQ(recording.begin(*queues, 64), kAudioStatusOk);
    if (i % 3 == 0) {
      device->feed(ramp(0, 100));
    }
  }
  EXPECT_TRUE(support::eventually([&] { return threadCount() == before; }));
  EXPECT_EQ(device->inputsOpened(), 1U);
}

TEST_F(SharedInputTimeTest, TheStreamClosesThreeSecondsAfterTheLastQueueWent) {
  Recording one;
  Recording two;
  ASSERT_EQ(one.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(two.begin(*queues), kAudioStatusOk);
  one.queue.reset();
  clock->advance(seconds(10));
  settle();
  EXPECT_TRUE(device->isInputOpen());
  two.queue.reset();
  clock->advance(milliseconds(2999));
  settle();
  EXPECT_TRUE(device->isInputOpen());
  clock->advance(milliseconds(1));
  EXPECT_TRUE(device->awaitInputClosed());
  EXPECT_EQ(device->inputsOpened(), 1U);
  Recording three;
  ASSERT_EQ(three.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->inputsOpened(), 2U);
}

TEST_F(SharedInputTimeTest, APauseBetweenTwoRecordersKeepsTheStreamOpen) {
  for (int i = 0; i < 5; ++i) {
    Recording recording;
    ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
    EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
    recording.queue.reset();
    clock->advance(milliseconds(2000));
    settle();
  }
  EXPECT_EQ(device->inputsOpened(), 1U);
  EXPECT_EQ(device->inputsClosed(), 0U);
}

TEST_F(SharedInputTimeTest, PreparingOpensAheadAndClosesAgainWhenNobodyCame) {
  queues->prepareInput();
  ASSERT_TRUE(device->awaitInputOpen());
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->inputsOpened(), 1U);
  settle();  // the opening is known to have succeeded
  recording.queue.reset();
  clock->advance(seconds(3));
  ASSERT_TRUE(device->awaitInputClosed());
  queues->prepareInput();
  ASSERT_TRUE(device->awaitInputOpen());
  settle();
  clock->advance(seconds(3));
  EXPECT_TRUE(device->awaitInputClosed());
}

TEST_F(SharedInputTimeTest, AFailureIsAnsweredAtOnceForASecondAndThenTriedAnew) {
  device->failOpeningInput(-5);
  Recording recording;
  EXPECT_EQ(recording.make(*queues), -5);
  EXPECT_EQ(recording.queue, nullptr);
  EXPECT_EQ(device->inputsRefused(), 1U);
  device->hang();  // the device must not be called
  clock->advance(milliseconds(999));
  EXPECT_EQ(recording.make(*queues), -5);
  device->release();
  EXPECT_EQ(device->inputsRefused(), 1U);
  clock->advance(milliseconds(1));
  EXPECT_EQ(recording.make(*queues), -5);
  EXPECT_EQ(device->inputsRefused(), 2U);
  clock->advance(seconds(1));
  device->failOpeningInput(kAudioStatusOk);
  EXPECT_EQ(recording.make(*queues), kAudioStatusOk);
  EXPECT_EQ(recording.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, ADeviceThatHangsIsWaitedForAQuarterOfASecondInAll) {
  device->hang();
  Recording recording;
  auto making = std::async(std::launch::async, [&] { return recording.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  ASSERT_TRUE(device->awaitHanging());
  clock->advance(milliseconds(249));
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(1)));
  EXPECT_EQ(making.wait_for(seconds(0)), std::future_status::timeout);
  clock->advance(milliseconds(1));
  EXPECT_EQ(making.get(), kAudioStatusOk);
  // The first recorder has waited for the opening, so a second one does not.
  Recording second;
  EXPECT_EQ(second.begin(*queues), kAudioStatusOk);
  device->release();
  ASSERT_TRUE(device->awaitInputOpen());
  device->feed(ramp(0, kRecordFrames));
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  ASSERT_TRUE(second.endFrames.awaitCount(1));
}

TEST_F(SharedInputTimeTest, AnOpeningAheadIsNotWaitedFor) {
  device->hang();
  queues->prepareInput();
  ASSERT_TRUE(device->awaitHanging());
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);  // the clock stands still
  device->release();
  ASSERT_TRUE(device->awaitInputOpen());
  device->feed(ramp(0, kRecordFrames));
  EXPECT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, AnOpeningAheadMayWaitForItsStart) {
  std::promise<void> start;
  queues->prepareInput(start.get_future());
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);  // the clock stands still
  EXPECT_EQ(device->inputsOpened(), 0U);
  start.set_value();
  ASSERT_TRUE(device->awaitInputOpen());
  device->feed(ramp(0, kRecordFrames));
  EXPECT_TRUE(recording.endFrames.awaitCount(1));
}

TEST_F(SharedInputTimeTest, AnOpeningAheadWhoseStartNeverComesBeginsWhenThatIsClear) {
  {
    std::promise<void> start;
    queues->prepareInput(start.get_future());
  }
  EXPECT_TRUE(device->awaitInputOpen());
}

TEST_F(SharedInputTimeTest, TheFailureOfAnOpeningAheadArrivesThroughTheQueueOnce) {
  device->hang();
  device->failOpeningInput(-5);
  queues->prepareInput();
  ASSERT_TRUE(device->awaitHanging());
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->release();
  ASSERT_TRUE(recording.failures.awaitCount(1));
  Recording second;
  EXPECT_EQ(second.make(*queues), -5);
  EXPECT_EQ(recording.failures.values(), (std::vector<AudioStatus>{-5}));
}

TEST_F(SharedInputTimeTest, AFailureThatComesLateArrivesThroughEveryQueueOnce) {
  device->hang();
  Recording recording;
  Recording second;
  auto making = std::async(std::launch::async, [&] { return recording.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  ASSERT_EQ(making.get(), kAudioStatusOk);
  ASSERT_EQ(second.begin(*queues), kAudioStatusOk);
  device->failOpeningInput(-9);
  device->release();
  ASSERT_TRUE(recording.failures.awaitCount(1));
  ASSERT_TRUE(second.failures.awaitCount(1));
  settle();
  EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(second.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(recording.failures.values(), (std::vector<AudioStatus>{-9}));
  EXPECT_EQ(second.failures.values(), (std::vector<AudioStatus>{-9}));
}

TEST_F(SharedInputTimeTest, AFailureBetweenMakingAndStartingIsAnsweredByStartAlone) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  ASSERT_EQ(recording.prime(), kAudioStatusOk);
  device->failInput(kDeviceLostStatus);
  ASSERT_TRUE(device->awaitInputClosed());
  EXPECT_EQ(recording.queue->start(), kDeviceLostStatus);
  EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(recording.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, ALostDeviceEndsEveryQueueOnceAndTheNextQueueOpensAfresh) {
  Recording one;
  Recording two;
  ASSERT_EQ(one.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(two.begin(*queues), kAudioStatusOk);
  device->feed(ramp(0, kRecordFrames + 5));
  device->failInput(kDeviceLostStatus);
  device->failInput(kDeviceLostStatus);
  ASSERT_TRUE(one.failures.awaitCount(1));
  ASSERT_TRUE(two.failures.awaitCount(1));
  ASSERT_TRUE(device->awaitInputClosed());
  // Everything captured before the loss was delivered before the notification.
  EXPECT_EQ(one.samples(), ramp(0, kRecordFrames + 5));
  EXPECT_EQ(two.samples(), ramp(0, kRecordFrames + 5));
  clock->advance(seconds(1));
  Recording three;
  ASSERT_EQ(three.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->inputsOpened(), 2U);
  device->feed(ramp(0, kRecordFrames));
  ASSERT_TRUE(three.endFrames.awaitCount(1));
  one.queue->waitUntilDelivered(one.queue->capturedFrames());
  EXPECT_EQ(one.endFrames.count(), 2U);  // no callback after the loss
  EXPECT_EQ(one.failures.values(), (std::vector<AudioStatus>{kDeviceLostStatus}));
  EXPECT_EQ(two.failures.values(), (std::vector<AudioStatus>{kDeviceLostStatus}));
  EXPECT_EQ(three.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, ALossIsToldEvenIfTearingTheStreamDownHangs) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->hang();
  device->failInput(kDeviceLostStatus);
  EXPECT_TRUE(recording.failures.awaitCount(1));
  ASSERT_TRUE(device->awaitHanging());
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
}

TEST_F(SharedInputTimeTest, StoppingDoesNotWaitForADeviceThatHangs) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->hang();
  clock->advance(seconds(1));
  recording.queue.reset();
  clock->advance(seconds(3));
  ASSERT_TRUE(device->awaitHanging());  // closing
  Recording next;
  auto making = std::async(std::launch::async, [&] { return next.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  EXPECT_EQ(making.get(), kAudioStatusOk);
  device->release();
  ASSERT_TRUE(support::eventually([&] { return device->inputsOpened() == 2; }));
  ASSERT_TRUE(support::eventually([&] { return device->feed(ramp(0, kRecordFrames)); }));
  ASSERT_TRUE(next.endFrames.awaitCount(1));
}

TEST_F(SharedInputTimeTest, OneFailureIsReportedToOneCallerUntilTheDeviceWorkedAgain) {
  EXPECT_FALSE(queues->claimInputFailureAlert());
  device->failOpeningInput(-5);
  Recording recording;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(recording.make(*queues), -5);
    EXPECT_EQ(queues->claimInputFailureAlert(), i == 0);
    EXPECT_FALSE(queues->claimInputFailureAlert());
    clock->advance(seconds(2));
  }
  device->failOpeningInput(kAudioStatusOk);
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  EXPECT_FALSE(queues->claimInputFailureAlert());
  device->failInput(kDeviceLostStatus);
  ASSERT_TRUE(recording.failures.awaitCount(1));
  EXPECT_TRUE(queues->claimInputFailureAlert());
  EXPECT_FALSE(queues->claimInputFailureAlert());
}

TEST_F(SharedInputTimeTest, ALossOfInputAndOutputIsReportedToOneCallerASecond) {
  EXPECT_TRUE(queues->claimDeviceLossAlert());
  clock->advance(milliseconds(999));
  EXPECT_FALSE(queues->claimDeviceLossAlert());
  clock->advance(milliseconds(1));
  EXPECT_TRUE(queues->claimDeviceLossAlert());
  EXPECT_FALSE(queues->claimDeviceLossAlert());
}

TEST_F(SharedInputTimeTest, FramesLostInsideTheSoundSystemAreToldOnce) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto run = [&](int turns) {
    for (int i = 0; i < turns; ++i) {
      clock->advance(std::chrono::nanoseconds(23219955));  // 1024 frames
      ASSERT_TRUE(device->feed(ramp(0, 1024)));
    }
  };
  run(43 * 8);
  EXPECT_EQ(services->consoleLinesWith("lost inside the sound system"), 0U);
  clock->advance(seconds(8));
  run(43 * 8);
  ASSERT_TRUE(support::eventually(
      [&] { return services->consoleLinesWith("lost inside the sound system") > 0; }));
  run(43 * 8);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  EXPECT_EQ(services->consoleLinesWith("lost inside the sound system"), 1U);
}

}  // namespace
}  // namespace platform::test
