#include "audio/OVAQRecorder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "support/MainLoop.h"
#include "support/TestAudio.h"
#include "support/fakes/MemoryTestBuffer.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

// The recorder over stepped queues: the order of calls, every failing call, and the effect of one
// callback. OVAQRecorderThreadsTest.cpp runs it over real queues.
namespace {

using platform::AudioStatus;
using support::ramp;
using support::RecordedAlert;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;
using testing::SizeIs;
using testing::StartsWith;
using Transfer = MemoryTestBuffer::Transfer;

constexpr std::uint64_t kFrameBytes = MemoryTestBuffer::kFrameBytes;

constexpr std::uint64_t kBufferFrames = 4096;
constexpr std::uint64_t kBufferBytes = kBufferFrames * kFrameBytes;

class OVAQRecorderTest : public testing::Test {
 protected:
  OVAQRecorderTest() { testing::internal::CaptureStderr(); }
  ~OVAQRecorderTest() override {
    if (recorder_) {
      recorder_->prepareForDestruction();
    }
    recorder_.reset();
    testing::internal::GetCapturedStderr();
  }

  void make() { recorder_ = OVAQRecorder::initWithBuffer(buffer_); }

  bool awaitLossAlert() {
    return runMainLoopUntil([this] { return !services_->postedAlerts().empty(); });
  }

  /// Captures one queue buffer of 4096 ramp frames and delivers it.
  bool capture() {
    const auto first = queues_->capturedFrames;
    queues_->capturedFrames += kBufferFrames;
    return queues_.input().deliver(ramp(first, kBufferFrames), queues_->capturedFrames);
  }

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  std::shared_ptr<MemoryTestBuffer> buffer_ = std::make_shared<MemoryTestBuffer>();
  std::shared_ptr<OVAQRecorder> recorder_;
};

TEST_F(OVAQRecorderTest, SetUpMakesItsCallsInOrder) {
  make();
  ASSERT_NE(recorder_, nullptr);
  EXPECT_THAT(queues_->calls,
              ElementsAre("completeFormat", "newInput", "allocateBuffer", "enqueueBuffer",
                          "allocateBuffer", "enqueueBuffer", "allocateBuffer", "enqueueBuffer",
                          "streamDescription", "enableLevelMetering", "start"));
  EXPECT_TRUE(recorder_->isRunning());
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_EQ(recorder_->writingPosition(), 0U);
  EXPECT_EQ(recorder_->buffer(), buffer_);
  EXPECT_EQ(recorder_->queue(), &queues_.input());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQRecorderTest, ItsThreeQueueBuffersHold4096FramesEach) {
  make();
  EXPECT_EQ(queues_.input().allocated(), 3U);
  for (const auto* enqueued : queues_.input().enqueued) {
    EXPECT_EQ(enqueued->mAudioDataBytesCapacity, 32768U);
  }
}

TEST_F(OVAQRecorderTest, WithoutABufferItFailsAtTheCreationOfTheQueue) {
  recorder_ = OVAQRecorder::initWithBuffer(nullptr);
  EXPECT_EQ(recorder_, nullptr);
  EXPECT_THAT(services_->alerts(),
              ElementsAre(RecordedAlert{
                  "Core Audio Error",
                  "Core Audio returned the error: lul AudioQueueNewInput failed (-50)"}));
}

struct FailingStep {
  const char* call;
  int nth;
  const char* label;
};

class OVAQRecorderSetUpFailureTest : public OVAQRecorderTest,
                                     public testing::WithParamInterface<FailingStep> {};

TEST_P(OVAQRecorderSetUpFailureTest, IsReportedUnderItsLabelAndLeavesNothingBehind) {
  const auto step = GetParam();
  queues_->fail(step.call, -66, step.nth);
  make();
  EXPECT_EQ(recorder_, nullptr);
  EXPECT_THAT(
      services_->alerts(),
      ElementsAre(RecordedAlert{"Core Audio Error", std::string("Core Audio returned the error: ") +
                                                        step.label + " (-66)"}));
  EXPECT_EQ(queues_->calls.back() == "dispose",
            std::string(step.call) != "completeFormat" && std::string(step.call) != "newInput");
  EXPECT_EQ(queues_->queuesAlive, 0);
  EXPECT_EQ(buffer_.use_count(), 1);  // no recorder holds it through its reference to itself
}

INSTANTIATE_TEST_SUITE_P(
    EveryStep, OVAQRecorderSetUpFailureTest,
    testing::Values(FailingStep{"completeFormat", 1, "AudioFormatGetProperty failed"},
                    FailingStep{"newInput", 1, "lul AudioQueueNewInput failed"},
                    FailingStep{"allocateBuffer", 1, "AudioQueueAllocateBuffer failed"},
                    FailingStep{"enqueueBuffer", 1, "AudioQueueEnqueueBuffer failed"},
                    FailingStep{"allocateBuffer", 3, "AudioQueueAllocateBuffer failed"},
                    FailingStep{"enqueueBuffer", 3, "AudioQueueEnqueueBuffer failed"},
                    FailingStep{"streamDescription", 1, "couldn't get stream description"},
                    FailingStep{"enableLevelMetering", 1, "couldn't enable metering"},
                    FailingStep{"start", 1, "AudioQueueStart failed"}),
    [](const auto& tested) {
      return std::string(tested.param.call) + "_" + std::to_string(tested.param.nth);
    });

TEST_F(OVAQRecorderTest, MonitoringWritesNothingAndKeepsTheBuffersTravelling) {
  make();
  for (int i = 0; i < 7; ++i) {
    EXPECT_TRUE(capture());
  }
  EXPECT_THAT(buffer_->writes(), IsEmpty());
  EXPECT_EQ(recorder_->writingPosition(), 0U);
  EXPECT_THAT(queues_.input().enqueued, SizeIs(3));
}

TEST_F(OVAQRecorderTest, RecordingWritesEachBufferAtTheWritingPositionAndAdvancesIt) {
  make();
  recorder_->setWritingPosition(800);
  recorder_->record();
  EXPECT_TRUE(recorder_->isRecording());
  capture();
  capture();
  EXPECT_THAT(buffer_->writes(),
              ElementsAre(Transfer{800, kBufferBytes}, Transfer{800 + kBufferBytes, kBufferBytes}));
  EXPECT_EQ(recorder_->writingPosition(), 800U + 2 * kBufferBytes);
  EXPECT_THAT(queues_.input().enqueued, SizeIs(3));
}

TEST_F(OVAQRecorderTest, AShortCapturedBufferAdvancesByItsOwnSize) {
  make();
  recorder_->record();
  EXPECT_TRUE(queues_.input().deliver(ramp(0, 100), 100));
  EXPECT_EQ(recorder_->writingPosition(), 100U * kFrameBytes);
}

TEST_F(OVAQRecorderTest, WithoutABufferCapturedDataIsDroppedAndTheQueueKeepsRunning) {
  make();
  recorder_->record();
  recorder_->setBuffer(nullptr);
  capture();
  EXPECT_EQ(recorder_->writingPosition(), 0U);
  EXPECT_THAT(queues_.input().enqueued, SizeIs(3));
}

TEST_F(OVAQRecorderTest, PauseThenRecordGoesOnAtTheWritingPositionWithoutAGap) {
  make();
  recorder_->record();
  capture();
  recorder_->pause();
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_TRUE(recorder_->isRunning());
  capture();
  recorder_->record();
  capture();
  EXPECT_THAT(buffer_->writes(),
              ElementsAre(Transfer{0, kBufferBytes}, Transfer{kBufferBytes, kBufferBytes}));
  const auto samples = buffer_->samples();
  EXPECT_EQ(samples.at(2 * (kBufferFrames - 1)), kBufferFrames - 1);
  EXPECT_EQ(samples.at(2 * kBufferFrames), 2 * kBufferFrames);
}

TEST_F(OVAQRecorderTest, WhatWasCapturedBeforeRecordIsNotWrittenThoughDeliveredAfterIt) {
  make();
  queues_->capturedFrames = 2 * kBufferFrames;  // already in the ring when record() is called
  recorder_->record();
  queues_.input().deliver(ramp(0, kBufferFrames), kBufferFrames);
  queues_.input().deliver(ramp(kBufferFrames, kBufferFrames), 2 * kBufferFrames);
  EXPECT_THAT(buffer_->writes(), IsEmpty());
  capture();
  EXPECT_THAT(buffer_->writes(), SizeIs(1));
  EXPECT_EQ(buffer_->samples().at(0), 2 * kBufferFrames);
}

TEST_F(OVAQRecorderTest, PauseStillWritesWhatWasCapturedBeforeItAndNothingLater) {
  make();
  recorder_->record();
  queues_->capturedFrames = 2 * kBufferFrames;
  queues_->whileWaiting = [this](std::uint64_t frame) {
    EXPECT_EQ(frame, 2 * kBufferFrames);
    EXPECT_TRUE(recorder_->isRecording());
    for (std::uint64_t end = kBufferFrames; end <= 3 * kBufferFrames; end += kBufferFrames) {
      queues_.input().deliver(ramp(end - kBufferFrames, kBufferFrames), end);
    }
  };
  recorder_->pause();
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_EQ(buffer_->samples(), ramp(0, 2 * kBufferFrames));
  EXPECT_EQ(recorder_->writingPosition(), 2U * kBufferBytes);
}

TEST_F(OVAQRecorderTest, PauseWithoutRecordingDoesNothing) {
  make();
  recorder_->pause();
  EXPECT_EQ(queues_->count("waitUntilDelivered/0"), 0U);
  EXPECT_FALSE(recorder_->isRecording());
}

TEST_F(OVAQRecorderTest, ItsQueueIsPreparedWhenRecordingBegins) {
  make();
  EXPECT_THAT(queues_->calls, Not(Contains("prepareToRecord")));
  recorder_->record();
  EXPECT_THAT(queues_->calls, Contains("prepareToRecord"));
}

TEST_F(OVAQRecorderTest, RecordWhileRecordingDropsNothing) {
  make();
  recorder_->record();
  queues_->capturedFrames = kBufferFrames;
  recorder_->record();
  queues_.input().deliver(ramp(0, kBufferFrames), kBufferFrames);
  EXPECT_THAT(buffer_->writes(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, APositionThatIsSetDuringAWriteStays) {
  make();
  recorder_->record();
  buffer_->beforeWrite = [this](const auto&) { recorder_->setWritingPosition(80); };
  capture();
  EXPECT_EQ(recorder_->writingPosition(), 80U);
  buffer_->beforeWrite = nullptr;
  capture();
  EXPECT_THAT(buffer_->writes(),
              ElementsAre(Transfer{0, kBufferBytes}, Transfer{80, kBufferBytes}));
  EXPECT_EQ(recorder_->writingPosition(), 80U + kBufferBytes);
}

TEST_F(OVAQRecorderTest, StopWritingEndsTheWritesThoughItStillRecords) {
  make();
  recorder_->record();
  buffer_->beforeWrite = [this](const auto&) { recorder_->stopWriting(); };
  capture();
  capture();
  EXPECT_TRUE(recorder_->isRecording());
  EXPECT_THAT(buffer_->writes(), ElementsAre(Transfer{0, kBufferBytes}));
  EXPECT_EQ(recorder_->writingPosition(), kBufferBytes);
  EXPECT_THAT(queues_.input().enqueued, SizeIs(3));
}

TEST_F(OVAQRecorderTest, ANewRecordWritesAgainAfterStopWriting) {
  make();
  recorder_->record();
  recorder_->stopWriting();
  capture();
  recorder_->pause();
  recorder_->record();
  capture();
  EXPECT_THAT(buffer_->writes(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, AfterPrepareForDestructionABufferIsNeitherWrittenNorEnqueuedAgain) {
  make();
  recorder_->record();
  recorder_->prepareForDestruction();
  EXPECT_FALSE(recorder_->isRunning());
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_EQ(queues_->calls.back(), "stopImmediately");
  capture();
  EXPECT_THAT(buffer_->writes(), IsEmpty());
  EXPECT_THAT(queues_.input().enqueued, SizeIs(2));
}

TEST_F(OVAQRecorderTest, ABufferDeliveredWhenTheRecorderStopsDuringItsWriteIsNotEnqueuedAgain) {
  make();
  recorder_->record();
  buffer_->beforeWrite = [this](const auto&) { recorder_->prepareForDestruction(); };
  capture();
  EXPECT_THAT(buffer_->writes(), SizeIs(1));
  EXPECT_THAT(queues_.input().enqueued, SizeIs(2));
}

TEST_F(OVAQRecorderTest, FailuresToEnqueueAgainAreNotLookedAt) {
  make();
  queues_->fail("enqueueBuffer", -66);
  capture();
  EXPECT_THAT(queues_.input().enqueued, SizeIs(2));
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQRecorderTest, ItKeepsItselfUntilPrepareForDestruction) {
  make();
  const std::weak_ptr<OVAQRecorder> watched = recorder_;
  recorder_.reset();
  EXPECT_FALSE(watched.expired());
  EXPECT_TRUE(capture());
  watched.lock()->prepareForDestruction();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(queues_->calls.back(), "dispose");
  EXPECT_EQ(queues_->queuesAlive, 0);
}

TEST_F(OVAQRecorderTest, SelfreleaseDropsItsReferenceToItself) {
  make();
  EXPECT_EQ(recorder_.use_count(), 2);
  recorder_->selfrelease();
  EXPECT_EQ(recorder_.use_count(), 1);
}

TEST_F(OVAQRecorderTest, DestructionStopsAndDisposesOfTheQueue) {
  make();
  recorder_->selfrelease();
  queues_->calls.clear();
  recorder_.reset();
  EXPECT_THAT(queues_->calls, ElementsAre("stopImmediately", "dispose"));
}

TEST_F(OVAQRecorderTest, ALastReferenceThatGoesInsideTheCallbackTakesTheQueueOnTheMainThreadLater) {
  make();
  recorder_->record();
  buffer_->beforeWrite = [this](const auto&) {
    recorder_->prepareForDestruction();
    recorder_.reset();
  };
  capture();
  EXPECT_EQ(queues_->queuesAlive, 1);
  EXPECT_TRUE(runMainLoopUntil([this] { return queues_->queuesAlive == 0; }));
}

TEST_F(OVAQRecorderTest, RecordWithoutAQueueShowsItsAlertAndDoesNotRecord) {
  make();
  recorder_->destroyAudioQueue();
  EXPECT_EQ(recorder_->queue(), nullptr);
  recorder_->record();
  EXPECT_FALSE(recorder_->isRecording());
  EXPECT_THAT(services_->alerts(),
              ElementsAre(RecordedAlert{"no queue on record!",
                                        "this shouldn't happen. contact support@orvo.example!"}));
}

TEST_F(OVAQRecorderTest, AStereoInputGivesTwoLevelsTheSecondChannelFirst) {
  make();
  EXPECT_THAT(recorder_->powerLevels(), Optional(ElementsAre(0.75F, 0.25F)));
}

TEST_F(OVAQRecorderTest, AMonoInputGivesOneLevel) {
  queues_->description.mChannelsPerFrame = 1;
  make();
  EXPECT_THAT(recorder_->powerLevels(), Optional(ElementsAre(0.25F)));
}

TEST_F(OVAQRecorderTest, WithoutAQueueThereAreNoLevelsAndNoAlert) {
  make();
  recorder_->destroyAudioQueue();
  EXPECT_EQ(recorder_->powerLevels(), std::nullopt);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQRecorderTest, AMissingInputDeviceIsExplainedInTheSameAlert) {
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  make();
  EXPECT_EQ(recorder_, nullptr);
  const auto alerts = services_->alerts();
  ASSERT_THAT(alerts, SizeIs(1));
  EXPECT_EQ(alerts[0].title, "Core Audio Error");
  EXPECT_THAT(alerts[0].message, AllOf(StartsWith("Core Audio returned the error: "
                                                  "lul AudioQueueNewInput failed ('!dev')\n\n"),
                                       HasSubstr("Everything recorded so far is kept.")));
}

TEST_F(OVAQRecorderTest, OneFailureOfTheInputIsAlertedOnceHoweverManyRecordersAreMade) {
  for (int i = 0; i < 3; ++i) {
    queues_->fail(i == 1 ? "start" : "newInput", platform::kDeviceUnavailableStatus);
    make();
    EXPECT_EQ(recorder_, nullptr);
  }
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  queues_->inputFailureReportPending = true;  // the device's state has changed
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  make();
  EXPECT_THAT(services_->alerts(), SizeIs(2));
}

TEST_F(OVAQRecorderTest, AMissingInputIsHeldBackUntilSomebodyWantsToRecord) {
  for (const char* step : {"newInput", "start"}) {
    queues_->fail(step, platform::kDeviceUnavailableStatus);
    EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_, OVAQRecorder::DeviceAlerts::heldBack), nullptr);
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  make();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, AWrongCallIsNotHeldBack) {
  queues_->fail("newInput", platform::kInvalidParameterStatus);
  EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_, OVAQRecorder::DeviceAlerts::heldBack), nullptr);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, ALateAnswerThatThereIsNoInputIsToldOnlyToARecording) {
  make();
  queues_.input().failLate(platform::kDeviceUnavailableStatus);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_TRUE(queues_->inputFailureReportPending);
  recorder_->prepareForDestruction();
  make();
  recorder_->record();
  queues_.input().failLate(platform::kDeviceUnavailableStatus);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_FALSE(queues_->inputFailureReportPending);
}

TEST_F(OVAQRecorderTest, EveryFailureOfTheInputIsPrinted) {
  testing::internal::GetCapturedStderr();
  testing::internal::CaptureStderr();
  queues_->inputFailureReportPending = false;
  queues_->fail("start", platform::kDeviceUnavailableStatus);
  make();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: AudioQueueStart failed ('!dev')\n");
  testing::internal::CaptureStderr();
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQRecorderTest, AWrongCallIsAlertedAlthoughTheDevicesFailureWasToldAlready) {
  queues_->inputFailureReportPending = false;
  queues_->fail("start", platform::kInvalidQueueStateStatus);
  make();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, ASystemWithoutAThreadToGiveIsToldInWordsWhateverTheDevicesState) {
  queues_->inputFailureReportPending = false;
  queues_->fail("start", platform::kNoThreadStatus);
  make();
  EXPECT_EQ(recorder_, nullptr);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message,
              AllOf(StartsWith("Core Audio returned the error: AudioQueueStart failed ('!thr')"),
                    HasSubstr("The system allows no further thread.")));
}

TEST_F(OVAQRecorderTest, AnInputThatIsLostIsToldOnceAndTheOwnerLearnsOfIt) {
  make();
  std::vector<AudioStatus> told;
  recorder_->setFailureHandler([&](AudioStatus status) { told.push_back(status); });
  recorder_->record();
  capture();
  queues_.input().failLate(platform::kDeviceLostStatus);
  EXPECT_THAT(told, ElementsAre(platform::kDeviceLostStatus));
  EXPECT_EQ(recorder_->failure(), platform::kDeviceLostStatus);
  EXPECT_TRUE(recorder_->isRecording());  // until the owner pauses
  recorder_->pause();
  EXPECT_EQ(buffer_->samples(), ramp(0, kBufferFrames));
  ASSERT_TRUE(awaitLossAlert());
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
  EXPECT_THAT(
      services_->postedAlerts().at(0).message,
      AllOf(StartsWith("Core Audio returned the error: AudioQueueStart failed ('gone')\n\n"),
            HasSubstr("Recording has ended.")));
}

TEST_F(OVAQRecorderTest, AFailureBeforeTheHandlerWasSetIsToldWhenItIs) {
  make();
  queues_.input().failLate(platform::kDeviceLostStatus);
  std::vector<AudioStatus> told;
  recorder_->setFailureHandler([&](AudioStatus status) { told.push_back(status); });
  EXPECT_THAT(told, ElementsAre(platform::kDeviceLostStatus));
  recorder_->setFailureHandler(nullptr);
}

TEST_F(OVAQRecorderTest, TheMeterOfALostInputIsNotAskedAndNotReportedAgain) {
  make();
  queues_.input().failLate(platform::kDeviceLostStatus);
  EXPECT_EQ(recorder_->powerLevels(), std::nullopt);
  EXPECT_EQ(queues_->count("currentLevels/2"), 0U);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OVAQRecorderTest, AnIdleInputThatStalledIsToldOfWhenRecordIsPressedAndOnce) {
  make();
  queues_.input().failLate(platform::kDeviceStalledStatus);
  recorder_->prepareForDestruction();
  recorder_ = nullptr;
  queues_->fail("newInput", platform::kDeviceStalledStatus);
  EXPECT_EQ(OVAQRecorder::initWithBuffer(buffer_, OVAQRecorder::DeviceAlerts::heldBack), nullptr);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  for (int i = 0; i < 3; ++i) {
    queues_->fail("newInput", platform::kDeviceStalledStatus);
    make();
    EXPECT_EQ(recorder_, nullptr);
  }
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("No sound input could be opened."));
  EXPECT_THAT(services_->alerts()[0].message, Not(HasSubstr("ended")));
}

TEST_F(OVAQRecorderTest, AStallOfARecordingIsToldOnceAndTheNextRecorderDoesNotAlertAgain) {
  make();
  recorder_->record();
  queues_.input().failLate(platform::kDeviceStalledStatus);
  recorder_->prepareForDestruction();
  queues_->fail("newInput", platform::kDeviceStalledStatus);
  make();
  EXPECT_THAT(services_->alerts(), IsEmpty());
  ASSERT_TRUE(awaitLossAlert());
  EXPECT_THAT(services_->postedAlerts()[0].message, HasSubstr("Nothing more came"));
  EXPECT_THAT(services_->postedAlerts(), SizeIs(1));
}

TEST_F(OVAQRecorderTest, AfterALostInputTheNextRecorderDoesNotAlertAgain) {
  make();
  recorder_->record();
  queues_.input().failLate(platform::kDeviceLostStatus);
  recorder_->prepareForDestruction();
  queues_->fail("newInput", platform::kDeviceLostStatus);
  make();
  EXPECT_EQ(recorder_, nullptr);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_TRUE(awaitLossAlert());
}

// Silence and losses ------------------------------------------------------------------------------

TEST_F(OVAQRecorderTest, DigitalSilenceIsCountedWhileRecordingUntilASampleIsNotZero) {
  make();
  const std::vector<float> zeros(2 * kBufferFrames, 0);
  std::vector<float> almost = zeros;
  almost.back() = 1e-9F;
  const auto deliver = [&](const std::vector<float>& samples) {
    queues_->capturedFrames += kBufferFrames;
    queues_.input().deliver(samples, queues_->capturedFrames);
  };
  deliver(zeros);
  EXPECT_EQ(recorder_->silentFrames(), 0U);
  recorder_->record();
  deliver(zeros);
  deliver(zeros);
  EXPECT_EQ(recorder_->silentFrames(), 2 * kBufferFrames);
  queues_->capturedFrames += 100;
  queues_.input().deliverSilence(100, queues_->capturedFrames);
  EXPECT_EQ(recorder_->silentFrames(), 2 * kBufferFrames) << "lost frames are no silence";
  deliver(almost);
  EXPECT_EQ(recorder_->silentFrames(), 0U);
  deliver(zeros);
  recorder_->pause();
  EXPECT_EQ(recorder_->silentFrames(), 0U);
  recorder_->record();
  EXPECT_EQ(recorder_->silentFrames(), 0U);
}

TEST_F(OVAQRecorderTest, LostFramesAreWrittenAsSilenceAndMarkedAtTheirPlace) {
  make();
  recorder_->setWritingPosition(1000 * kFrameBytes);
  recorder_->record();
  capture();
  queues_->capturedFrames += 300;
  queues_->lostFrames = 300;
  queues_.input().deliverSilence(300, queues_->capturedFrames);
  capture();
  recorder_->pause();
  ASSERT_THAT(recorder_->losses(), SizeIs(1));
  EXPECT_EQ(recorder_->losses()[0].atFrame, 1000 + kBufferFrames);
  EXPECT_EQ(recorder_->losses()[0].frames, 300U);
  EXPECT_EQ(recorder_->writingPosition(), (1000 + 2 * kBufferFrames + 300) * kFrameBytes);
}

TEST_F(OVAQRecorderTest, ALossThatIsDeliveredWhileNotRecordingIsNone) {
  make();
  queues_->capturedFrames += 300;
  queues_->lostFrames = 300;
  queues_.input().deliverSilence(300, queues_->capturedFrames);
  recorder_->record();
  capture();
  recorder_->pause();
  EXPECT_THAT(recorder_->losses(), IsEmpty());
}

TEST_F(OVAQRecorderTest, WhatWasLostWhenPauseIsCalledIsToldAsLostAtTheEnd) {
  make();
  recorder_->record();
  capture();
  queues_->lostFrames = 5000;  // the ring was full
  recorder_->pause();
  ASSERT_THAT(recorder_->losses(), SizeIs(1));
  EXPECT_EQ(recorder_->losses()[0].atFrame, kBufferFrames);
  EXPECT_EQ(recorder_->losses()[0].frames, 5000U);
}

}  // namespace
