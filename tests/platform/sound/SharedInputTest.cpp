#include <atomic>
#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <thread>

#include "platform/sound/AudioQueueFixture.h"
#include "platform/sound/StallWatch.h"

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

/// Lets the time of `turns` times 1024 frames pass and feeds them, only as fast as the queue
/// follows, so that its ring never fills.
void run(ManualAudioClock& clock, const Recording& recording, int turns,
         const std::function<bool()>& feed1024) {
  for (int i = 0; i < turns; ++i) {
    clock.advance(std::chrono::nanoseconds(23219955));  // 1024 frames
    ASSERT_TRUE(feed1024());
    if (i % 43 == 42) {
      recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
    }
  }
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
  recording.queue.reset();
  clock->advance(milliseconds(2999));
  settle();
  device->hang();
  clock->advance(milliseconds(1));
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

TEST_F(SharedInputTimeTest, FramesLostInsideTheSoundSystemAreToldOnce) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto feed = [&] { return device->feed(ramp(0, 1024)); };
  run(*clock, recording, 43 * 8, feed);
  EXPECT_EQ(services->consoleLinesWith("lost inside the sound system"), 0U);
  clock->advance(seconds(8));
  run(*clock, recording, 43 * 8, feed);
  ASSERT_TRUE(support::eventually(
      [&] { return services->consoleLinesWith("lost inside the sound system") > 0; }));
  run(*clock, recording, 43 * 8, feed);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  EXPECT_EQ(services->consoleLinesWith("lost inside the sound system"), 1U);
}

TEST_F(SharedInputTimeTest,
       SilenceStandsForFramesLostInsideTheSoundSystemSoThatTheRestKeepsItsTime) {
  Recording recording;
  std::uint64_t silenced = 0;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) {
    silenced += buffer.silencedFrames;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  std::uint64_t at = 0;  // the frame that is due now
  const auto feed = [&] {
    at += 1024;
    return device->feed(ramp(at - 1024, 1024));
  };
  run(*clock, recording, 43 * 8, feed);
  // At once: a stall of the device that is watched in time would end the recording.
  clock->advance(100 * std::chrono::nanoseconds(23219955));
  at += std::uint64_t{100} * 1024;
  run(*clock, recording, 43 * 4, feed);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  const std::vector<float> samples = recording.samples();
  EXPECT_NEAR(static_cast<double>(silenced), 100 * 1024, 10);
  EXPECT_EQ(recording.queue->lostFrames(), silenced);
  // The last frame stands where it belongs, but for the detector's rounding.
  const std::size_t last = samples.size() / 2 - 1;
  EXPECT_NEAR(samples[2 * last], static_cast<double>(last), 10);
}

TEST_F(SharedInputTimeTest, SilenceSaysThatItsFramesWereLostBeforeThoseCapturedSince) {
  Recording recording;
  std::uint64_t lostAtFrame = 0;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) {
    lostAtFrame = buffer.silencedFrames > 0 ? buffer.lostAtFrame : lostAtFrame;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto feed = [&] { return device->feedConstant(1024, 1, 1); };
  run(*clock, recording, 43 * 8, feed);
  const std::uint64_t before = recording.queue->capturedFrames();
  clock->advance(seconds(2));
  run(*clock, recording, 20, feed);
  const std::uint64_t pressed = recording.queue->capturedFrames();
  ASSERT_EQ(recording.queue->lostFrames(), 0U) << "it is not found yet";
  run(*clock, recording, 43 * 3, feed);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  EXPECT_GE(lostAtFrame, before);
  EXPECT_LE(lostAtFrame, pressed);
}

TEST_F(SharedInputTimeTest, WhatWasMissedWhileTheMachineSleptIsLostAndTheInputIsNot) {
  Recording recording;
  std::uint64_t silenced = 0;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) {
    silenced += buffer.silencedFrames;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto feed = [&] { return device->feedConstant(1024, 1, 1); };
  run(*clock, recording, 43 * 8, feed);
  clock->sleep(seconds(10));
  run(*clock, recording, 43 * 4, feed);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  EXPECT_NEAR(static_cast<double>(silenced), 10 * 44100, 20);
  EXPECT_EQ(recording.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, AGapOfMoreThanAMinuteIsToldAndNotFilled) {
  Recording recording;
  std::uint64_t missing = 0;
  std::uint64_t silenced = 0;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) {
    missing += buffer.missingBefore;
    silenced += buffer.silencedFrames;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto feed = [&] { return device->feedConstant(1024, 1, 1); };
  run(*clock, recording, 43 * 8, feed);
  clock->advance(seconds(70));
  run(*clock, recording, 43 * 4, feed);
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  EXPECT_NEAR(static_cast<double>(missing), 70 * 44100, 20);
  EXPECT_EQ(silenced, 0U);
  EXPECT_EQ(recording.queue->lostFrames(), missing);
}

// Inputs that come and go -------------------------------------------------------------------------

AudioInputDevice inputNamed(const std::string& id, bool isDefault = true) {
  return {
      .id = id, .name = "The " + id, .isMonitor = id.ends_with(".monitor"), .isDefault = isDefault};
}

TEST_F(SharedInputTest, TheOpenInputIsNamed) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(queues->inputSource(), (AudioInputSource{.kind = AudioInputSource::Kind::kMicrophone,
                                                     .isOpen = true,
                                                     .id = "mic",
                                                     .name = "The mic"}));
}

TEST_F(SharedInputTest, AnInputThatVanishesEndsEveryQueueWithItsWholeBuffersAlsoIfTheStreamGoesOn) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording one;
  Recording two;
  ASSERT_EQ(one.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(two.begin(*queues, 1000), kAudioStatusOk);
  device->feed(ramp(0, 2 * kRecordFrames));
  device->moveInput("spk.monitor");
  device->feed(ramp(500'000, 500));  // what the computer plays
  device->setInputs({{inputNamed("spk.monitor")}});
  ASSERT_TRUE(one.failures.awaitCount(1));
  ASSERT_TRUE(two.failures.awaitCount(1));
  EXPECT_EQ(one.failures.values(), (std::vector<AudioStatus>{kDeviceLostStatus}));
  EXPECT_EQ(one.samples(), ramp(0, 2 * kRecordFrames));
  EXPECT_EQ(two.samples(), ramp(0, 8000));
  EXPECT_EQ(queues->lostInput().name, "The mic");
  // Another input is there: the next queue gets it at once.
  Recording next;
  ASSERT_EQ(next.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->inputsOpened(), 2U);
  EXPECT_EQ(queues->inputSource().kind, AudioInputSource::Kind::kMonitor);
}

TEST_F(SharedInputTimeTest, AStreamThatWasMovedWithoutNoticeIsFollowedAtTheNextLook) {
  device->setInputs({{inputNamed("mic"), inputNamed("other", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->moveInput("other");
  EXPECT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    device->feed(ramp(0, 10));
    return queues->inputSource().id == "other";
  }));
  EXPECT_EQ(recording.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, AnInputThatVanishedWithoutNoticeIsLostAtTheNextLook) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->setInputsSilently({{inputNamed("spk.monitor")}});
  device->moveInput("spk.monitor");
  EXPECT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    device->feed(ramp(0, 10));
    return recording.failures.count() > 0;
  }));
}

TEST_F(SharedInputTest, AnInputThatComesBackIsKnownAndRecordedFromAgain) {
  device->setInputs({{inputNamed("mic")}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->failOpeningInput(kDeviceUnavailableStatus);
  device->setInputs(std::vector<AudioInputDevice>());
  ASSERT_TRUE(recording.failures.awaitCount(1));
  EXPECT_TRUE(queues->claimInputFailureAlert());
  ASSERT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kNone; }));
  Recording refused;
  EXPECT_EQ(refused.make(*queues), kDeviceUnavailableStatus);
  EXPECT_FALSE(queues->claimInputFailureAlert()) << "its loss was told";
  device->failOpeningInput(kAudioStatusOk);
  device->setInputs({{inputNamed("mic")}});
  ASSERT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kMicrophone; }));
  EXPECT_FALSE(queues->inputSource().isOpen);
  Recording again;
  EXPECT_TRUE(support::eventually([&] { return again.begin(*queues) == kAudioStatusOk; }));
  EXPECT_TRUE(queues->inputSource().isOpen);
}

TEST_F(SharedInputTest, ALossThatAnotherMicrophoneReplacesIsNotTheFailureOfThatOne) {
  device->setInputs({{inputNamed("mic"), inputNamed("other", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->failOpeningInput(-5);
  device->setInputs({{inputNamed("other")}});
  ASSERT_TRUE(recording.failures.awaitCount(1));
  EXPECT_FALSE(queues->claimInputFailureAlert());
  Recording refused;
  EXPECT_EQ(refused.make(*queues), -5);
  EXPECT_TRUE(queues->claimInputFailureAlert());
}

TEST_F(SharedInputTimeTest, AMissingInputIsLookedForAlsoWithoutNotice) {
  device->setInputs(std::nullopt);
  device->failOpeningInput(kDeviceUnavailableStatus);
  Recording recording;
  EXPECT_EQ(recording.make(*queues), kDeviceUnavailableStatus);
  ASSERT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kNone; }));
  EXPECT_TRUE(queues->claimInputFailureAlert());
  EXPECT_FALSE(queues->claimInputFailureAlert());
  device->setInputsSilently({{inputNamed("mic")}});
  EXPECT_TRUE(support::eventually([&] {
    clock->advance(seconds(1));
    return queues->inputSource().kind == AudioInputSource::Kind::kMicrophone;
  }));
  // Its appearance is a change of state.
  EXPECT_TRUE(support::eventually([&] { return queues->claimInputFailureAlert(); }));
}

TEST_F(SharedInputTimeTest, AMicrophoneThatBecomesTheDefaultAfterItAppearedIsFound) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->setInputs({{inputNamed("spk.monitor")}});
  ASSERT_TRUE(recording.failures.awaitCount(1));
  ASSERT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kMonitor; }));
  const auto awaitLookAfter = [&](const std::function<void()>& change) {
    const std::size_t looks = device->looksAtInputs();
    change();
    return support::eventually([&] { return device->looksAtInputs() > looks; });
  };
  ASSERT_TRUE(awaitLookAfter([&] { clock->advance(seconds(2)); })) << "the stream's last one";
  ASSERT_TRUE(awaitLookAfter([&] {
    device->setInputs({{inputNamed("spk.monitor"), inputNamed("mic", false)}});
  }));
  device->setInputsSilently({{inputNamed("spk.monitor", false), inputNamed("mic")}});
  EXPECT_TRUE(awaitLookAfter([&] { clock->advance(seconds(1)); })) << "not after five";
  EXPECT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kMicrophone; }));
}

TEST_F(SharedInputTimeTest, AfterALossTheInputsAreLookedAtAgainWithinASecond) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->setInputs({{inputNamed("spk.monitor"), inputNamed("other", false)}});
  ASSERT_TRUE(recording.failures.awaitCount(1));
  ASSERT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kMonitor; }));
  device->setInputsSilently({{inputNamed("spk.monitor", false), inputNamed("other")}});
  clock->advance(seconds(1));
  EXPECT_TRUE(support::eventually(
      [&] { return queues->inputSource().kind == AudioInputSource::Kind::kMicrophone; }));
}

TEST_F(SharedInputTest, NoticesDuringOpeningClosingAndTheEndDoNoHarm) {
  std::atomic<bool> stop{false};
  std::thread plugs([&] {
    while (!stop) {
      device->setInputs({{inputNamed("mic"), inputNamed("other", false)}});
      device->setInputs({{inputNamed("mic")}});
    }
  });
  for (int i = 0; i < 30; ++i) {
    Recording recording;
    ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
    EXPECT_EQ(recording.failures.count(), 0U);
  }
  queues.reset();  // while inputs go on coming and going
  stop = true;
  plugs.join();
}

// Inputs that stand still -------------------------------------------------------------------------

TEST_F(SharedInputTimeTest, AnInputFromWhichNothingMoreComesIsLostAlsoWhileTheSoundSystemHangs) {
  Recording recording;
  Recording second;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(second.begin(*queues), kAudioStatusOk);
  device->feed(ramp(0, kRecordFrames + 7));
  device->hang();
  const auto begun = clock->now();
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    return recording.failures.count() > 0 && second.failures.count() > 0;
  }));
  EXPECT_GE(clock->now() - begun, seconds(2));
  EXPECT_EQ(recording.failures.values(), (std::vector<AudioStatus>{kDeviceStalledStatus}));
  EXPECT_EQ(recording.samples(), ramp(0, kRecordFrames + 7));
  EXPECT_EQ(queues->lostInput().name, "Microphone");
  // A request within a second is answered at once.
  Recording refused;
  EXPECT_EQ(refused.make(*queues), kDeviceStalledStatus);
  device->release();
  ASSERT_TRUE(device->awaitInputClosed());
  clock->advance(seconds(1));
  Recording again;
  ASSERT_EQ(again.begin(*queues), kAudioStatusOk);
  device->feed(ramp(0, kRecordFrames));
  EXPECT_TRUE(again.endFrames.awaitCount(1));
  EXPECT_EQ(again.failures.count(), 0U);
}

TEST_F(SharedInputTimeTest, AnOpeningThatHangsIsGivenUpAndItsLateStreamIsClosed) {
  device->hang();
  Recording recording;
  auto making = std::async(std::launch::async, [&] { return recording.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  ASSERT_EQ(making.get(), kAudioStatusOk);
  const auto begun = clock->now();
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    return recording.failures.count() > 0;
  }));
  EXPECT_GE(clock->now() - begun, seconds(4));
  EXPECT_EQ(recording.failures.values(), (std::vector<AudioStatus>{kDeviceStalledStatus}));
  device->release();
  EXPECT_TRUE(support::eventually(
      [&] { return device->inputsOpened() == 1 && device->inputsClosed() == 1; }));
  clock->advance(seconds(1));
  Recording again;
  ASSERT_EQ(again.begin(*queues), kAudioStatusOk);
  device->feed(ramp(0, kRecordFrames));
  EXPECT_TRUE(again.endFrames.awaitCount(1));
}

TEST_F(SharedInputTimeTest, AnOpeningThatIsGivenUpWhileItsInputIsLookedUpStaysGivenUp) {
  device->hangListing();
  Recording recording;
  auto making = std::async(std::launch::async, [&] { return recording.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  ASSERT_EQ(making.get(), kAudioStatusOk);
  ASSERT_TRUE(device->awaitHanging());
  ASSERT_TRUE(device->isInputOpen());
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    return recording.failures.count() > 0;
  }));
  device->release();
  ASSERT_TRUE(device->awaitInputClosed());
  clock->advance(seconds(1));
  Recording again;
  ASSERT_EQ(again.begin(*queues), kAudioStatusOk);
  EXPECT_TRUE(device->feed(ramp(0, kRecordFrames)));
  EXPECT_TRUE(again.endFrames.awaitCount(1));
}

TEST_F(SharedInputTimeTest, AnOpeningThatIsGivenUpBeforeItBeginsOpensNothing) {
  Recording former;
  ASSERT_EQ(former.begin(*queues), kAudioStatusOk);
  former.queue.reset();
  clock->advance(milliseconds(2999));
  settle();
  device->hang();
  clock->advance(milliseconds(1));
  ASSERT_TRUE(device->awaitHanging());  // closing
  Recording recording;
  auto making = std::async(std::launch::async, [&] { return recording.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  ASSERT_EQ(making.get(), kAudioStatusOk);
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    return recording.failures.count() > 0;
  }));
  device->release();
  clock->advance(seconds(1));
  Recording again;
  ASSERT_EQ(again.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->inputsOpened(), 2U);
}

TEST_F(SharedInputTimeTest, AnInputThatStallsWhileTheInputsAreListedIsNotLostASecondTime) {
  device->setInputs({{inputNamed("mic"), inputNamed("spk.monitor", false)}});
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->hangListing();
  device->moveInput("spk.monitor");
  device->setInputs({{inputNamed("spk.monitor")}});
  ASSERT_TRUE(device->awaitHanging());
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(100));
    return recording.failures.count() > 0;
  }));
  device->release();
  ASSERT_TRUE(device->awaitInputClosed());
  EXPECT_EQ(recording.failures.values(), (std::vector<AudioStatus>{kDeviceStalledStatus}));
  EXPECT_EQ(queues->lostInput().name, "The mic");
  // It is still known as failed: an input is looked for.
  const std::size_t looks = device->looksAtInputs();
  EXPECT_TRUE(support::eventually([&] {
    clock->advance(seconds(1));
    return device->looksAtInputs() >= looks + 3;
  }));
}

TEST_F(SharedInputTimeTest, AProgramThatIsStoppedForLongAgainAndAgainLosesNoInput) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  device->feed(ramp(0, 100));
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(clock->awaitWaiter(StallWatch::kInterval));
    clock->advance(seconds(20));
  }
  ASSERT_TRUE(clock->awaitWaiter(StallWatch::kInterval));  // it has looked each time
  settle();
  EXPECT_EQ(recording.failures.count(), 0U);
}

}  // namespace
}  // namespace platform::test
