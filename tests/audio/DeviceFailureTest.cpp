#include "audio/DeviceFailure.h"

#include <set>
#include <string>

#include <gmock/gmock.h>

namespace {

using platform::kAudioStatusOk;
using platform::kDeviceLostStatus;
using platform::kDeviceStalledStatus;
using platform::kDeviceUnavailableStatus;
using platform::kInvalidParameterStatus;
using platform::kInvalidQueueStateStatus;
using platform::kNoThreadStatus;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(DeviceFailureTest, SuccessARefusalAndAMissingThreadAreNotTheDevices) {
  for (const auto status :
       {kAudioStatusOk, kInvalidParameterStatus, kInvalidQueueStateStatus, kNoThreadStatus}) {
    EXPECT_FALSE(isDeviceFailure(status)) << status;
  }
}

TEST(DeviceFailureTest, EveryOtherStatusIsTheDevicesKnownOrNot) {
  for (const auto status : {kDeviceUnavailableStatus, kDeviceLostStatus, -1, 1}) {
    EXPECT_TRUE(isDeviceFailure(status)) << status;
  }
}

TEST(DeviceFailureTest, ALossIsADeviceThatWasThere) {
  EXPECT_TRUE(isDeviceLoss(kDeviceLostStatus));
  EXPECT_TRUE(isDeviceLoss(kDeviceStalledStatus));
  EXPECT_FALSE(isDeviceLoss(kDeviceUnavailableStatus));
  EXPECT_FALSE(isDeviceLoss(kAudioStatusOk));
}

TEST(DeviceFailureTest, OnlyAStallThatInterruptsNothingIsNotToldAtOnce) {
  for (const auto interrupted : {OVInterrupted::playback, OVInterrupted::recording}) {
    EXPECT_TRUE(isLossTold(interrupted, kDeviceLostStatus));
    EXPECT_TRUE(isLossTold(interrupted, kDeviceStalledStatus));
  }
  EXPECT_TRUE(isLossTold(OVInterrupted::nothing, kDeviceLostStatus));
  EXPECT_FALSE(isLossTold(OVInterrupted::nothing, kDeviceStalledStatus));
}

TEST(DeviceFailureTest, EachDirectionHasASentenceForADeviceThatCannotBeOpened) {
  for (const auto status : {kDeviceUnavailableStatus, kDeviceLostStatus, kDeviceStalledStatus}) {
    EXPECT_THAT(inputFailureReason(status), HasSubstr("No sound input could be opened."));
    EXPECT_THAT(inputFailureReason(status), HasSubstr("press Record again"));
    EXPECT_THAT(outputFailureReason(status), HasSubstr("No sound output could be opened."));
    EXPECT_THAT(outputFailureReason(status), HasSubstr("press Play again"));
  }
}

TEST(DeviceFailureTest, EachLossHasASentenceOfItsOwnThatSaysWhatHasEnded) {
  std::set<std::string> sentences;
  for (const auto status : {kDeviceLostStatus, kDeviceStalledStatus}) {
    const std::string recording = deviceLossReason(OVInterrupted::recording, status, "");
    const std::string playback = deviceLossReason(OVInterrupted::playback, status, "");
    EXPECT_THAT(recording, HasSubstr("sound input"));
    EXPECT_THAT(recording, HasSubstr("Recording has ended."));
    EXPECT_THAT(recording, HasSubstr("press Record."));
    EXPECT_THAT(playback, HasSubstr("sound output"));
    EXPECT_THAT(playback, HasSubstr("Playback has ended."));
    EXPECT_THAT(playback, HasSubstr("press Play."));
    sentences.insert({recording, playback});
  }
  const std::string idle = deviceLossReason(OVInterrupted::nothing, kDeviceLostStatus, "");
  EXPECT_THAT(idle, HasSubstr("sound input"));
  EXPECT_THAT(idle, Not(HasSubstr("ended")));
  sentences.insert(idle);
  EXPECT_EQ(sentences.size(), 5U);
  for (const std::string& sentence : sentences) {
    EXPECT_THAT(sentence, EndsWith("Everything recorded so far is kept."));
  }
}

TEST(DeviceFailureTest, TheSentencesOfALostInputNameItSafely) {
  const std::string name = "<b>100%1\nMic</b>" + std::string(300, 'x');
  for (const auto interrupted : {OVInterrupted::recording, OVInterrupted::nothing}) {
    const std::string reason = deviceLossReason(interrupted, kDeviceLostStatus, name);
    EXPECT_THAT(reason, HasSubstr("The sound input “<b>100%1 Mic</b>xxx"));
    EXPECT_THAT(reason, HasSubstr("x…” has gone"));
    EXPECT_LT(reason.size(), 400U);
  }
  EXPECT_THAT(deviceLossReason(OVInterrupted::recording, kDeviceStalledStatus, "USB"),
              HasSubstr("the sound input “USB”:"));
  EXPECT_EQ(deviceLossReason(OVInterrupted::recording, kDeviceLostStatus, "\n"),
            deviceLossReason(OVInterrupted::recording, kDeviceLostStatus, ""));
}

TEST(DeviceFailureTest, AMissingThreadReadsAlikeInBothDirections) {
  EXPECT_THAT(inputFailureReason(kNoThreadStatus), HasSubstr("no further thread"));
  EXPECT_EQ(inputFailureReason(kNoThreadStatus), outputFailureReason(kNoThreadStatus));
}

TEST(DeviceFailureTest, AStatusThatSaysNothingToAPersonHasNoSentence) {
  for (const auto status : {kAudioStatusOk, kInvalidParameterStatus, -1}) {
    EXPECT_THAT(inputFailureReason(status), IsEmpty());
    EXPECT_THAT(outputFailureReason(status), IsEmpty());
  }
}

}  // namespace
