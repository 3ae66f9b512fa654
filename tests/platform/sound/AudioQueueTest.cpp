#include "platform/sound/AudioQueue.h"

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

TEST(AudioQueueTest, WithNoneInstalledEveryQueueIsRefusedAndThatIsNotReportedTwice) {
  EXPECT_EQ(audioQueues()->newInput(kWorkingFormat, {}, {}).error(), kDeviceUnavailableStatus);
  EXPECT_EQ(audioQueues()->newOutput(kWorkingFormat, {}).error(), kDeviceUnavailableStatus);
  static_cast<void>(audioQueues()->claimInputFailureAlert());  // true only once per process
  EXPECT_FALSE(audioQueues()->claimInputFailureAlert());
}

TEST(AudioQueueTest, CompletingAFormatFillsWhatFollowsFromTheRest) {
  AudioStreamBasicDescription format;
  format.mSampleRate = 44100;
  format.mFormatID = kLinearPcmFormat;
  format.mFormatFlags = kFloatFormatFlag | kPackedFormatFlag;
  format.mChannelsPerFrame = 2;
  EXPECT_EQ(completeWorkingFormat(format), kAudioStatusOk);
  EXPECT_EQ(format, kWorkingFormat);
  EXPECT_EQ(completeWorkingFormat(format), kAudioStatusOk);
}

TEST(AudioQueueTest, OtherFormatsAreRefusedAndLeftAsTheyAre) {
  AudioStreamBasicDescription zero;
  EXPECT_EQ(completeWorkingFormat(zero), kInvalidParameterStatus);
  EXPECT_EQ(zero, AudioStreamBasicDescription{});
  auto mono = kWorkingFormat;
  mono.mChannelsPerFrame = 1;
  EXPECT_EQ(completeWorkingFormat(mono), kInvalidParameterStatus);
  auto fast = kWorkingFormat;
  fast.mSampleRate = 48000;
  EXPECT_EQ(completeWorkingFormat(fast), kInvalidParameterStatus);
  auto integers = kWorkingFormat;
  integers.mFormatFlags = kPackedFormatFlag;
  EXPECT_EQ(completeWorkingFormat(integers), kInvalidParameterStatus);
}

}  // namespace
}  // namespace platform::test
