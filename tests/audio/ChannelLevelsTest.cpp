#include "audio/ChannelLevels.h"

#include <numeric>
#include <string>

#include <gmock/gmock.h>

#include "support/fakes/RecordingServices.h"
#include "support/fakes/SteppedAudioQueues.h"

namespace {

using support::QueueScript;
using support::SteppedInputQueue;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

class ChannelLevelsTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
  std::shared_ptr<QueueScript> script_ = std::make_shared<QueueScript>();
  SteppedInputQueue queue_{script_, {}, {}};
  ChannelLevels levels_;
};

TEST_F(ChannelLevelsTest, TwoAndMoreChannelsAreReportedSecondFirstOneAloneAsItself) {
  levels_.setChannelCount(1);
  EXPECT_THAT(levels_.channelNumbers(), ElementsAre(0));
  levels_.setChannelCount(2);
  EXPECT_THAT(levels_.channelNumbers(), ElementsAre(1, 0));
  levels_.setChannelCount(0);
  EXPECT_THAT(levels_.channelNumbers(), ElementsAre(0));
  levels_.setChannelCount(6);
  EXPECT_THAT(levels_.channelNumbers(), ElementsAre(1, 0));
}

TEST_F(ChannelLevelsTest, AStereoMeterGivesTheAveragePowersSecondChannelFirst) {
  levels_.setChannelCount(2);
  script_->levels = {{0.25F, 0.5F}, {0.75F, 1.0F}};
  EXPECT_THAT(levels_.powerLevels(queue_), Optional(ElementsAre(0.75F, 0.25F)));
}

TEST_F(ChannelLevelsTest, AMonoMeterGivesOneLevel) {
  levels_.setChannelCount(1);
  script_->levels = {{0.25F, 0.5F}};
  EXPECT_THAT(levels_.powerLevels(queue_), Optional(ElementsAre(0.25F)));
}

TEST_F(ChannelLevelsTest, TheMeterIsReadWithRoomForTwoChannelsWhateverTheChannelCount) {
  for (const unsigned channels : {1U, 2U, 6U}) {
    levels_.setChannelCount(channels);
    EXPECT_TRUE(levels_.powerLevels(queue_).has_value());
  }
  EXPECT_EQ(script_->count("currentLevels/2"), 3U);
}

TEST_F(ChannelLevelsTest, LevelsThatTheQueueDoesNotGiveAreSilence) {
  levels_.setChannelCount(2);
  EXPECT_THAT(levels_.powerLevels(queue_), Optional(ElementsAre(0.75F, 0.25F)));
  script_->levels.clear();
  EXPECT_THAT(levels_.powerLevels(queue_), Optional(ElementsAre(0.0F, 0.0F)));
}

TEST_F(ChannelLevelsTest, AFailedReadGivesNoneAndIsReportedUnderTheDecibelLabel) {
  levels_.setChannelCount(2);
  script_->fail("currentLevels/2", -50);
  testing::internal::CaptureStderr();
  EXPECT_EQ(levels_.powerLevels(queue_), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: kAudioQueueProperty_CurrentLevelMeterDB (-50)\n");
  EXPECT_THAT(services_->alerts(),
              ElementsAre(support::RecordedAlert{"Core Audio Error",
                                                 "Core Audio returned the error: "
                                                 "kAudioQueueProperty_CurrentLevelMeterDB (-50)"}));
}

TEST_F(ChannelLevelsTest, TheStatusOfTheReadCountsByItsLowSixteenBitsSignExtended) {
  levels_.setChannelCount(2);
  script_->fail("currentLevels/2", 0x12340000);
  EXPECT_TRUE(levels_.powerLevels(queue_).has_value());
  script_->fail("currentLevels/2", 0x1234fff0);
  testing::internal::CaptureStderr();
  EXPECT_EQ(levels_.powerLevels(queue_), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: kAudioQueueProperty_CurrentLevelMeterDB (-16)\n");
}

TEST_F(ChannelLevelsTest, AMeterThatKeepsFailingIsAlertedOnceUntilItHasWorkedAgain) {
  levels_.setChannelCount(2);
  testing::internal::CaptureStderr();
  for (int poll = 0; poll < 3; ++poll) {
    script_->fail("currentLevels/2", -50);
    EXPECT_EQ(levels_.powerLevels(queue_), std::nullopt);
  }
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_TRUE(levels_.powerLevels(queue_).has_value());
  script_->fail("currentLevels/2", -50);
  EXPECT_EQ(levels_.powerLevels(queue_), std::nullopt);
  EXPECT_EQ(services_->alerts().size(), 2U);
  testing::internal::GetCapturedStderr();
}

TEST(ChannelLevelsAverageTest, AChannelNumberOutOfRangeGivesNone) {
  const std::vector<platform::AudioQueueLevelMeterState> levels(2);
  EXPECT_EQ(averagePowers({2, 0}, levels), std::nullopt);
  EXPECT_EQ(averagePowers({1}, levels), std::nullopt);
  EXPECT_EQ(averagePowers({0, -1}, levels), std::nullopt);
  EXPECT_THAT(averagePowers({1, 0}, levels), Optional(ElementsAre(0.0F, 0.0F)));
}

TEST(ChannelLevelsAverageTest, AChannelNumberAbove127GivesNone) {
  std::vector<int> channels(128);
  std::iota(channels.begin(), channels.end(), 0);
  const std::vector<platform::AudioQueueLevelMeterState> levels(129);
  EXPECT_TRUE(averagePowers(channels, levels).has_value());
  channels.push_back(128);
  EXPECT_EQ(averagePowers(channels, levels), std::nullopt);
}

TEST(ChannelLevelsAverageTest, WithoutLevelsTheListIsEmpty) {
  EXPECT_THAT(averagePowers({1, 0}, {}), Optional(IsEmpty()));
}

}  // namespace
