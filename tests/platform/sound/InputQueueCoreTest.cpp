#include <atomic>
#include <cmath>
#include <future>
#include <thread>

#include "platform/sound/AudioQueueFixture.h"
#include "support/fakes/NoMoreThreads.h"

namespace platform::test {
namespace {

class InputQueueCoreTest : public AudioQueueFixture {
 protected:
  void feed(std::uint64_t first, std::size_t frames) {
    ASSERT_TRUE(device->feed(ramp(first, frames)));
  }
};

TEST_F(InputQueueCoreTest, IrregularChunksArriveAsWholeBuffersInOrder) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto fed = ramp(0, 10 * kRecordFrames);
  std::size_t at = 0;
  std::uint32_t chunk = 1;
  while (at < 10 * kRecordFrames) {
    const auto count = std::min<std::size_t>(chunk, 10 * kRecordFrames - at);
    ASSERT_TRUE(device->feed(&fed[2 * at], static_cast<std::uint32_t>(count)));
    at += count;
    chunk = chunk * 7 % 1103 + 1;
  }
  EXPECT_EQ(recording.queue->capturedFrames(), 10 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(10));
  EXPECT_EQ(recording.samples(), fed);
  EXPECT_EQ(recording.endFrames.values().front(), kRecordFrames);
  EXPECT_EQ(recording.endFrames.values().back(), 10 * kRecordFrames);
}

TEST_F(InputQueueCoreTest, TheBuffersDecideTheSizeOfADelivery) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues, 500), kAudioStatusOk);
  feed(0, 1700);
  ASSERT_TRUE(recording.endFrames.awaitCount(3));
  EXPECT_EQ(recording.endFrames.values(), (std::vector<std::uint64_t>{500, 1000, 1500}));
  EXPECT_EQ(recording.samples(), ramp(0, 1500));
}

TEST_F(InputQueueCoreTest, ABufferThatIsBeingFilledIsNotDelivered) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 2 * kRecordFrames - 1);
  EXPECT_EQ(recording.queue->capturedFrames(), kRecordFrames);
  recording.queue->waitUntilDelivered(2 * kRecordFrames);
  EXPECT_EQ(recording.endFrames.count(), 1U);
}

TEST_F(InputQueueCoreTest, FramesBeforeTheStartAreNotHeard) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  ASSERT_EQ(recording.prime(), kAudioStatusOk);
  feed(0, kRecordFrames);
  EXPECT_EQ(recording.queue->capturedFrames(), 0U);
  ASSERT_EQ(recording.queue->start(), kAudioStatusOk);
  feed(100000, kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.samples(), ramp(100000, kRecordFrames));
}

TEST_F(InputQueueCoreTest, AWritingSideThatIsHeldUpFor250MillisecondsLosesNothing) {
  Gate door;
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) { door.pass(); };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, kRecordFrames);
  ASSERT_TRUE(door.awaitArrival());
  constexpr std::size_t kStall = 11025;
  feed(kRecordFrames, kStall);
  feed(kRecordFrames + kStall, 3 * kRecordFrames - kStall);
  door.open();
  ASSERT_TRUE(recording.endFrames.awaitCount(4));
  EXPECT_EQ(recording.samples(), ramp(0, 4 * kRecordFrames));
  EXPECT_EQ(recording.queue->lostFrames(), 0U);
  EXPECT_EQ(services->consoleLinesWith("lost"), 0U);
}

TEST_F(InputQueueCoreTest, SilenceStandsForFramesBeyondTheFullRingWhichAreToldOncePerStretch) {
  Gate door;
  Recording recording;
  Record<std::uint32_t> silenced;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) {
    silenced.add(buffer.silencedFrames);
    door.pass();
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, kRecordFrames);
  ASSERT_TRUE(door.awaitArrival());
  feed(kRecordFrames, kInputRingFrames);
  EXPECT_EQ(recording.queue->lostFrames(), 0U);
  feed(kRecordFrames + kInputRingFrames, 1000);
  feed(kRecordFrames + kInputRingFrames + 1000, 96);
  EXPECT_EQ(recording.queue->lostFrames(), 1096U);
  door.open();
  ASSERT_TRUE(recording.endFrames.awaitCount(65));
  const std::uint64_t resumed = kRecordFrames + kInputRingFrames + 1096;
  feed(resumed, 2 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(68));
  EXPECT_EQ(recording.endFrames.values().at(65), resumed);
  EXPECT_EQ(recording.endFrames.values().back(), resumed + 2 * kRecordFrames);
  EXPECT_EQ(silenced.values().at(64), 0U);
  EXPECT_EQ(silenced.values().at(65), 1096U);
  EXPECT_EQ(silenced.values().at(66), 0U);
  auto expected = ramp(0, kRecordFrames + kInputRingFrames);
  expected.resize(expected.size() + std::size_t{1096} * 2);
  const auto rest = ramp(resumed, 2 * kRecordFrames);
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(recording.samples(), expected);
  EXPECT_EQ(services->consoleLinesWith("1096 frames were lost"), 1U);
  EXPECT_EQ(services->consoleLinesWith("lost"), 1U);
}

TEST_F(InputQueueCoreTest, WhileNothingIsRecordedItHoldsHalfASecondAndFromThenOnSix) {
  Gate door;
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) { door.pass(); };
  ASSERT_EQ(recording.monitor(*queues), kAudioStatusOk);
  feed(0, kRecordFrames);
  ASSERT_TRUE(door.awaitArrival());
  feed(kRecordFrames, kMonitoringRingFrames);
  EXPECT_EQ(recording.queue->lostFrames(), 0U);
  feed(kRecordFrames + kMonitoringRingFrames, 10);
  EXPECT_EQ(recording.queue->lostFrames(), 10U);
  recording.queue->prepareToRecord();
  recording.queue->prepareToRecord();
  const std::uint64_t grown = kRecordFrames + kMonitoringRingFrames + 10;
  feed(grown, kInputRingFrames - kMonitoringRingFrames);
  EXPECT_EQ(recording.queue->lostFrames(), 10U);
  feed(grown + kInputRingFrames - kMonitoringRingFrames, 1);
  EXPECT_EQ(recording.queue->lostFrames(), 11U);
  door.open();
  ASSERT_TRUE(recording.endFrames.awaitCount(66));  // the lost ones, in between, are silence
  auto expected = ramp(0, kRecordFrames + kMonitoringRingFrames);
  expected.resize(expected.size() + std::size_t{10} * 2);
  const auto rest = ramp(grown, kInputRingFrames - kMonitoringRingFrames);
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(recording.samples(), expected);
}

TEST_F(InputQueueCoreTest, BeforeItIsStartedThereIsNothingToPrepare) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  recording.queue->prepareToRecord();
  EXPECT_EQ(recording.queue->capturedFrames(), 0U);
}

TEST_F(InputQueueCoreTest, SilenceLongerThanABufferComesInSeveral) {
  Gate door;
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) { door.pass(); };
  ASSERT_EQ(recording.begin(*queues, 1000), kAudioStatusOk);
  feed(0, 1000);
  ASSERT_TRUE(door.awaitArrival());
  constexpr std::uint64_t kRoom = kInputRingFrames / 1000 * 1000;
  feed(1000, kRoom);
  feed(1000 + kRoom, 2500);
  door.open();
  ASSERT_TRUE(recording.endFrames.awaitCount(1 + kRoom / 1000));
  const std::uint64_t resumed = 1000 + kRoom + 2500;
  feed(resumed, 1000);
  ASSERT_TRUE(recording.endFrames.awaitCount(1 + kRoom / 1000 + 4));
  auto ends = recording.endFrames.values();
  ends.erase(ends.begin(), ends.end() - 4);
  EXPECT_EQ(ends,
            (std::vector<std::uint64_t>{resumed - 1500, resumed - 500, resumed, resumed + 1000}));
  auto expected = ramp(0, 1000 + kRoom);
  expected.resize(expected.size() + std::size_t{2500} * 2);
  const auto rest = ramp(resumed, 1000);
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(recording.samples(), expected);
}

TEST_F(InputQueueCoreTest, ALossThatNoBufferFollowedIsToldWhenTheQueueStops) {
  Recording recording;
  recording.reenqueue = false;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 3 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(3));
  feed(0, kInputRingFrames + 7);
  EXPECT_EQ(services->consoleLinesWith("lost"), 0U);
  EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(services->consoleLinesWith("7 frames were lost"), 1U);
  EXPECT_EQ(services->consoleLinesWith("lost"), 1U);
}

TEST_F(InputQueueCoreTest, BlocksWaitInTheRingUntilABufferIsEnqueuedAgain) {
  Recording recording;
  recording.reenqueue = false;
  std::vector<AudioQueueBuffer*> kept;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer& buffer) { kept.push_back(&buffer); };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 5 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(3));
  recording.queue->waitUntilDelivered(5 * kRecordFrames);  // returns: no enqueued buffer left
  EXPECT_EQ(recording.endFrames.count(), 3U);
  AudioQueueBuffer* first = kept[0];
  ASSERT_EQ(recording.queue->enqueueBuffer(first), kAudioStatusOk);
  ASSERT_TRUE(recording.endFrames.awaitCount(4));
  EXPECT_EQ(recording.samples(), ramp(0, 4 * kRecordFrames));
}

TEST_F(InputQueueCoreTest, ADeviceThatVanishesLosesNoneOfTheFramesThatItGave) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 3 * kRecordFrames - 1);
  device->failInput(kDeviceLostStatus);
  ASSERT_TRUE(recording.failures.awaitCount(1));
  EXPECT_EQ(recording.samples(), ramp(0, 3 * kRecordFrames - 1));
  EXPECT_EQ(recording.endFrames.values().back(), 3 * kRecordFrames - 1);
  EXPECT_EQ(recording.queue->capturedFrames(), 3 * kRecordFrames - 1);
  EXPECT_EQ(recording.queue->lostFrames(), 0U);
}

TEST_F(InputQueueCoreTest, AFailureIsToldAfterTheLastFramesAlsoWhenTheQueueIsBehind) {
  Gate door;
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) {
    EXPECT_EQ(recording.failures.count(), 0U);
    door.pass();
  };
  ASSERT_EQ(recording.begin(*queues, 64), kAudioStatusOk);
  feed(0, 10 * 64 + 5);
  ASSERT_TRUE(door.awaitArrival());
  device->failInput(kDeviceLostStatus);
  door.open();
  ASSERT_TRUE(recording.failures.awaitCount(1));
  EXPECT_EQ(recording.endFrames.values().back(), 10U * 64 + 5);
  EXPECT_EQ(recording.samples(), ramp(0, 10 * 64 + 5));
}

TEST_F(InputQueueCoreTest, AFailureWhileFramesArriveLosesNoneOfThem) {
  for (int round = 0; round < 50; ++round) {
    Recording recording;
    ASSERT_EQ(recording.begin(*queues, 64), kAudioStatusOk);
    ASSERT_TRUE(device->awaitInputOpen());
    std::uint64_t fed = 0;
    std::thread microphone([&] {
      while (device->feed(ramp(fed, 37))) {
        fed += 37;
        while (fed > recording.endFrames.count() * 64 + kInputRingFrames / 2) {
          std::this_thread::yield();  // a full ring would lose frames too
        }
      }
    });
    ASSERT_TRUE(recording.endFrames.awaitCount(static_cast<std::size_t>(round % 5)));
    device->failInput(kDeviceLostStatus);
    microphone.join();
    ASSERT_TRUE(recording.failures.awaitCount(1));
    EXPECT_EQ(recording.samples(), ramp(0, fed));
    recording.queue.reset();
    queues = std::make_shared<DeviceAudioQueues>(device);  // forgets the failure
  }
}

TEST_F(InputQueueCoreTest, WaitingForWhatWasCapturedSeesEveryWholeBufferOfAQueueThatIsBehind) {
  Gate door;
  std::atomic<int> finished{0};
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) {
    door.pass();
    ++finished;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 10 * kRecordFrames + 17);
  ASSERT_TRUE(door.awaitArrival());
  const std::uint64_t pressed = recording.queue->capturedFrames();
  EXPECT_EQ(pressed, 10 * kRecordFrames);
  std::thread opener([&] { door.open(); });
  recording.queue->waitUntilDelivered(pressed);
  EXPECT_EQ(finished, 10);
  opener.join();
}

TEST_F(InputQueueCoreTest, WaitingDoesNotWaitForBuffersCapturedLater) {
  Gate first;
  Gate second;
  std::atomic<int> calls{0};
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) {
    (calls++ == 0 ? first : second).pass();
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 2 * kRecordFrames);
  ASSERT_TRUE(first.awaitArrival());
  first.open();
  ASSERT_TRUE(second.awaitArrival());
  recording.queue->waitUntilDelivered(kRecordFrames);          // the second is still inside
  recording.queue->waitUntilDelivered(2 * kRecordFrames - 1);  // it ends later
  EXPECT_EQ(recording.endFrames.count(), 1U);
  second.open();
}

TEST_F(InputQueueCoreTest, WaitingEndsWhenTheQueueIsStopped) {
  Gate door;
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) { door.pass(); };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 3 * kRecordFrames);
  ASSERT_TRUE(door.awaitArrival());
  auto waiting = std::async(std::launch::async,
                            [&] { recording.queue->waitUntilDelivered(3 * kRecordFrames); });
  auto stopping =
      std::async(std::launch::async, [&] { return recording.queue->stopImmediately(); });
  waiting.get();
  door.open();
  EXPECT_EQ(stopping.get(), kAudioStatusOk);
  EXPECT_EQ(recording.endFrames.count(), 1U);
}

TEST_F(InputQueueCoreTest, AStopWaitsForTheCallbackThatRunsAndNoneFollows) {
  Gate door;
  std::atomic<bool> inside{false};
  Recording recording;
  recording.also = [&](AudioInputQueue&, AudioQueueBuffer&) {
    inside = true;
    door.pass();
    inside = false;
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 20 * kRecordFrames);
  ASSERT_TRUE(door.awaitArrival());
  std::thread opener([&] { door.open(); });
  ASSERT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_FALSE(inside);
  const std::size_t calls = recording.endFrames.count();
  opener.join();
  device->feed(ramp(0, 5 * kRecordFrames));
  EXPECT_EQ(recording.endFrames.count(), calls);
}

TEST_F(InputQueueCoreTest, AStopFromInsideTheCallbackReturnsAndIsTheLast) {
  Recording recording;
  recording.also = [&](AudioInputQueue& queue, AudioQueueBuffer&) {
    EXPECT_EQ(queue.stopImmediately(), kAudioStatusOk);
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 5 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(recording.endFrames.count(), 1U);
}

TEST_F(InputQueueCoreTest, DisposingFromInsideTheCallbackKeepsItsBufferUntilItReturns) {
  Recording recording;
  recording.also = [&](AudioInputQueue& queue, AudioQueueBuffer& buffer) {
    EXPECT_EQ(queue.dispose(), kAudioStatusOk);
    EXPECT_EQ(reinterpret_cast<const float*>(buffer.mAudioData)[2], 1.0F);
  };
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  feed(0, 5 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(recording.endFrames.count(), 1U);
}

TEST_F(InputQueueCoreTest, AQueueMayBeDestroyedInsideItsOwnCallback) {
  std::unique_ptr<AudioInputQueue> queue;
  Record<int> calls;
  auto made = queues->newInput(kWorkingFormat,
                               [&](AudioInputQueue&, AudioQueueBuffer&) {
                                 queue.reset();
                                 calls.add(1);
                               },
                               {});
  ASSERT_TRUE(made);
  queue = *std::move(made);
  const auto buffer = queue->allocateBuffer(32768);
  ASSERT_TRUE(buffer);
  ASSERT_EQ(queue->enqueueBuffer(*buffer), kAudioStatusOk);
  ASSERT_EQ(queue->start(), kAudioStatusOk);
  feed(0, kRecordFrames);
  ASSERT_TRUE(calls.awaitCount(1));
}

TEST_F(InputQueueCoreTest, DisposingTwiceDoesNothingMoreAndEverythingElseIsRefused) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->dispose(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->stopImmediately(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->start(), kInvalidQueueStateStatus);
  EXPECT_EQ(recording.queue->allocateBuffer(32768).error(), kInvalidQueueStateStatus);
  EXPECT_EQ(recording.queue->enqueueBuffer(nullptr), kInvalidQueueStateStatus);
  recording.queue->waitUntilDelivered(1);
}

TEST_F(InputQueueCoreTest, StartingWithoutABufferIsRefusedAndTwiceIsOne) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  EXPECT_EQ(recording.queue->start(), kInvalidQueueStateStatus);
  ASSERT_EQ(recording.prime(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->start(), kAudioStatusOk);
  EXPECT_EQ(recording.queue->start(), kAudioStatusOk);
  feed(0, kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.queue->capturedFrames(), kRecordFrames);
}

TEST_F(InputQueueCoreTest, AQueueThatGetsNoThreadIsNotStartedAndMayBeStartedAgain) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  ASSERT_EQ(recording.prime(), kAudioStatusOk);
  {
    const support::NoMoreThreads limit;
    if (!limit.isInForce()) {
      GTEST_SKIP() << "no way to make the system refuse a thread";
    }
    EXPECT_EQ(recording.queue->start(), kNoThreadStatus);
  }
  feed(0, kRecordFrames);
  EXPECT_EQ(recording.queue->capturedFrames(), 0U);
  ASSERT_EQ(recording.queue->start(), kAudioStatusOk);
  feed(500, kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(1));
  EXPECT_EQ(recording.samples(), ramp(500, kRecordFrames));
}

TEST_F(InputQueueCoreTest, ABufferLongerThanHalfTheRingIsRefused) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  EXPECT_EQ(recording.queue->allocateBuffer(kInputRingFrames * 8).error(), kInvalidParameterStatus);
  EXPECT_TRUE(recording.queue->allocateBuffer(kInputRingFrames * 4));
}

TEST_F(InputQueueCoreTest, LevelsAreThoseOfTheLastFilledBuffer) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  ASSERT_EQ(recording.queue->enableLevelMetering(true), kAudioStatusOk);
  AudioQueueLevelMeterState levels[2] = {{9, 9}, {9, 9}};
  std::size_t count = 0;
  ASSERT_EQ(recording.queue->currentLevels(levels, 2, count), kAudioStatusOk);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(levels[0].mAveragePower, 0);
  device->feedConstant(kRecordFrames, 0.5F, -0.25F);
  device->feedConstant(kRecordFrames - 1, 1, 1);  // less than a buffer
  recording.queue->waitUntilDelivered(recording.queue->capturedFrames());
  ASSERT_EQ(recording.queue->currentLevels(levels, 2, count), kAudioStatusOk);
  EXPECT_FLOAT_EQ(levels[0].mAveragePower, 0.5F);
  EXPECT_FLOAT_EQ(levels[0].mPeakPower, 0.5F);
  EXPECT_FLOAT_EQ(levels[1].mAveragePower, 0.25F);
}

TEST_F(InputQueueCoreTest, TheStreamDescriptionIsTheWorkingFormat) {
  Recording recording;
  ASSERT_EQ(recording.make(*queues), kAudioStatusOk);
  AudioStreamBasicDescription description;
  ASSERT_EQ(recording.queue->streamDescription(description), kAudioStatusOk);
  EXPECT_EQ(description, kWorkingFormat);
}

}  // namespace
}  // namespace platform::test
