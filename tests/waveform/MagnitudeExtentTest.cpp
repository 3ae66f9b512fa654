#include "waveform/MagnitudeExtent.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "support/TestAudio.h"

namespace {

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(MagnitudeExtentTest, NothingLookedAtLeavesTheExtentInsideOut) {
  const MagnitudeExtent extent = leftMagnitudeExtent(nullptr, 0);
  EXPECT_EQ(extent.smallest, 1.0F);
  EXPECT_EQ(extent.largest, 0.0F);
}

TEST(MagnitudeExtentTest, LooksAtEvenIndexesBelowTheLimitOnly) {
  // Of four frames: the left samples of the first two. Right samples and later frames are louder.
  const std::vector<float> samples = {0.5F, 0.9F, -0.25F, 0.0F, 0.95F, 0.9F, 0.01F, 0.9F};
  const MagnitudeExtent extent = leftMagnitudeExtent(samples.data(), 4);
  EXPECT_EQ(extent.smallest, 0.25F);
  EXPECT_EQ(extent.largest, 0.5F);
}

TEST(MagnitudeExtentTest, AnOddLimitTakesInItsLastIndex) {
  const std::vector<float> samples = {0.5F, 0.0F, 0.75F, 0.0F};
  EXPECT_EQ(leftMagnitudeExtent(samples.data(), 1).largest, 0.5F);
  EXPECT_EQ(leftMagnitudeExtent(samples.data(), 2).largest, 0.5F);
  EXPECT_EQ(leftMagnitudeExtent(samples.data(), 3).largest, 0.75F);
}

TEST(MagnitudeExtentTest, SmallestNeverExceedsFullScale) {
  const std::vector<float> samples = {-3.0F, 0.0F, 2.0F, 0.0F};
  const MagnitudeExtent extent = leftMagnitudeExtent(samples.data(), 4);
  EXPECT_EQ(extent.smallest, 1.0F);
  EXPECT_EQ(extent.largest, 3.0F);
  EXPECT_EQ(extent.spread(), 2.0F);
}

TEST(MagnitudeExtentTest, SamplesThatAreNotNumbersCountAsSilence) {
  std::vector<float> samples(32, 0.5F);
  for (const std::size_t place : {0U, 6U, 16U, 30U}) {
    std::vector<float> damaged = samples;
    damaged[place] = place % 4 == 0 ? kNoNumber : -kNoNumber;
    const MagnitudeExtent extent = leftMagnitudeExtent(damaged.data(), 32);
    EXPECT_EQ(extent.smallest, 0.0F) << place;
    EXPECT_EQ(extent.largest, 0.5F) << place;
  }
}

TEST(MagnitudeExtentTest, InfinityIsANumber) {
  std::vector<float> samples(32, 0.5F);
  samples[20] = -kInfinity;
  EXPECT_EQ(leftMagnitudeExtent(samples.data(), 32).largest, kInfinity);
}

TEST(MagnitudeExtentTest, EqualsOneSampleAtATimeForEveryLimit) {
  std::mt19937_64 random(1);
  for (std::uint64_t limit = 0; limit < 200; ++limit) {
    for (int repeat = 0; repeat < 20; ++repeat) {
      // No longer than it may look: the address checker minds every sample beyond.
      const std::vector<float> samples = support::roughNoise(limit, random);
      float smallest = 1.0F;
      float largest = 0.0F;
      for (std::uint64_t i = 0; i < limit; i += 2) {
        const float value = std::isnan(samples[i]) ? 0.0F : std::fabs(samples[i]);
        smallest = value < smallest ? value : smallest;
        largest = value > largest ? value : largest;
      }
      const MagnitudeExtent extent = leftMagnitudeExtent(samples.data(), limit);
      ASSERT_EQ(extent.smallest, smallest) << limit;
      ASSERT_EQ(extent.largest, largest) << limit;
    }
  }
}

}  // namespace
