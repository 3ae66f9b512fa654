#include "platform/sound/LevelMeter.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(LevelMeterTest, AverageIsTheRootMeanSquareOfEachChannelAndPeakItsLargestMagnitude) {
  LevelMeter meter;
  meter.enable(true);
  std::vector<float> samples;
  constexpr int kFrames = 4410;  // ten whole periods of 100 Hz
  for (int i = 0; i < kFrames; ++i) {
    samples.push_back(0.8F * static_cast<float>(std::sin(2 * M_PI * 100 * i / 44100.0)));
    samples.push_back(i % 2 == 0 ? -0.25F : 0.25F);
  }
  meter.measure(samples.data(), kFrames);
  AudioQueueLevelMeterState levels[2];
  ASSERT_EQ(meter.read(levels, 2), 2U);
  EXPECT_NEAR(levels[0].mAveragePower, 0.8 / std::sqrt(2.0), 1e-5);
  EXPECT_NEAR(levels[0].mPeakPower, 0.8, 1e-3);
  EXPECT_FLOAT_EQ(levels[1].mAveragePower, 0.25F);
  EXPECT_FLOAT_EQ(levels[1].mPeakPower, 0.25F);
}

TEST(LevelMeterTest, OnlyTheLastBufferCounts) {
  LevelMeter meter;
  meter.enable(true);
  const float loud[2] = {1, 1};
  const float quiet[2] = {0.1F, 0};
  meter.measure(loud, 1);
  meter.measure(quiet, 1);
  AudioQueueLevelMeterState levels[2];
  meter.read(levels, 2);
  EXPECT_FLOAT_EQ(levels[0].mAveragePower, 0.1F);
  EXPECT_EQ(levels[1].mPeakPower, 0);
}

TEST(LevelMeterTest, SamplesThatAreNotFiniteCountAsSilence) {
  LevelMeter meter;
  meter.enable(true);
  const float samples[4] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), 1, 0.5F};
  meter.measure(samples, 2);
  AudioQueueLevelMeterState levels[2];
  meter.read(levels, 2);
  EXPECT_FLOAT_EQ(levels[0].mAveragePower, std::sqrt(0.5F));
  EXPECT_FLOAT_EQ(levels[1].mPeakPower, 0.5F);
}

TEST(LevelMeterTest, SilentWhileSwitchedOffAndForAnEmptyBuffer) {
  LevelMeter meter;
  const float loud[2] = {1, 1};
  AudioQueueLevelMeterState levels[2];
  meter.measure(loud, 1);
  meter.read(levels, 2);
  EXPECT_EQ(levels[0].mAveragePower, 0);
  meter.enable(true);
  meter.measure(loud, 1);
  meter.measure(loud, 0);
  meter.read(levels, 2);
  EXPECT_EQ(levels[0].mAveragePower, 1);
  meter.enable(false);
  meter.read(levels, 2);
  EXPECT_EQ(levels[0].mAveragePower, 0);
}

TEST(LevelMeterTest, ReadsNoMoreChannelsThanThereIsRoomFor) {
  LevelMeter meter;
  AudioQueueLevelMeterState levels[3] = {{9, 9}, {9, 9}, {9, 9}};
  EXPECT_EQ(meter.read(levels, 0), 0U);
  EXPECT_EQ(meter.read(levels, 1), 1U);
  EXPECT_EQ(levels[1].mAveragePower, 9);
  EXPECT_EQ(meter.read(levels, 3), 2U);
  EXPECT_EQ(levels[2].mAveragePower, 9);
}

}  // namespace
}  // namespace platform::test
