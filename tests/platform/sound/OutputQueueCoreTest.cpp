#include <atomic>
#include <future>
#include <latch>
#include <thread>

#include "platform/sound/AudioQueueFixture.h"
#include "support/fakes/NoMoreThreads.h"

namespace platform::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using States = std::vector<std::uint32_t>;

class OutputQueueCoreTest : public AudioQueueFixture {
 protected:
  /// Pulls, and waits until the player has refilled the emptied buffers.
  std::vector<float> pullAndRefill(std::uint32_t frames) {
    auto samples = device->pull(frames);
    pulled_ += frames;
    EXPECT_TRUE(playback.returned.awaitCount(pulled_ / kPlayFrames));
    return samples;
  }
  std::uint32_t running() {
    std::uint32_t value = 9;
    EXPECT_EQ(playback.queue->isRunning(value), kAudioStatusOk);
    return value;
  }

  Gate door;
  Playback playback;
  std::size_t pulled_ = 0;
};

class OutputQueueCoreTimeTest : public TurnedClockFixture {
 protected:
  Playback playback;
};

TEST_F(OutputQueueCoreTest, RequestsOfAnySizeGetEverySampleInOrder) {
  playback.source = ramp(1, 30000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  std::vector<float> heard;
  for (std::uint32_t frames = 1; heard.size() < 2 * 28000; frames = frames * 7 % 1999 + 1) {
    const auto part = pullAndRefill(frames);
    heard.insert(heard.end(), part.begin(), part.end());
  }
  EXPECT_EQ(heard, ramp(1, heard.size() / 2));
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
  ASSERT_TRUE(playback.states.awaitCount(1));  // notified once all buffers have been returned
  EXPECT_EQ(playback.states.values(), States{1});
}

TEST_F(OutputQueueCoreTest, AClipShorterThanARequestIsHeardToItsLastFrame) {
  playback.source = ramp(1, 500);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  auto expected = playback.source;
  expected.resize(3072 * 2);
  EXPECT_EQ(device->pull(3072), expected);
  EXPECT_EQ(running(), 1U);
  EXPECT_EQ(device->outputsClosed(), 0U);
  device->hear(500);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (States{1, 0}));
  EXPECT_EQ(running(), 0U);
  EXPECT_EQ(playback.returned.values(), std::vector<std::uint32_t>{500});
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
  EXPECT_TRUE(device->awaitOutputsClosed(1));
}

TEST_F(OutputQueueCoreTimeTest, ADrainWaitsUntilTheLastRealFrameWasHeard) {
  playback.source = ramp(1, 2000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(1500);
  device->hearEverything();
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(support::eventually([&] {
      clock->advance(milliseconds(10));
      return true;
    }));
    settle();
  }
  EXPECT_EQ(device->outputsClosed(), 0U);  // 500 frames are still queued
  device->pull(1500);
  device->hear(499);
  clock->advance(milliseconds(10));
  settle();
  EXPECT_EQ(device->outputsClosed(), 0U);
  device->hear(1);
  // The end is noticed by the next check of the position, every 10 ms.
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(milliseconds(10));
    return playback.states.count() == 2;
  }));
  EXPECT_EQ(playback.states.values(), (States{1, 0}));
  EXPECT_EQ(playback.returned.count(), 2U);
}

TEST_F(OutputQueueCoreTest, ADeviceWhosePositionStandsStillDoesNotKeepADrainForEver) {
  playback.source = ramp(1, 2000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(2000);
  device->pull(88199);
  EXPECT_EQ(running(), 1U);
  device->pull(1);
  ASSERT_TRUE(playback.states.awaitCount(2));
}

TEST_F(OutputQueueCoreTest, AnEmptyQueueRunsAndStops) {
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  playback.prime();
  EXPECT_TRUE(playback.done);
  EXPECT_EQ(playback.states.count(), 0U);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (States{1, 0}));
}

TEST_F(OutputQueueCoreTest, EveryBufferComesBackBeforeTheEndIsTold) {
  for (int i = 0; i < 50; ++i) {
    Playback its;
    its.source = ramp(1, 2500);
    std::size_t returnedAtEnd = 0;
    its.inListener = [&](AudioOutputQueue&) { returnedAtEnd = its.returned.count(); };
    ASSERT_EQ(its.begin(*queues), kAudioStatusOk);
    device->pull(4000);
    device->hearEverything();
    ASSERT_TRUE(its.states.awaitCount(2));
    EXPECT_EQ(its.queue->dispose(), kAudioStatusOk);
    EXPECT_EQ(returnedAtEnd, 3U);
  }
}

TEST_F(OutputQueueCoreTest, APauseKeepsTheDataAndResumesSampleForSample) {
  playback.source = ramp(1, 20000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  auto heard = pullAndRefill(700);
  ASSERT_EQ(playback.queue->pause(), kAudioStatusOk);
  EXPECT_FALSE(device->isOutputRunning());
  EXPECT_EQ(device->pull(100), std::vector<float>());
  EXPECT_EQ(running(), 1U);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  EXPECT_TRUE(device->isOutputRunning());
  for (int i = 0; i < 5; ++i) {
    const auto more = pullAndRefill(900);
    heard.insert(heard.end(), more.begin(), more.end());
  }
  EXPECT_EQ(heard, ramp(1, heard.size() / 2));
  EXPECT_EQ(device->outputsOpened(), 1U);
  EXPECT_EQ(playback.states.values(), States{1});
}

TEST_F(OutputQueueCoreTimeTest, APauseDuringADrainHoldsItUntilTheResumption) {
  playback.source = ramp(1, 500);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(1000);
  ASSERT_EQ(playback.queue->pause(), kAudioStatusOk);
  device->hearEverything();
  for (int i = 0; i < 5; ++i) {
    clock->advance(milliseconds(10));
    settle();
  }
  EXPECT_EQ(device->outputsClosed(), 0U);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (States{1, 0}));
}

TEST_F(OutputQueueCoreTest, SilenceFromLackOfABufferIsCountedFromTheFirstDataToTheDrain) {
  playback.source = ramp(1, 6000);
  playback.inCallback = [&](AudioOutputQueue&) { door.pass(); };
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->pull(1000), ramp(1, 1000));
  auto expected = ramp(1001, 2072);
  expected.resize(3000 * 2);
  EXPECT_EQ(device->pull(3000), expected);
  EXPECT_EQ(playback.queue->underrunFrames(), 928U);
  door.open();
  ASSERT_TRUE(playback.returned.awaitCount(3));
  device->pull(5000);
  EXPECT_EQ(playback.queue->underrunFrames(), 928U + 5000 - (6000 - 3072));
  ASSERT_TRUE(playback.returned.awaitCount(6));
  ASSERT_TRUE(playback.done);
  device->pull(100);
  EXPECT_EQ(playback.queue->underrunFrames(), 928U + 5000 - (6000 - 3072));
}

TEST_F(OutputQueueCoreTest, SilenceInsideTheAudioIsToldOnTheConsoleOnceWhenTheQueueEnds) {
  playback.source = ramp(1, 6000);
  playback.inCallback = [&](AudioOutputQueue&) { door.pass(); };
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(1000);
  device->pull(3000);
  door.open();
  EXPECT_EQ(services->consoleLinesWith("silence"), 0U);
  EXPECT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(services->consoleLinesWith("928 frames of silence"), 1U);
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(services->consoleLinesWith("silence"), 1U);
}

TEST_F(OutputQueueCoreTest, AFirstRequestForMoreThanIsQueuedHearsTheAudioWithoutAGap) {
  playback.source = ramp(1, 10000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  auto heard = device->pull(4096);
  ASSERT_TRUE(playback.returned.awaitCount(3));
  const auto more = device->pull(1024);
  heard.insert(heard.end(), more.begin(), more.end());
  std::vector<float> expected(1024 * 2, 0.0F);
  const auto played = ramp(1, 4096);
  expected.insert(expected.end(), played.begin(), played.end());
  EXPECT_EQ(heard, expected);
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(services->consoleLinesWith("silence"), 0U);
}

TEST_F(OutputQueueCoreTest, SilenceBeforeTheFirstDataIsNoUnderrun) {
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  EXPECT_EQ(device->pull(100), std::vector<float>(200, 0));
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
}

TEST_F(OutputQueueCoreTest, AfterAnImmediateStopNothingIsCalledAndTheDataIsDropped) {
  playback.source = ramp(1, 20000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  pullAndRefill(1024);
  ASSERT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
  const std::size_t calls = playback.returned.count();
  EXPECT_EQ(running(), 0U);
  EXPECT_TRUE(device->awaitOutputsClosed(1));
  EXPECT_EQ(device->pull(100), std::vector<float>());
  EXPECT_EQ(playback.returned.count(), calls);
  EXPECT_LE(playback.states.count(), 1U);  // the stop itself is not notified
  EXPECT_EQ(playback.queue->start(), kInvalidQueueStateStatus);
  EXPECT_EQ(playback.queue->pause(), kInvalidQueueStateStatus);
  EXPECT_EQ(playback.queue->stopAfterQueued(), kInvalidQueueStateStatus);
  EXPECT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
}

TEST_F(OutputQueueCoreTest, AStopWaitsForTheCallbackThatRuns) {
  std::atomic<bool> inside{false};
  playback.source = ramp(1, 20000);
  playback.inCallback = [&](AudioOutputQueue&) {
    inside = true;
    door.pass();
    inside = false;
  };
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(3072);
  ASSERT_TRUE(door.awaitArrival());
  std::thread opener([&] { door.open(); });
  ASSERT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_FALSE(inside);
  opener.join();
}

TEST_F(OutputQueueCoreTest, AStopFromInsideTheCallbackOrListenerReturnsAndIsTheLastCall) {
  playback.source = ramp(1, 20000);
  playback.inCallback = [](AudioOutputQueue& queue) {
    EXPECT_EQ(queue.stopImmediately(), kAudioStatusOk);
    EXPECT_EQ(queue.dispose(), kAudioStatusOk);
  };
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(3072);
  ASSERT_TRUE(playback.returned.awaitCount(1));
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(playback.returned.count(), 1U);

  Playback other;
  other.inListener = [](AudioOutputQueue& queue) {
    EXPECT_EQ(queue.stopImmediately(), kAudioStatusOk);
  };
  ASSERT_EQ(other.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(other.queue->dispose(), kAudioStatusOk);
  EXPECT_LE(other.states.count(), 1U);
}

TEST_F(OutputQueueCoreTest, AQueueMayBeDestroyedInsideItsOwnListener) {
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  Record<int> ends;
  std::latch started(1);  // until then the owner is inside start()
  playback.queue->setRunningListener([&](AudioOutputQueue& queue) {
    std::uint32_t running = 9;
    ASSERT_EQ(queue.isRunning(running), kAudioStatusOk);
    if (running == 0) {
      started.wait();
      playback.queue.reset();
      ends.add(1);
    }
  });
  ASSERT_EQ(playback.queue->stopAfterQueued(), kAudioStatusOk);
  EXPECT_EQ(playback.queue->start(), kAudioStatusOk);
  started.count_down();
  EXPECT_TRUE(ends.awaitCount(1));
}

TEST_F(OutputQueueCoreTest, BuffersMayGoWhileTheDeviceIsAsking) {
  for (int i = 0; i < 50; ++i) {
    Playback its;
    its.source = ramp(1, 100000);
    ASSERT_EQ(its.begin(*queues), kAudioStatusOk);
    std::atomic<bool> stop{false};
    std::atomic<int> asked{0};
    std::thread loudspeaker([&] {
      while (!stop) {
        device->pull(64);
        ++asked;
      }
    });
    while (asked < 20) {
      std::this_thread::yield();
    }
    EXPECT_EQ(its.queue->dispose(), kAudioStatusOk);
    stop = true;
    loudspeaker.join();
  }
}

TEST_F(OutputQueueCoreTimeTest, AnImmediateStopDoesNotWaitForADeviceThatHangs) {
  playback.source = ramp(1, 20000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->hang();
  EXPECT_EQ(playback.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  ASSERT_TRUE(device->awaitHanging());
  EXPECT_EQ(device->pull(100), std::vector<float>(200, 0));  // its stream still exists
  device->release();
  EXPECT_TRUE(device->awaitOutputsClosed(1));
}

TEST_F(OutputQueueCoreTimeTest, AFailureAtOpeningIsAnsweredAtOnceForASecondAndThenTriedAnew) {
  device->failOpeningOutput(-5);
  EXPECT_EQ(playback.make(*queues), -5);
  EXPECT_EQ(playback.queue, nullptr);
  device->failOpeningOutput(kAudioStatusOk);
  clock->advance(milliseconds(999));
  EXPECT_EQ(playback.make(*queues), -5);
  clock->advance(milliseconds(1));
  EXPECT_EQ(playback.make(*queues), kAudioStatusOk);
}

TEST_F(OutputQueueCoreTest, AFailureThatStartAnswersIsNotToldByTheListener) {
  device->failStartingOutput(-6);
  playback.source = ramp(1, 5000);
  EXPECT_EQ(playback.begin(*queues), -6);
  EXPECT_EQ(playback.queue->failure(), -6);
  EXPECT_TRUE(device->awaitOutputsClosed(1));
  EXPECT_EQ(playback.queue->start(), -6);
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(playback.states.count(), 0U);
}

TEST_F(OutputQueueCoreTimeTest, ADeviceThatHangsIsWaitedForAQuarterOfASecondInAll) {
  device->hang();
  playback.source = ramp(1, 5000);
  auto making = std::async(std::launch::async, [&] { return playback.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(249));
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(1)));
  EXPECT_EQ(making.wait_for(seconds(0)), std::future_status::timeout);
  clock->advance(milliseconds(1));
  EXPECT_EQ(making.get(), kAudioStatusOk);
  std::uint32_t running = 9;
  ASSERT_EQ(playback.queue->isRunning(running), kAudioStatusOk);
  EXPECT_EQ(running, 0U);
  device->release();
  ASSERT_TRUE(playback.states.awaitCount(1));
  EXPECT_EQ(device->pull(1024), ramp(1, 1024));
}

TEST_F(OutputQueueCoreTimeTest, AFailureThatComesLateEndsTheQueueThroughItsListener) {
  device->hang();
  playback.source = ramp(1, 5000);
  auto making = std::async(std::launch::async, [&] { return playback.begin(*queues); });
  ASSERT_TRUE(clock->awaitWaiter(milliseconds(250)));
  clock->advance(milliseconds(250));
  ASSERT_EQ(making.get(), kAudioStatusOk);
  device->failOpeningOutput(-8);
  device->release();
  ASSERT_TRUE(playback.states.awaitCount(1));
  EXPECT_EQ(playback.queue->failure(), -8);
  settle();
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(playback.states.values(), States{0});
}

TEST_F(OutputQueueCoreTest, ALostDeviceEndsTheQueueOnce) {
  playback.source = ramp(1, 20000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  device->pull(10);
  device->failOutput(kDeviceLostStatus);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (States{1, 0}));
  EXPECT_EQ(playback.queue->failure(), kDeviceLostStatus);
  EXPECT_TRUE(device->awaitOutputsClosed(1));
  EXPECT_EQ(playback.queue->start(), kDeviceLostStatus);
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(playback.states.count(), 2U);
}

TEST_F(OutputQueueCoreTest, TwoQueuesPlayIndependently) {
  Playback other;
  playback.source = ramp(1, 5000);
  other.source = ramp(500000, 5000);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(other.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(device->pull(100, 0), ramp(1, 100));
  EXPECT_EQ(device->pull(100, 1), ramp(500000, 100));
  EXPECT_EQ(playback.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(device->pull(100, 1), ramp(500100, 100));
}

TEST_F(OutputQueueCoreTest, LevelsAreThoseOfTheLastBufferGivenToTheDevice) {
  playback.source.assign(2 * kPlayFrames, 0.5F);
  playback.source.resize(4 * kPlayFrames, 0.125F);
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  ASSERT_EQ(playback.queue->enableLevelMetering(true), kAudioStatusOk);
  playback.prime();
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  AudioQueueLevelMeterState levels[2];
  std::size_t count = 0;
  device->pull(kPlayFrames);
  ASSERT_TRUE(playback.returned.awaitCount(1));
  ASSERT_EQ(playback.queue->currentLevels(levels, 2, count), kAudioStatusOk);
  EXPECT_EQ(count, 2U);
  EXPECT_FLOAT_EQ(levels[0].mAveragePower, 0.5F);
  device->pull(kPlayFrames);
  ASSERT_TRUE(playback.returned.awaitCount(2));
  ASSERT_EQ(playback.queue->currentLevels(levels, 2, count), kAudioStatusOk);
  EXPECT_FLOAT_EQ(levels[1].mAveragePower, 0.125F);
}

TEST_F(OutputQueueCoreTest, AQueueThatGetsNoThreadIsNotStartedAndMayBeStartedAgain) {
  playback.source = ramp(1, 5000);
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  playback.prime();
  {
    const support::NoMoreThreads limit;
    if (!limit.isInForce()) {
      GTEST_SKIP() << "no way to make the system refuse a thread";
    }
    EXPECT_EQ(playback.queue->start(), kNoThreadStatus);
  }
  EXPECT_EQ(running(), 0U);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  EXPECT_EQ(device->pull(1000), ramp(1, 1000));
}

TEST_F(OutputQueueCoreTest, NoBufferIsTakenAfterTheEndWasAnnounced) {
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  const auto buffer = playback.queue->allocateBuffer(8192);
  ASSERT_TRUE(buffer);
  ASSERT_EQ(playback.queue->stopAfterQueued(), kAudioStatusOk);
  ASSERT_EQ(playback.queue->stopAfterQueued(), kAudioStatusOk);
  EXPECT_EQ(playback.queue->enqueueBuffer(*buffer), kInvalidQueueStateStatus);
}

TEST_F(OutputQueueCoreTest, TheListenerIsSetBeforeTheStartOnly) {
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  EXPECT_EQ(playback.queue->setRunningListener({}), kInvalidQueueStateStatus);
}

TEST_F(OutputQueueCoreTimeTest, AnOutputThatStandsStillEndsAlsoWhileTheSoundSystemHangs) {
  playback.source = ramp(0, 20 * kPlayFrames);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  ASSERT_TRUE(device->awaitOutputRunning());
  ASSERT_EQ(device->pull(kPlayFrames), ramp(0, kPlayFrames));
  device->hang();
  const auto begun = clock->now();
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(std::chrono::milliseconds(100));
    return playback.states.count() == 2;
  }));
  EXPECT_GE(clock->now() - begun, std::chrono::seconds(2));
  EXPECT_EQ(playback.states.values(), (std::vector<std::uint32_t>{1, 0}));
  EXPECT_EQ(playback.queue->failure(), kDeviceStalledStatus);
  device->release();
  EXPECT_TRUE(device->awaitOutputsClosed(1));
}

TEST_F(OutputQueueCoreTimeTest, AnOutputThatNeverBeginsEnds) {
  device->hang();
  playback.source = ramp(0, 20 * kPlayFrames);
  auto beginning = std::async(std::launch::async, [&] { return playback.begin(*queues); });
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(std::chrono::milliseconds(50));
    return beginning.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }));
  ASSERT_EQ(beginning.get(), kAudioStatusOk);
  EXPECT_TRUE(support::eventually([&] {
    clock->advance(std::chrono::milliseconds(100));
    return playback.queue->failure() == kDeviceStalledStatus;
  }));
}

TEST_F(OutputQueueCoreTimeTest, APausedOutputMayStandStillForEver) {
  playback.source = ramp(0, 20 * kPlayFrames);
  ASSERT_EQ(playback.begin(*queues), kAudioStatusOk);
  ASSERT_TRUE(device->awaitOutputRunning());
  device->pull(kPlayFrames);
  ASSERT_EQ(playback.queue->pause(), kAudioStatusOk);
  const auto begun = clock->now();
  ASSERT_TRUE(support::eventually([&] {
    clock->advance(std::chrono::milliseconds(100));
    return clock->now() - begun > std::chrono::seconds(10);
  }));
  EXPECT_EQ(playback.queue->failure(), kAudioStatusOk);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  ASSERT_TRUE(device->awaitOutputRunning());
  EXPECT_FALSE(device->pull(kPlayFrames).empty());
}

}  // namespace
}  // namespace platform::test
