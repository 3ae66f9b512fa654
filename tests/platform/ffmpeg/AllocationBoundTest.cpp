#include "platform/ffmpeg/AllocationBound.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

bool ffmpegGrants(std::size_t bytes) {
  void* const memory = av_malloc(bytes);
  av_free(memory);
  return memory != nullptr;
}

TEST(AllocationBoundTest, SmallFileHasTheSmallestBound) {
  EXPECT_EQ(allocationBoundFor(0), kSmallestAllocationBound);
  EXPECT_EQ(allocationBoundFor(100'000), kSmallestAllocationBound);
}

TEST(AllocationBoundTest, LargerFileMayHaveALargerIndex) {
  EXPECT_EQ(allocationBoundFor(std::uint64_t{10} << 20), std::size_t{240} << 20);
}

TEST(AllocationBoundTest, NoFileExceedsTheLargestBound) {
  EXPECT_EQ(allocationBoundFor(std::uint64_t{1} << 40), kLargestAllocationBound);
  EXPECT_EQ(allocationBoundFor(std::numeric_limits<std::uint64_t>::max()), kLargestAllocationBound);
}

// The bound of the process only rises: the order of the tests does not matter.
TEST(AllocationBoundTest, FfmpegIsRefusedWhatExceedsTheBound) {
  allowAllocations(kSmallestAllocationBound);
  EXPECT_TRUE(ffmpegGrants(kSmallestAllocationBound / 2));
  EXPECT_FALSE(ffmpegGrants(allocationBound() + 1));
}

TEST(AllocationBoundTest, ASmallFileTakesNothingFromALargeOne) {
  const std::size_t large = kSmallestAllocationBound + (std::size_t{8} << 20);
  allowAllocations(large);
  allowAllocations(kSmallestAllocationBound);
  EXPECT_GE(allocationBound(), large);
  EXPECT_TRUE(ffmpegGrants(large - 64));
}

}  // namespace
}  // namespace platform
