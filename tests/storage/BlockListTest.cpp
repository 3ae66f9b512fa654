#include "storage/BlockList.h"

#include <gmock/gmock.h>

#include <initializer_list>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointee;

constexpr std::uint64_t kTwo64 = 0;  // 2^64 in the arithmetic of the list

BlockList listOf(std::initializer_list<OVBlock> blocks) {
  return BlockList(std::vector<OVBlock>(blocks));
}

TEST(BlockListMapTest, OntoAnEmptyListAddsIt) {
  BlockList list;
  list.map({100, 0, 50});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(100, 0, 50)));
}

TEST(BlockListMapTest, ExactlyOverAnotherReplacesIt) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({0, 1000, 1000});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 1000, 1000)));
}

TEST(BlockListMapTest, OverSeveralRemovesThemAll) {
  BlockList list = listOf({{0, 0, 10}, {10, 10, 10}, {30, 20, 10}, {50, 30, 10}});
  list.map({5, 40, 40});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(0, 0, 5), OVBlock(50, 30, 10), OVBlock(5, 40, 40)));
}

TEST(BlockListMapTest, FromTheStartOfAnotherTrimsItsHead) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({0, 1000, 300});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(300, 300, 700), OVBlock(0, 1000, 300)));
}

TEST(BlockListMapTest, OverTheHeadOfAnotherTrimsIt) {
  BlockList list = listOf({{100, 0, 1000}});
  list.map({50, 1000, 300});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(350, 250, 750), OVBlock(50, 1000, 300)));
}

TEST(BlockListMapTest, OverTheTailOfAnotherTrimsIt) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({700, 1000, 600});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 700), OVBlock(700, 1000, 600)));
}

TEST(BlockListMapTest, ToTheEndOfAnotherTrimsItsTail) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({700, 1000, 300});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 700), OVBlock(700, 1000, 300)));
}

TEST(BlockListMapTest, InsideAnotherSplitsIt) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({250, 1000, 500});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(0, 0, 250), OVBlock(750, 750, 250), OVBlock(250, 1000, 500)));
}

TEST(BlockListMapTest, BesideOthersLeavesThemAsTheyAre) {
  BlockList list = listOf({{0, 0, 100}, {200, 100, 100}});
  list.map({100, 200, 100});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(0, 0, 100), OVBlock(200, 100, 100), OVBlock(100, 200, 100)));
}

TEST(BlockListMapNothingTest, IntoAnEmptyListAddsIt) {
  BlockList list;
  list.map({100, 0, 0});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(100, 0, 0)));
  EXPECT_EQ(list.find(100), nullptr);
}

TEST(BlockListMapNothingTest, InsideAnotherSplitsIt) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({400, 1000, 0});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(0, 0, 400), OVBlock(400, 400, 600), OVBlock(400, 1000, 0)));
}

TEST(BlockListMapNothingTest, AtTheEndOfAnotherSplitsOffAnEmptyTail) {
  BlockList list = listOf({{0, 0, 1000}});
  list.map({1000, 1000, 0});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(0, 0, 1000), OVBlock(1000, 1000, 0), OVBlock(1000, 1000, 0)));
}

TEST(BlockListMapNothingTest, AtTheStartOfAnotherEmptiesItAndMovesItBehind) {
  BlockList list = listOf({{100, 0, 1000}, {2000, 1000, 8}});
  list.map({100, 1008, 0});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(100, 0, 0), OVBlock(2000, 1000, 8),
                                         OVBlock(100, 0, 1000), OVBlock(100, 1008, 0)));
  ASSERT_NE(list.find(100), nullptr);
  EXPECT_EQ(list.find(100)->size(), 1000U);
}

TEST(BlockListMapNothingTest, OverAnotherEmptyOneReplacesIt) {
  BlockList list = listOf({{100, 7, 0}});
  list.map({100, 9, 0});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(100, 9, 0)));
}

TEST(BlockListMapTest, RemovesEmptyOnesAtBothItsEdges) {
  BlockList list = listOf({{100, 0, 0}, {200, 0, 0}, {201, 0, 0}, {99, 0, 0}});
  list.map({100, 0, 100});
  EXPECT_THAT(list.blocks(),
              ElementsAre(OVBlock(201, 0, 0), OVBlock(99, 0, 0), OVBlock(100, 0, 100)));
}

TEST(BlockListFindTest, LooksAtAddressesNotAtTheOrderOfTheList) {
  const BlockList list = listOf({{500, 0, 100}, {0, 100, 100}, {200, 200, 50}});
  EXPECT_THAT(list.find(0), Pointee(list.blocks()[1]));
  EXPECT_THAT(list.find(99), Pointee(list.blocks()[1]));
  EXPECT_EQ(list.find(100), nullptr);
  EXPECT_THAT(list.find(249), Pointee(list.blocks()[2]));
  EXPECT_EQ(list.find(250), nullptr);
  EXPECT_THAT(list.find(599), Pointee(list.blocks()[0]));
  EXPECT_EQ(list.find(600), nullptr);
}

std::vector<OVBlock> from(const BlockList& list, std::uint64_t address, std::size_t most = 100) {
  std::vector<OVBlock> result;
  list.forEachFrom(address, [&](const OVBlock& block) {
    result.push_back(block);
    return result.size() < most;
  });
  return result;
}

TEST(BlockListForEachFromTest, GoesOnByAddressUntilAGap) {
  const BlockList list = listOf({{500, 0, 100}, {100, 100, 100}, {200, 200, 50}, {0, 300, 100}});
  EXPECT_THAT(from(list, 0),
              ElementsAre(OVBlock(0, 300, 100), OVBlock(100, 100, 100), OVBlock(200, 200, 50)));
  EXPECT_THAT(from(list, 199), ElementsAre(OVBlock(100, 100, 100), OVBlock(200, 200, 50)));
  EXPECT_THAT(from(list, 599), ElementsAre(OVBlock(500, 0, 100)));
}

TEST(BlockListForEachFromTest, GivesNothingInAGapAndInAnEmptyList) {
  const BlockList list = listOf({{500, 0, 100}, {100, 100, 100}});
  EXPECT_THAT(from(list, 99), IsEmpty());
  EXPECT_THAT(from(list, 200), IsEmpty());
  EXPECT_THAT(from(list, 600), IsEmpty());
  EXPECT_THAT(from({}, 0), IsEmpty());
}

TEST(BlockListForEachFromTest, EndsWhenItIsTold) {
  const BlockList list = listOf({{0, 0, 10}, {10, 10, 10}, {20, 20, 10}});
  EXPECT_THAT(from(list, 5, 2), ElementsAre(OVBlock(0, 0, 10), OVBlock(10, 10, 10)));
}

TEST(BlockListForEachFromTest, PassesTheEmptyAndTheWrappedBy) {
  BlockList list = listOf({{0, 0, 10}, {10, 10, 0}, {10, 20, 10}});
  EXPECT_THAT(from(list, 0), ElementsAre(OVBlock(0, 0, 10), OVBlock(10, 20, 10)));
  list.cutBefore(10);  // the first one's start wraps
  EXPECT_THAT(from(list, 0), ElementsAre(OVBlock(0, 20, 10)));
}

TEST(BlockListCutAfterTest, RemovesWhatStartsBeyondAndEndsWhatContainsTheAddress) {
  BlockList list = listOf({{300, 0, 100}, {0, 100, 100}, {100, 200, 200}});
  list.cutAfter(150);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 100, 100), OVBlock(100, 200, 50)));
}

TEST(BlockListCutAfterTest, AtABlockBoundaryKeepsTheBlockThatStartsThere) {
  BlockList list = listOf({{0, 0, 100}, {100, 100, 100}, {200, 200, 100}});
  list.cutAfter(100);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 100), OVBlock(100, 100, 100)));
}

TEST(BlockListCutAfterTest, BeyondAllBlocksChangesNothing) {
  BlockList list = listOf({{0, 0, 100}});
  list.cutAfter(5000);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 100)));
}

TEST(BlockListCutAfterTest, ZeroKeepsOnlyTheBlockAtZero) {
  BlockList list = listOf({{0, 0, 100}, {100, 100, 100}});
  list.cutAfter(0);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 100)));
}

TEST(BlockListCutAfterTest, RemovesWrappedBlocks) {
  BlockList list = listOf({{kTwo64 - 100, 0, 100}, {0, 100, 100}});
  list.cutAfter(100);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 100, 100)));
}

TEST(BlockListCutBeforeTest, RemovesWhatEndsBelowTrimsWhatContainsAndMovesTheRest) {
  BlockList list = listOf({{300, 0, 100}, {0, 100, 100}, {100, 200, 200}});
  list.cutBefore(150);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(150, 0, 100), OVBlock(0, 250, 150)));
}

TEST(BlockListCutBeforeTest, AtABlockBoundaryLeavesTheBlockThatEndsThereWrapped) {
  BlockList list = listOf({{0, 0, 100}, {100, 100, 100}});
  list.cutBefore(100);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(kTwo64 - 100, 0, 100), OVBlock(0, 100, 100)));
  EXPECT_THAT(list.find(0), Pointee(list.blocks()[1]));
}

TEST(BlockListCutBeforeTest, AgainRemovesTheWrappedBlock) {
  BlockList list = listOf({{kTwo64 - 100, 0, 100}, {0, 100, 100}});
  list.cutBefore(40);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 140, 60)));
}

TEST(BlockListCutBeforeTest, ZeroChangesNothing) {
  BlockList list = listOf({{kTwo64 - 100, 0, 100}, {0, 100, 100}});
  list.cutBefore(0);
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(kTwo64 - 100, 0, 100), OVBlock(0, 100, 100)));
}

TEST(BlockListMapTest, BelowAWrappedOneRemovesIt) {
  BlockList list = listOf({{kTwo64 - 100, 0, 100}, {0, 100, 100}});
  list.map({100, 200, 10});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 100, 100), OVBlock(100, 200, 10)));
}

TEST(BlockListMapTest, ThatEndsBelowTheEndOfAWrappedOneLeavesIt) {
  BlockList list = listOf({{kTwo64 - 100, 0, 200}});
  list.map({0, 200, 50});
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(kTwo64 - 100, 0, 200), OVBlock(0, 200, 50)));
  EXPECT_NE(list.find(0), nullptr);
}

TEST(BlockListMergeTest, CollapsesARunIntoItsFirstBlock) {
  BlockList list = listOf({{0, 0, 10}, {10, 10, 20}, {30, 30, 30}});
  list.mergeNeighbours();
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(0, 0, 60)));
}

TEST(BlockListMergeTest, OfAnEmptyListLeavesItEmpty) {
  BlockList list;
  list.mergeNeighbours();
  EXPECT_THAT(list.blocks(), IsEmpty());
}

TEST(BlockListMergeTest, NeedsBothTheRecordingAndTheFile) {
  const auto blocks = {OVBlock(0, 0, 10), OVBlock(10, 11, 10), OVBlock(21, 21, 10)};
  BlockList list = listOf(blocks);
  list.mergeNeighbours();
  EXPECT_EQ(list.blocks(), std::vector<OVBlock>(blocks));
}

TEST(BlockListMergeTest, NeedsThemNextToEachOtherInTheList) {
  const auto blocks = {OVBlock(0, 0, 10), OVBlock(500, 500, 10), OVBlock(10, 10, 10)};
  BlockList list = listOf(blocks);
  list.mergeNeighbours();
  EXPECT_EQ(list.blocks(), std::vector<OVBlock>(blocks));
}

TEST(BlockListMergeTest, DoesNotMergeBackwards) {
  const auto blocks = {OVBlock(10, 10, 10), OVBlock(0, 0, 10)};
  BlockList list = listOf(blocks);
  list.mergeNeighbours();
  EXPECT_EQ(list.blocks(), std::vector<OVBlock>(blocks));
}

TEST(BlockListMergeTest, AfterACutMakesTheFirstBlockUnreachableThroughTheWrappedOne) {
  BlockList list = listOf({{0, 0, 100}, {100, 100, 100}, {500, 500, 10}});
  list.cutBefore(100);
  list.mergeNeighbours();
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(kTwo64 - 100, 0, 200), OVBlock(400, 500, 10)));
  EXPECT_EQ(list.find(0), nullptr);
  EXPECT_EQ(list.find(99), nullptr);
  EXPECT_NE(list.find(400), nullptr);
}

TEST(BlockListMergeTest, TakesTheBlockBehindAnEmptyOneIn) {
  BlockList list = listOf({{100, 50, 0}, {100, 50, 10}});
  list.mergeNeighbours();
  EXPECT_THAT(list.blocks(), ElementsAre(OVBlock(100, 50, 10)));
  EXPECT_NE(list.find(109), nullptr);
}

}  // namespace
