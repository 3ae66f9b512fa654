#include "audio/DeviceFailure.h"

#include <set>
#include <string>

#include <gmock/gmock.h>

namespace {

using platform::kAudioStatusOk;
using platform::kDeviceLostStatus;
using platform::kDeviceUnavailableStatus;
using platform::kInvalidParameterStatus;
using platform::kInvalidQueueStateStatus;
using platform::kNoThreadStatus;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

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

TEST(DeviceFailureTest, EachDirectionHasASentenceForADeviceThatIsMissingAndOneForALostOne) {
  const std::set<std::string> sentences{
      inputFailureReason(kDeviceUnavailableStatus), inputFailureReason(kDeviceLostStatus),
      outputFailureReason(kDeviceUnavailableStatus), outputFailureReason(kDeviceLostStatus)};
  EXPECT_EQ(sentences.size(), 4U);
  for (const std::string& sentence : sentences) {
    EXPECT_THAT(sentence, EndsWith("Everything recorded so far is kept."));
  }
}

TEST(DeviceFailureTest, TheSentencesNameTheirOwnDirectionAndTheButtonToPress) {
  for (const auto status : {kDeviceUnavailableStatus, kDeviceLostStatus}) {
    EXPECT_THAT(inputFailureReason(status), HasSubstr("sound input"));
    EXPECT_THAT(inputFailureReason(status), HasSubstr("press Record"));
    EXPECT_THAT(outputFailureReason(status), HasSubstr("sound output"));
    EXPECT_THAT(outputFailureReason(status), HasSubstr("press Play"));
  }
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
