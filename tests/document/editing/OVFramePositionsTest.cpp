#include "document/editing/OVFramePositions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

TEST(OVFramePositions, AreZeroAtFirstAndIndependent) {
  OVFramePositions positions;
  EXPECT_EQ(positions.playback(), 0U);
  EXPECT_EQ(positions.recording(), 0U);
  positions.setPlayback(7);
  EXPECT_EQ(positions.recording(), 0U);
  positions.setRecording(UINT64_MAX);
  EXPECT_EQ(positions.playback(), 7U);
  EXPECT_EQ(positions.recording(), UINT64_MAX);
}

TEST(OVFramePositions, MayBeSetAndReadByManyThreads) {
  OVFramePositions positions;
  constexpr std::uint64_t kHigh = std::uint64_t{0xABCD} << 48;
  {
    const std::jthread writer([&] {
      for (std::uint64_t i = 0; i < 2000; ++i) {
        positions.setPlayback(i % 2 == 0 ? kHigh | i : i);
      }
    });
    for (int i = 0; i < 2000; ++i) {
      const std::uint64_t seen = positions.playback();
      EXPECT_TRUE((seen & 1U) == 0 ? seen == 0 || seen > kHigh - 1 : seen < 2000) << seen;
    }
  }
  EXPECT_EQ(positions.playback(), 1999U);
}
