#include "storage/BlockIndex.h"

#include <gmock/gmock.h>

namespace {

using testing::IsNull;
using testing::Pointee;

constexpr std::uint64_t kTwo64 = 0;  // 2^64 in unsigned arithmetic

const std::vector<OVBlock> kBlocks{{200, 0, 100}, {0, 100, 100}, {300, 200, 50}};

TEST(ABlockIndex, FindsBlocksByAddressWhateverTheirOrder) {
  const BlockIndex index(kBlocks);
  EXPECT_EQ(index.size(), 3U);
  EXPECT_THAT(index.find(0), Pointee(OVBlock(0, 100, 100)));
  EXPECT_THAT(index.find(99), Pointee(OVBlock(0, 100, 100)));
  EXPECT_THAT(index.find(100), IsNull());
  EXPECT_THAT(index.find(299), Pointee(OVBlock(200, 0, 100)));
  EXPECT_THAT(index.find(300), Pointee(OVBlock(300, 200, 50)));
  EXPECT_THAT(index.find(350), IsNull());
}

TEST(ABlockIndex, HoldsNeitherEmptyNorWrappedBlocks) {
  const BlockIndex index({{10, 0, 0}, {kTwo64 - 8, 0, 8}, {kTwo64 - 20, 0, 50}, {5, 9, 1}});
  EXPECT_EQ(index.size(), 1U);
  EXPECT_THAT(index.find(5), Pointee(OVBlock(5, 9, 1)));
  EXPECT_THAT(index.find(10), IsNull());
  EXPECT_THAT(index.find(kTwo64 - 8), IsNull());
}

TEST(ABlockIndex, TellsWhetherABlockLiesOverAStretch) {
  const BlockIndex index(kBlocks);
  EXPECT_TRUE(index.touches(0, 1));
  EXPECT_TRUE(index.touches(99, 100));
  EXPECT_FALSE(index.touches(100, 200)) << "fits between two blocks";
  EXPECT_TRUE(index.touches(100, 201));
  EXPECT_TRUE(index.touches(50, 1000));
  EXPECT_FALSE(index.touches(350, 1000));
}

TEST(ABlockIndex, TellsWhetherABlockLiesOverBothSidesOfAnAddress) {
  const BlockIndex index(kBlocks);
  EXPECT_FALSE(index.touches(0, 0));
  EXPECT_TRUE(index.touches(1, 1));
  EXPECT_FALSE(index.touches(100, 100));
  EXPECT_FALSE(index.touches(300, 300)) << "between two neighbours";
}

TEST(ABlockIndex, MapsABlockOverSeveral) {
  BlockIndex index(kBlocks);
  index.map({50, 1000, 270});
  EXPECT_EQ(index.size(), 3U);
  EXPECT_THAT(index.find(49), Pointee(OVBlock(0, 100, 50)));
  EXPECT_THAT(index.find(319), Pointee(OVBlock(50, 1000, 270)));
  EXPECT_THAT(index.find(320), Pointee(OVBlock(320, 220, 30)));
}

TEST(ABlockIndex, SplitsABlockAtAnEmptyOne) {
  BlockIndex index(kBlocks);
  index.map({250, 1000, 0});
  EXPECT_EQ(index.size(), 4U);
  EXPECT_THAT(index.find(249), Pointee(OVBlock(200, 0, 50)));
  EXPECT_THAT(index.find(250), Pointee(OVBlock(250, 50, 50)));
  index.map({250, 1000, 0});
  EXPECT_EQ(index.size(), 4U);
}

TEST(ABlockIndex, KeepsTheBlockThatStartsAtACutAfter) {
  BlockIndex index(kBlocks);
  index.cutAfter(200);
  EXPECT_EQ(index.size(), 2U);
  EXPECT_THAT(index.find(200), Pointee(OVBlock(200, 0, 100)));
  index.cutAfter(60);
  EXPECT_EQ(index.size(), 1U);
  EXPECT_THAT(index.find(59), Pointee(OVBlock(0, 100, 60)));
}

TEST(ABlockIndex, DropsTheBlockThatEndsAtACutBefore) {
  BlockIndex index(kBlocks);
  index.cutBefore(100);
  EXPECT_EQ(index.size(), 2U);
  EXPECT_THAT(index.find(100), Pointee(OVBlock(100, 0, 100)));
  index.cutBefore(120);
  EXPECT_THAT(index.find(0), Pointee(OVBlock(0, 20, 80)));
}

TEST(ABlockIndex, ReplacesOnlyWhatIsReachable) {
  BlockIndex index(kBlocks);
  index.replace({{300, 200, 50}, {kTwo64 - 9, 0, 9}, {200, 0, 100}},
                {{200, 0, 150}, {kTwo64 - 9, 0, 20}});
  EXPECT_EQ(index.size(), 2U);
  EXPECT_THAT(index.find(340), Pointee(OVBlock(200, 0, 150)));
  EXPECT_THAT(index.find(50), Pointee(OVBlock(0, 100, 100)));
  index.replace({}, {});
  EXPECT_EQ(index.size(), 2U);
}

}  // namespace
