#include "storage/OVBlock.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(OVBlockTest, KeepsItsThreeValues) {
  OVBlock block;
  EXPECT_EQ(block, OVBlock(0, 0, 0));
  block.setLinear_addr_start(1);
  block.setFile_offset_start(2);
  block.setSize(3);
  EXPECT_EQ(block, OVBlock(1, 2, 3));
}

TEST(OVBlockTest, DescribesItselfInTheOrderAddressOffsetSize) {
  EXPECT_EQ(OVBlock(8, 16, 24).description(), "linear_addr: 8, file_offset: 16, size: 24");
  EXPECT_EQ(OVBlock(std::numeric_limits<std::uint64_t>::max(), 0, 1).description(),
            "linear_addr: 18446744073709551615, file_offset: 0, size: 1");
}

TEST(OVBlockTest, ContainsItsStartButNotItsEnd) {
  const OVBlock block(100, 0, 50);
  EXPECT_FALSE(block.contains(99));
  EXPECT_TRUE(block.contains(100));
  EXPECT_TRUE(block.contains(149));
  EXPECT_FALSE(block.contains(150));
}

TEST(OVBlockTest, ContainsNothingWhenEmptyOrWrapped) {
  EXPECT_FALSE(OVBlock(100, 0, 0).contains(100));
  const OVBlock wrapped(std::uint64_t{0} - 10, 0, 30);
  EXPECT_EQ(wrapped.end(), 20U);
  EXPECT_FALSE(wrapped.contains(0));
  EXPECT_FALSE(wrapped.contains(std::numeric_limits<std::uint64_t>::max()));
}

}  // namespace
