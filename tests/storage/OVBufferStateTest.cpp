#include "storage/OVBufferState.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(OVBufferStateTest, OfAnEmptyListHasNoBlocksAndTheGivenFillSize) {
  const auto state = OVBufferState::initWithBlocklist(std::vector<OVBlock>{}, 4711);
  ASSERT_NE(state, nullptr);
  EXPECT_THAT(state->blocklist(), IsEmpty());
  EXPECT_EQ(state->bufferFillSize(), 4711U);
}

TEST(OVBufferStateTest, KeepsTheBlocksInTheirOrder) {
  const std::vector<OVBlock> blocks{{800, 0, 8}, {0, 8, 16}, {16, 24, 0}};
  EXPECT_EQ(OVBufferState::initWithBlocklist(blocks, 808)->blocklist(), blocks);
}

TEST(OVBufferStateTest, OwnsItsBlocks) {
  std::vector<OVBlock> blocks{{0, 0, 100}};
  const auto state = OVBufferState::initWithBlocklist(blocks, 100);
  blocks[0].setSize(7);
  blocks.clear();
  EXPECT_THAT(state->blocklist(), ElementsAre(OVBlock(0, 0, 100)));
}

TEST(OVBufferStateTest, IsNotReachedByChangesOfTheListItCameFrom) {
  BlockList list;
  list.map({0, 0, 100});
  const auto state = OVBufferState::initWithBlocklist(list, 100);
  list.cutAfter(40);
  list.map({0, 100, 8});
  EXPECT_THAT(state->blocklist(), ElementsAre(OVBlock(0, 0, 100)));
  EXPECT_NE(state->list().find(99), nullptr);
}

}  // namespace
