#include "support/NumberedFrames.h"

#include <vector>

#include <gtest/gtest.h>

namespace support {
namespace {

std::vector<float> numbered(std::uint64_t first, std::size_t frames) {
  std::vector<float> samples(2 * frames);
  makeNumbered(samples.data(), first, frames);
  return samples;
}

TEST(NumberedFramesTest, EachFrameTellsItsNumberAlsoAfterSixteenBits) {
  for (const std::uint64_t first : {0ULL, 65530ULL, 3810239990ULL, 4294967290ULL}) {
    const auto samples = numbered(first, 12);
    for (std::size_t i = 0; i < 12; ++i) {
      const float inFile = static_cast<float>(static_cast<int>(samples[2 * i] * 32768)) / 32768;
      EXPECT_EQ(samples[2 * i], inFile);
      EXPECT_EQ(numberOf(&samples[2 * i]), (first + i) % kNumberedFrames);
    }
  }
}

TEST(NumberedFramesTest, FramesAreEqualUpToTheFirstThatIsLostOrChanged) {
  auto samples = numbered(70000, 3000);
  EXPECT_EQ(equalNumbered(samples.data(), 70000, 3000), 3000U);
  EXPECT_EQ(equalNumbered(samples.data(), 70001, 3000), 0U);
  samples[2 * 2500 + 1] = 0.125F;
  EXPECT_EQ(equalNumbered(samples.data(), 70000, 3000), 2500U);
  samples.erase(samples.begin() + 2 * 1024, samples.begin() + 2 * 1025);
  EXPECT_EQ(equalNumbered(samples.data(), 70000, 2999), 1024U);
}

}  // namespace
}  // namespace support
