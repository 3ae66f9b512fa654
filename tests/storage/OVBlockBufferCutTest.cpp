// Cuts of a recording after and before a position, at block boundaries and beyond its ends.
#include <gmock/gmock.h>

#include <cstdint>

#include "storage/BlockBufferFixture.h"

namespace {

using support::Bytes;
using support::isNothing;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;  // NOLINT(misc-unused-using-decls): used as an operator
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kTwo64 = 0;  // 2^64 in unsigned arithmetic

class OVBlockBufferCutTest : public support::BlockBufferFixture {};

TEST_F(OVBlockBufferCutTest, CutAfterAPositionEndsTheRecordingThere) {
  const Bytes all = writeSequence(4, 80);
  buffer_->cutoffBufferAfterPosition(25);
  EXPECT_EQ(buffer_->bufferFillSize(), 200U);
  EXPECT_THAT(buffer_->blocklist(),
              ElementsAre(OVBlock(0, 0, 80), OVBlock(80, 80, 80), OVBlock(160, 160, 40)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 0, 200));
}

TEST_F(OVBlockBufferCutTest, CutAfterABlockBoundaryKeepsTheBlockButHidesIt) {
  const Bytes all = writeSequence(3, 80);
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 80), OVBlock(80, 80, 80)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 0, 80));
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 80)));
}

TEST_F(OVBlockBufferCutTest, ABlockHiddenByACutIsHeardAgainWhenTheRecordingGrowsPastIt) {
  const Bytes all = writeSequence(3, 80);
  buffer_->cutoffBufferAfterPosition(10);
  const Bytes later = pattern(80, 9);
  write(*buffer_, later, 160);
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 0, 160) + later);
}

TEST_F(OVBlockBufferCutTest, ABlockHiddenByACutGoesWhenItIsWrittenOver) {
  writeSequence(3, 80);
  buffer_->cutoffBufferAfterPosition(10);
  write(*buffer_, pattern(80, 9), 80);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 80), OVBlock(80, 240, 80)));
}

TEST_F(OVBlockBufferCutTest, ABlockHiddenByACutIsTrimmedWhenItIsPartlyWrittenOver) {
  writeSequence(3, 80);
  buffer_->cutoffBufferAfterPosition(10);
  write(*buffer_, pattern(24, 9), 80);
  EXPECT_THAT(buffer_->blocklist(),
              ElementsAre(OVBlock(0, 0, 80), OVBlock(104, 104, 56), OVBlock(80, 240, 24)));
  EXPECT_EQ(buffer_->bufferFillSize(), 104U);
}

TEST_F(OVBlockBufferCutTest, CutAfterBeyondTheEndLengthensTheRecordingWithAHole) {
  const Bytes all = writeSequence(1, 80);
  buffer_->cutoffBufferAfterPosition(100);
  EXPECT_EQ(buffer_->bufferFillSize(), 800U);
  EXPECT_EQ(read(*buffer_, 800, 0), all);
}

TEST_F(OVBlockBufferCutTest, CutAfterZeroEmptiesTheRecording) {
  writeSequence(3, 80);
  buffer_->cutoffBufferAfterPosition(0);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 0U);
  EXPECT_THAT(read(*buffer_, 100, 0), IsEmpty());
}

TEST_F(OVBlockBufferCutTest, CutBeforeAPositionMovesTheRestToTheStart) {
  const Bytes all = writeSequence(4, 80);
  buffer_->cutoffBufferBeforePosition(25);
  EXPECT_EQ(buffer_->bufferFillSize(), 120U);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 200, 40), OVBlock(40, 240, 80)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 200, 320));
}

TEST_F(OVBlockBufferCutTest, CutBeforeABlockBoundaryLeavesTheBlockThatEndsThereWrapped) {
  const Bytes all = writeSequence(3, 80);
  buffer_->cutoffBufferBeforePosition(20);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(kTwo64 - 80, 80, 80), OVBlock(0, 160, 80)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 160, 240));
}

TEST_F(OVBlockBufferCutTest, OptimizeMergesTheStartIntoTheWrappedBlockAndHidesIt) {
  writeSequence(3, 80);
  buffer_->cutoffBufferBeforePosition(20);
  buffer_->optimize();
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(kTwo64 - 80, 80, 160)));
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 0)));
  EXPECT_EQ(buffer_->bufferFillSize(), 80U);
}

TEST_F(OVBlockBufferCutTest, AWriteRemovesTheWrappedBlock) {
  const Bytes all = writeSequence(3, 80);
  buffer_->cutoffBufferBeforePosition(20);
  const Bytes later = pattern(8, 9);
  write(*buffer_, later, 80);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 160, 80), OVBlock(80, 240, 8)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(all, 160, 240) + later);
}

TEST_F(OVBlockBufferCutTest, CutBeforeTheWholeRecordingLeavesItEmpty) {
  writeSequence(1, 80);
  buffer_->cutoffBufferBeforePosition(10);
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(kTwo64 - 80, 0, 80)));
  EXPECT_THAT(read(*buffer_, 100, 0), IsEmpty());
}

TEST_F(OVBlockBufferCutTest, CutBeforeAPositionPastTheEndUnderflowsTheLength) {
  writeSequence(1, 80);
  buffer_->cutoffBufferBeforePosition(11);
  EXPECT_EQ(buffer_->bufferFillSize(), kTwo64 - 8);
  EXPECT_THAT(buffer_->blocklist(), IsEmpty());
  EXPECT_THAT(read(*buffer_, 100, 0), IsEmpty());
}

TEST_F(OVBlockBufferCutTest, CutPositionsWrapAsTheyAreTurnedIntoBytes) {
  writeSequence(1, 80);
  buffer_->cutoffBufferAfterPosition((std::uint64_t{1} << 61) + 5);
  EXPECT_EQ(buffer_->bufferFillSize(), 40U);
}

}  // namespace
