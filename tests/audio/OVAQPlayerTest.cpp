#include "audio/OVAQPlayer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QCoreApplication>

#include <gmock/gmock.h>

#include "platform/mainloop/MainQueue.h"
#include "support/MainLoop.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

// The player over stepped queues: the order of calls, every failing call, and the effect of one
// callback. OVAQPlayerThreadsTest.cpp runs it over real queues.
namespace {

using support::ramp;
using support::RecordedAlert;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::uint64_t kFrameBytes = MemoryTestBuffer::kFrameBytes;

constexpr std::uint64_t kBufferBytes = 8192;

class RecordingDelegate : public OVAQPlayerDelegate {
 public:
  void playerAdvancedToFrame(std::uint64_t frame) override {
    frames.push_back(frame);
    if (onAdvance) {
      onAdvance();
    }
  }
  void playerStoppedPlayback(OVAQPlayer* player) override {
    EXPECT_TRUE(platform::isMainThread());
    stopped.push_back(player);
  }
  std::vector<std::uint64_t> frames;
  std::vector<OVAQPlayer*> stopped;
  std::function<void()> onAdvance;
};

class OVAQPlayerTest : public testing::Test {
 protected:
  OVAQPlayerTest() { testing::internal::CaptureStderr(); }
  ~OVAQPlayerTest() override {
    player_.reset();
    drainMainQueue();
    testing::internal::GetCapturedStderr();
  }

  void make(std::uint64_t frames, std::uint64_t fromByte = 0) {
    buffer_ = std::make_shared<MemoryTestBuffer>(ramp(0, frames));
    player_ = OVAQPlayer::initWithBuffer(buffer_, fromByte);
    if (player_) {
      player_->setDelegate(delegate_);
    }
  }

  bool awaitLossAlert() {
    return runMainLoopUntil([this] { return !services_->postedAlerts().empty(); });
  }

  /// Runs everything posted to the main queue so far.
  static void drainMainQueue() {
    bool reached = false;
    platform::mainQueue().async([&reached] { reached = true; });
    EXPECT_TRUE(runMainLoopUntil([&reached] { return reached; }));
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  std::shared_ptr<MemoryTestBuffer> buffer_;
  std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
  std::shared_ptr<OVAQPlayer> player_;
};

TEST_F(OVAQPlayerTest, SetUpMakesItsCallsInOrderPrimesAndDoesNotStart) {
  make(10000);
  ASSERT_NE(player_, nullptr);
  EXPECT_THAT(queues_->calls, ElementsAre("newOutput", "enableLevelMetering", "setRunningListener",
                                          "allocateBuffer", "enqueueBuffer", "allocateBuffer",
                                          "enqueueBuffer", "allocateBuffer", "enqueueBuffer"));
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_FALSE(player_->isDone());
  EXPECT_EQ(player_->readingPosition(), 3U * kBufferBytes);
  EXPECT_EQ(player_->queue(), &queues_.output());
  EXPECT_EQ(player_->buffer(), buffer_);
  for (const auto* enqueued : queues_.output().enqueued) {
    EXPECT_EQ(enqueued->mAudioDataBytesCapacity, kBufferBytes);
    EXPECT_EQ(enqueued->mAudioDataByteSize, kBufferBytes);
    EXPECT_EQ(enqueued->mPacketDescriptionCount, 0U);
  }
}

TEST_F(OVAQPlayerTest, PrimingStartsAtThePlaybackPosition) {
  make(10000, 500 * kFrameBytes);
  EXPECT_EQ(player_->readingPosition(), 500U * kFrameBytes + 3U * kBufferBytes);
  EXPECT_EQ(queues_.output().playOne().at(0), 500.0F);
}

TEST_F(OVAQPlayerTest, AtTheEndOfTheDataPrimingReadsNothingAndIsDoneWithOneBuffer) {
  for (const std::uint64_t from : {1000U, 5000U}) {
    queues_->calls.clear();
    make(1000, from * kFrameBytes);
    ASSERT_NE(player_, nullptr);
    EXPECT_TRUE(player_->isDone());
    EXPECT_EQ(queues_.output().allocated(), 1U);
    EXPECT_EQ(queues_->count("enqueueBuffer"), 0U);
    EXPECT_EQ(queues_->count("stopAfterQueued"), 1U);
    EXPECT_EQ(player_->readingPosition(), from * kFrameBytes);
  }
}

TEST_F(OVAQPlayerTest, StartingAtTheEndOfTheDataLeadsToPlayerStoppedPlayback) {
  make(1000, 1000 * kFrameBytes);
  player_->play();
  queues_.output().changeRunning(1);
  queues_.output().changeRunning(0);
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_THAT(delegate_->stopped, IsEmpty());
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, ElementsAre(player_.get()));
}

TEST_F(OVAQPlayerTest, DataShorterThanThreeBuffersMakesFewerAndTheLastIsShort) {
  make(1500);
  EXPECT_TRUE(player_->isDone());
  EXPECT_EQ(queues_.output().allocated(), 3U);  // the third reached the end of the data
  ASSERT_THAT(queues_.output().enqueued, SizeIs(2));
  EXPECT_EQ(queues_.output().enqueued[0]->mAudioDataByteSize, kBufferBytes);
  EXPECT_EQ(queues_.output().enqueued[1]->mAudioDataByteSize, 476U * kFrameBytes);
  EXPECT_EQ(queues_->calls.back(), "stopAfterQueued");
}

TEST_F(OVAQPlayerTest, OneFrameMakesTwoBuffersOfWhichOneIsQueued) {
  make(1);
  EXPECT_EQ(queues_.output().allocated(), 2U);
  ASSERT_THAT(queues_.output().enqueued, SizeIs(1));
  EXPECT_EQ(queues_.output().enqueued[0]->mAudioDataByteSize, kFrameBytes);
}

TEST_F(OVAQPlayerTest, EveryBufferIsPlayedInOrderToTheLastFrame) {
  make(5000);
  player_->play();
  std::vector<float> played;
  while (!queues_.output().enqueued.empty()) {
    const auto samples = queues_.output().playOne();
    played.insert(played.end(), samples.begin(), samples.end());
  }
  EXPECT_EQ(played, ramp(0, 5000));
  EXPECT_TRUE(player_->isDone());
  EXPECT_EQ(queues_->count("stopAfterQueued"), 1U);
}

TEST_F(OVAQPlayerTest, TheReportedFrameRunsAheadOfTheAudibleOneByTheQueuedBuffers) {
  make(10000);
  player_->play();
  queues_.output().playOne();  // frames 0 to 1023 heard, buffers up to 3072 queued before
  EXPECT_THAT(delegate_->frames, ElementsAre(4096U));
  queues_.output().playOne();
  EXPECT_THAT(delegate_->frames, ElementsAre(4096U, 5120U));
}

TEST_F(OVAQPlayerTest, TheReportedFrameIsRoundedDown) {
  make(10000, 4);  // in the middle of a frame
  queues_.output().playOne();
  EXPECT_THAT(delegate_->frames, ElementsAre(4096U));
}

TEST_F(OVAQPlayerTest, AtTheEndOfTheDataItStopsAfterWhatIsQueuedAndReportsNoAdvance) {
  make(3072);
  player_->play();
  queues_->calls.clear();
  queues_.output().playOne();
  EXPECT_THAT(queues_->calls, ElementsAre("stopAfterQueued"));
  EXPECT_TRUE(player_->isDone());
  queues_.output().playOne();
  EXPECT_THAT(queues_->calls, ElementsAre("stopAfterQueued"));
  EXPECT_THAT(delegate_->frames, IsEmpty());
  EXPECT_TRUE(player_->isPlaying());  // draining
}

TEST_F(OVAQPlayerTest, FailuresToEnqueueAreNotLookedAt) {
  make(10000);
  queues_->fail("enqueueBuffer", -66);
  queues_.output().playOne();
  EXPECT_THAT(delegate_->frames, ElementsAre(4096U));
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQPlayerTest, APositionThatIsSetDuringAReadStaysAndIsReported) {
  make(10000);
  buffer_->beforeRead = [this](std::uint64_t) { player_->setReadingPosition(800); };
  queues_.output().playOne();
  EXPECT_EQ(player_->readingPosition(), 800U);
  EXPECT_THAT(delegate_->frames, ElementsAre(100U));
}

TEST_F(OVAQPlayerTest, ADelegateThatHasGoneIsNotCalled) {
  make(10000);
  delegate_.reset();
  queues_.output().playOne();
  queues_.output().changeRunning(0);
  drainMainQueue();
  EXPECT_EQ(player_->readingPosition(), 4U * kBufferBytes);
}

TEST_F(OVAQPlayerTest, PauseKeepsTheQueueAndPlayResumes) {
  make(10000);
  player_->play();
  queues_.output().changeRunning(1);
  EXPECT_TRUE(player_->isPlaying());
  player_->pause();
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_EQ(player_->readingPosition(), 3U * kBufferBytes);
  EXPECT_THAT(queues_.output().enqueued, SizeIs(3));
  player_->play();
  EXPECT_TRUE(player_->isPlaying());
  EXPECT_EQ(queues_->count("start"), 2U);
  EXPECT_EQ(queues_->count("pause"), 1U);
  EXPECT_THAT(delegate_->stopped, IsEmpty());
}

TEST_F(OVAQPlayerTest, ARunningReportThatComesAfterPauseDoesNotUndoIt) {
  make(10000);
  player_->play();
  player_->pause();
  queues_.output().changeRunning(1);
  EXPECT_FALSE(player_->isPlaying());
}

TEST_F(OVAQPlayerTest, StopDisposesOfTheQueueAndReleasesTheBuffer) {
  make(10000);
  player_->play();
  queues_->calls.clear();
  player_->stop();
  EXPECT_THAT(queues_->calls, ElementsAre("stopImmediately", "dispose"));
  EXPECT_TRUE(player_->isDone());
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_EQ(player_->queue(), nullptr);
  EXPECT_EQ(player_->buffer(), nullptr);
  EXPECT_EQ(buffer_.use_count(), 1);
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(OVAQPlayerTest, StopTwiceDoesNothingTheSecondTime) {
  make(10000);
  player_->stop();
  const auto calls = queues_->calls;
  player_->stop();
  EXPECT_EQ(queues_->calls, calls);
}

TEST_F(OVAQPlayerTest, StopIsValidFromEveryState) {
  const std::vector<std::function<void()>> states = {[] {},  // primed
                                                     [this] { player_->play(); },
                                                     [this] {
                                                       player_->play();
                                                       player_->pause();
                                                     },
                                                     [this] {  // draining
                                                       player_->play();
                                                       queues_.output().playOne();
                                                     },
                                                     [this] {  // stopped by itself
                                                       player_->play();
                                                       queues_.output().changeRunning(0);
                                                     }};
  for (const auto& enter : states) {
    make(3072);
    enter();
    player_->stop();
    EXPECT_FALSE(player_->isPlaying());
    EXPECT_TRUE(player_->isDone());
    EXPECT_EQ(player_->queue(), nullptr);
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQPlayerTest, AStoppedPlayerReportsAFailedStartAndStaysStopped) {
  make(10000);
  player_->stop();
  player_->play();
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  player_->pause();
  EXPECT_EQ(player_->powerLevels(), std::nullopt);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

TEST_F(OVAQPlayerTest, DestructionStops) {
  make(10000);
  queues_->calls.clear();
  player_.reset();
  EXPECT_THAT(queues_->calls, ElementsAre("stopImmediately", "dispose"));
  EXPECT_EQ(buffer_.use_count(), 1);
}

TEST_F(OVAQPlayerTest, AStopFromInsideTheCallbackLeavesTheQueueToTheMainThread) {
  make(10000);
  delegate_->onAdvance = [this] { player_->stop(); };
  queues_.output().playOne();
  EXPECT_EQ(player_->queue(), nullptr);
  EXPECT_EQ(queues_->queuesAlive, 1);
  drainMainQueue();
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(OVAQPlayerTest, ALastReferenceThatGoesInsideTheCallbackLeavesTheQueueToTheMainThread) {
  make(10000);
  delegate_->onAdvance = [this] { player_.reset(); };
  queues_.output().playOne();
  EXPECT_EQ(queues_->queuesAlive, 1);
  drainMainQueue();
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(OVAQPlayerTest, TheRunningStateIsTheLowByteOfTheFlag) {
  make(10000);
  queues_.output().changeRunning(1);
  EXPECT_TRUE(player_->isPlaying());
  queues_.output().changeRunning(0x100);
  EXPECT_FALSE(player_->isPlaying());
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, IsEmpty());  // not all bytes of the flag are 0
}

TEST_F(OVAQPlayerTest, ARunningStateThatCannotBeReadCountsAsNotRunning) {
  make(10000);
  queues_->fail("isRunning", -66);
  queues_.output().changeRunning(1);
  EXPECT_FALSE(player_->isPlaying());
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, SizeIs(1));
}

TEST_F(OVAQPlayerTest, OnlyTheLowSixteenBitsOfThatStatusCount) {
  make(10000);
  queues_->fail("isRunning", 0x00010000);
  queues_.output().changeRunning(1);
  EXPECT_TRUE(player_->isPlaying());
}

TEST_F(OVAQPlayerTest, APlayerThatHasGoneReportsNothingThatWasPosted) {
  make(10000);
  queues_.output().changeRunning(0);
  player_.reset();
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, IsEmpty());
}

TEST_F(OVAQPlayerTest, AStereoOutputGivesTwoLevelsTheSecondChannelFirst) {
  make(10000);
  EXPECT_THAT(player_->powerLevels(), Optional(ElementsAre(0.75F, 0.25F)));
}

struct FailingStep {
  const char* call;
  int nth;
  const char* label;
};

class OVAQPlayerSetUpFailureTest : public OVAQPlayerTest,
                                   public testing::WithParamInterface<FailingStep> {};

TEST_P(OVAQPlayerSetUpFailureTest, IsReportedUnderItsLabelAndLeavesNothingBehind) {
  const auto step = GetParam();
  queues_->fail(step.call, -66, step.nth);
  make(10000);
  EXPECT_EQ(player_, nullptr);
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{"Core Audio Error", std::string("Core Audio returned the error: ") +
                                                        step.label + " (-66)"}));
  EXPECT_EQ(queues_->queuesAlive, 0);
  EXPECT_EQ(buffer_.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    EveryStep, OVAQPlayerSetUpFailureTest,
    testing::Values(FailingStep{"newOutput", 1, "AudioQueueNewOutput failed"},
                    FailingStep{"enableLevelMetering", 1, "couldn't enable metering"},
                    FailingStep{"setRunningListener", 1, "couldn't install listener"},
                    FailingStep{"allocateBuffer", 1, "AudioQueueAllocateBuffer failed"},
                    FailingStep{"allocateBuffer", 3, "AudioQueueAllocateBuffer failed"}),
    [](const auto& tested) {
      return std::string(tested.param.call) + "_" + std::to_string(tested.param.nth);
    });

TEST_F(OVAQPlayerTest, WithoutABufferItFailsAtTheCreationOfTheQueue) {
  EXPECT_EQ(OVAQPlayer::initWithBuffer(nullptr, 0), nullptr);
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{
          "Core Audio Error", "Core Audio returned the error: AudioQueueNewOutput failed (-50)"}));
}

TEST_F(OVAQPlayerTest, FailuresOfPlayPauseAndStopAreReportedUnderTheirLabels) {
  make(10000);
  queues_->fail("start", -50);
  player_->play();
  EXPECT_TRUE(player_->isPlaying());  // set regardless
  queues_->fail("pause", -66);
  player_->pause();
  EXPECT_FALSE(player_->isPlaying());
  queues_->fail("stopImmediately", -67);
  player_->stop();
  EXPECT_EQ(player_->queue(), nullptr);
  const auto alerts = services_->alerts();
  ASSERT_THAT(alerts, SizeIs(3));
  EXPECT_EQ(alerts[0].message, "Core Audio returned the error: AudioQueueStart failed (-50)");
  EXPECT_EQ(alerts[1].message, "Core Audio returned the error: AudioQueuePause failed (-66)");
  EXPECT_EQ(alerts[2].message, "Core Audio returned the error: AudioQueueStop failed (-67)");
}

TEST_F(OVAQPlayerTest, AMissingOutputDeviceIsExplainedInTheSameAlert) {
  queues_->fail("newOutput", platform::kDeviceUnavailableStatus);
  make(10000);
  EXPECT_EQ(player_, nullptr);
  const auto alerts = services_->alerts();
  ASSERT_THAT(alerts, SizeIs(1));
  EXPECT_THAT(alerts[0].message, AllOf(StartsWith("Core Audio returned the error: "
                                                  "AudioQueueNewOutput failed ('!dev')\n\n"),
                                       HasSubstr("Everything recorded so far is kept.")));
}

TEST_F(OVAQPlayerTest, ADeviceThatFailsWhilePlayingIsToldOnceAndStopsThePlayback) {
  make(10000);
  player_->play();
  queues_.output().changeRunning(1);
  queues_->failure = platform::kDeviceLostStatus;
  queues_.output().changeRunning(0);
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_EQ(player_->failure(), platform::kDeviceLostStatus);
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, ElementsAre(player_.get()));
  queues_->fail("stopImmediately", platform::kDeviceLostStatus);
  player_->stop();
  EXPECT_EQ(player_->powerLevels(), std::nullopt);
  ASSERT_TRUE(awaitLossAlert());
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  EXPECT_THAT(services_->postedAlerts().at(0).message,
              StartsWith("Core Audio returned the error: AudioQueueStart failed ('gone')\n\n"));
}

TEST_F(OVAQPlayerTest, AnOutputThatStandsStillIsToldAndEndsThePlayback) {
  make(10000);
  player_->play();
  queues_.output().changeRunning(1);
  queues_->failure = platform::kDeviceStalledStatus;
  queues_.output().changeRunning(0);
  drainMainQueue();
  EXPECT_EQ(player_->failure(), platform::kDeviceStalledStatus);
  EXPECT_THAT(delegate_->stopped, ElementsAre(player_.get()));
  ASSERT_TRUE(awaitLossAlert());
  EXPECT_THAT(services_->postedAlerts().at(0).message, HasSubstr("stands still"));
}

TEST_F(OVAQPlayerTest, ADeviceThatCannotStartIsToldOnceAndStopsThePlayback) {
  make(10000);
  queues_->fail("start", platform::kDeviceUnavailableStatus);
  player_->play();
  EXPECT_FALSE(player_->isPlaying());
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, ElementsAre(player_.get()));
}

TEST_F(OVAQPlayerTest, ASystemWithoutAThreadToGiveIsToldInWordsAndStopsThePlayback) {
  make(10000);
  queues_->fail("start", platform::kNoThreadStatus);
  player_->play();
  EXPECT_FALSE(player_->isPlaying());
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("The system allows no further thread."));
  drainMainQueue();
  EXPECT_THAT(delegate_->stopped, ElementsAre(player_.get()));
}

TEST_F(OVAQPlayerTest, ADeviceThatFailedBeforePlayIsToldOnce) {
  make(10000);
  queues_->failure = platform::kDeviceLostStatus;
  queues_.output().changeRunning(0);
  queues_->fail("start", platform::kDeviceLostStatus);
  player_->play();
  EXPECT_FALSE(player_->isPlaying());
  ASSERT_TRUE(awaitLossAlert());
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(OVAQPlayerTest, AnOwnerThatLetsGoWhileAnAlertStandsIsSafe) {
  make(10000);
  services_->answerAlertsWith([this](const auto&) { player_.reset(); });
  queues_->fail("start", -50);
  player_->play();
  EXPECT_EQ(player_, nullptr);
  EXPECT_EQ(queues_->queuesAlive, 0);
}

}  // namespace
