#include "platform/ffmpeg/FiniteSamples.h"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

namespace platform {
namespace {

using testing::ElementsAre;

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kMax = std::numeric_limits<float>::max();

TEST(FiniteSamplesTest, FiniteSamplesStayToTheBit) {
  std::vector<float> samples{0.0F, -0.0F, 1.0F, -1.0F, kMax, -kMax, 1e-45F, 0.1F};
  const std::vector<float> before = samples;
  EXPECT_FALSE(makeFinite(samples.data(), samples.size()));
  EXPECT_EQ(samples, before);
  EXPECT_TRUE(std::signbit(samples[1]));
}

TEST(FiniteSamplesTest, TheOneThatIsNotBecomesZeroWhereverItStands) {
  for (const float bad : {kNoNumber, -kNoNumber, kInfinity, -kInfinity}) {
    for (std::size_t place = 0; place < 200; ++place) {
      std::vector<float> samples(200, 0.5F);
      samples[place] = bad;
      EXPECT_TRUE(makeFinite(samples.data(), samples.size()));
      std::vector<float> expected(200, 0.5F);
      expected[place] = 0.0F;
      ASSERT_EQ(samples, expected) << place;
    }
  }
}

TEST(FiniteSamplesTest, ADoubleThatNoFloatHoldsBecomesZero) {
  std::vector<double> samples{1e39, -1e39, 3e38, 0.1, static_cast<double>(kNoNumber)};
  EXPECT_TRUE(makeFinite(samples.data(), samples.size()));
  EXPECT_THAT(samples, ElementsAre(0.0, 0.0, 3e38, 0.1, 0.0));
}

TEST(FiniteSamplesTest, NothingIsDoneToNothing) {
  EXPECT_FALSE(makeFinite(static_cast<float*>(nullptr), 0));
  copyFiniteLimited(nullptr, 0, nullptr);
  splitFiniteLimited(nullptr, 0, nullptr, nullptr);
}

TEST(FiniteSamplesTest, ACopyIsLimitedToFullScale) {
  std::vector<float> samples(1000, 0.25F);
  samples[3] = kNoNumber;
  samples[70] = kInfinity;
  samples[500] = 1e30F;
  samples[501] = -1.5F;
  samples[999] = -kInfinity;
  std::vector<float> expected(1000, 0.25F);
  expected[3] = expected[70] = expected[999] = 0.0F;
  expected[500] = 1.0F;
  expected[501] = -1.0F;
  std::vector<float> copy(1000, 9.0F);
  copyFiniteLimited(samples.data(), samples.size(), copy.data());
  EXPECT_EQ(copy, expected);
}

TEST(FiniteSamplesTest, ChannelsAreSplit) {
  const std::array<float, 6> frames{0.1F, 0.2F, kNoNumber, 2.0F, -0.3F, -kInfinity};
  std::array<float, 3> left{};
  std::array<float, 3> right{};
  splitFiniteLimited(frames.data(), 3, left.data(), right.data());
  EXPECT_THAT(left, ElementsAre(0.1F, 0.0F, -0.3F));
  EXPECT_THAT(right, ElementsAre(0.2F, 1.0F, 0.0F));
}

}  // namespace
}  // namespace platform
