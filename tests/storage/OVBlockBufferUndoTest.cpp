#include <gmock/gmock.h>

#include <stdexcept>

#include "storage/OVBlockBuffer.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using support::Bytes;
using support::part;
using support::pattern;
using support::read;
using support::write;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OVBlockBufferUndoTest : public testing::Test {
 protected:
  // Makes the recording `frames` frames long, with audio that depends on the length.
  void becomeLong(std::uint64_t frames) {
    buffer_->cutoffBufferAfterPosition(0);
    write(*buffer_, pattern(frames * 8, static_cast<unsigned>(frames)), 0);
  }

  Bytes audio() { return read(*buffer_, 100000, 0); }
  static Bytes audioOf(std::uint64_t frames) {
    return pattern(frames * 8, static_cast<unsigned>(frames));
  }

  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
};

TEST_F(OVBlockBufferUndoTest, RestoresTheListInItsOrderAndTheLength) {
  write(*buffer_, pattern(1000, 1), 0);
  write(*buffer_, pattern(500, 2), 250);
  const std::vector<OVBlock> before = buffer_->blocklist();
  const Bytes audioBefore = audio();
  buffer_->setWaypoint();
  EXPECT_EQ(buffer_->waypointPos(), 1U);
  buffer_->cutoffBufferAfterPosition(50);
  write(*buffer_, pattern(5000, 3), 100);

  buffer_->undo();
  EXPECT_EQ(buffer_->blocklist(), before);
  EXPECT_EQ(buffer_->bufferFillSize(), 1000U);
  EXPECT_EQ(audio(), audioBefore);
  EXPECT_EQ(buffer_->waypointPos(), 0U);
  EXPECT_EQ(buffer_->prevWaypointPos(), 1U);
}

TEST_F(OVBlockBufferUndoTest, RedoRestoresWhatUndoTookAway) {
  becomeLong(10);
  buffer_->setWaypoint();
  becomeLong(20);
  const std::vector<OVBlock> edited = buffer_->blocklist();
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(10));
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(20));
  EXPECT_EQ(buffer_->blocklist(), edited);
  EXPECT_EQ(buffer_->waypointPos(), 0U) << "redo does not move among the waypoints";
}

TEST_F(OVBlockBufferUndoTest, WalksDownTheWaypointsToTheLowestAndStaysThere) {
  for (std::uint64_t frames = 1; frames <= 3; ++frames) {
    becomeLong(frames);
    buffer_->setWaypoint();
  }
  becomeLong(4);
  for (const std::uint64_t expected : {3U, 2U, 1U, 1U, 1U}) {
    buffer_->undo();
    EXPECT_EQ(audio(), audioOf(expected));
  }
  EXPECT_EQ(buffer_->waypointPos(), 0U);
  EXPECT_THAT(buffer_->waypointStack(), SizeIs(3));
}

TEST_F(OVBlockBufferUndoTest, AfterARedoRestoresTheWaypointBelow) {
  becomeLong(1);
  buffer_->setWaypoint();
  becomeLong(2);
  buffer_->setWaypoint();
  becomeLong(3);
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(2));
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(3));
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(1));
}

TEST_F(OVBlockBufferUndoTest, ANewWaypointIsInsertedBelowTheOnesPassed) {
  becomeLong(1);
  buffer_->setWaypoint();
  becomeLong(2);
  buffer_->setWaypoint();
  becomeLong(3);
  buffer_->undo();
  becomeLong(4);
  buffer_->setWaypoint();
  ASSERT_THAT(buffer_->waypointStack(), SizeIs(3));
  EXPECT_EQ(buffer_->waypointPos(), 2U);
  EXPECT_EQ(buffer_->waypointStack()[0]->bufferFillSize(), 8U);
  EXPECT_EQ(buffer_->waypointStack()[1]->bufferFillSize(), 32U);
  EXPECT_EQ(buffer_->waypointStack()[2]->bufferFillSize(), 16U);
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(4));
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(1));
}

TEST_F(OVBlockBufferUndoTest, RedoWithoutAnUndoDoesNothing) {
  becomeLong(5);
  buffer_->setWaypoint();
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(5));
  EXPECT_EQ(buffer_->waypointPos(), 1U);
}

TEST_F(OVBlockBufferUndoTest, RedoTwiceRestoresOnce) {
  becomeLong(1);
  buffer_->setWaypoint();
  becomeLong(2);
  buffer_->undo();
  buffer_->redo();
  EXPECT_EQ(buffer_->redoState(), nullptr);
  becomeLong(3);
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(3));
}

TEST_F(OVBlockBufferUndoTest, ReplacesTheStateForRedoEachTime) {
  becomeLong(1);
  buffer_->setWaypoint();
  becomeLong(2);
  buffer_->undo();
  buffer_->undo();
  EXPECT_EQ(buffer_->redoState()->bufferFillSize(), 8U);
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(1));
}

TEST_F(OVBlockBufferUndoTest, WithoutAWaypointThrowsWithTheLockReleased) {
  becomeLong(7);
  const std::vector<OVBlock> before = buffer_->blocklist();
  EXPECT_THROW(buffer_->undo(), std::out_of_range);
  buffer_->lock();
  buffer_->unlock();
  EXPECT_EQ(buffer_->blocklist(), before);
  EXPECT_EQ(buffer_->bufferFillSize(), 56U);
  EXPECT_EQ(buffer_->prevWaypointPos(), 0U);
  ASSERT_NE(buffer_->redoState(), nullptr) << "the state for redo has been replaced by then";
  EXPECT_EQ(buffer_->redoState()->bufferFillSize(), 56U);
}

TEST_F(OVBlockBufferUndoTest, RestoresAnEmptyBuffer) {
  buffer_->setWaypoint();
  becomeLong(3);
  buffer_->undo();
  EXPECT_THAT(buffer_->blocklist(), IsEmpty());
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
  EXPECT_THAT(audio(), IsEmpty());
}

TEST_F(OVBlockBufferUndoTest, SavedStatesAreNotReachedByLaterEdits) {
  write(*buffer_, pattern(1000, 1), 0);
  buffer_->setWaypoint();
  write(*buffer_, pattern(100, 2), 500);
  buffer_->cutoffBufferBeforePosition(10);
  EXPECT_THAT(buffer_->waypointStack()[0]->blocklist(), ElementsAre(OVBlock(0, 0, 1000)));
}

TEST_F(OVBlockBufferUndoTest, RestoresTheSameStateAnyNumberOfTimes) {
  write(*buffer_, pattern(1000, 1), 0);
  buffer_->setWaypoint();
  for (int round = 0; round < 3; ++round) {
    write(*buffer_, pattern(100, 2), 500);
    buffer_->cutoffBufferBeforePosition(10);
    buffer_->undo();
    EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 1000)));
    EXPECT_EQ(audio(), pattern(1000, 1));
  }
}

TEST_F(OVBlockBufferUndoTest, KeepsEveryByteInTheFile) {
  becomeLong(10);
  buffer_->setWaypoint();
  becomeLong(20);
  buffer_->undo();
  EXPECT_EQ(buffer_->f_write_pos(), 240U);
  write(*buffer_, pattern(8, 1), 80);
  EXPECT_EQ(buffer_->blocklist().back(), OVBlock(80, 240, 8));
}

TEST_F(OVBlockBufferUndoTest, DoesNotCountAsWritesTowardsOptimizing) {
  becomeLong(10);
  buffer_->setWaypoint();
  becomeLong(20);
  const auto count = buffer_->blocksAddedSinceOptimization();
  buffer_->undo();
  buffer_->redo();
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), count);
}

TEST_F(OVBlockBufferUndoTest, AStepThatIsRolledBackLeavesUndoAndRedoAsTheyWere) {
  becomeLong(10);
  buffer_->setWaypoint();
  becomeLong(20);
  buffer_->setWaypoint();
  becomeLong(30);
  buffer_->undo();
  ASSERT_EQ(audio(), audioOf(20));

  buffer_->setWaypoint();
  becomeLong(40);
  buffer_->rollBack();
  EXPECT_EQ(audio(), audioOf(20));
  EXPECT_EQ(buffer_->waypointPos(), 1U);
  buffer_->redo();
  EXPECT_EQ(audio(), audioOf(30));
  buffer_->undo();
  EXPECT_EQ(audio(), audioOf(10));
}

TEST_F(OVBlockBufferUndoTest, WithoutAWaypointRollingBackThrowsAndChangesNothing) {
  becomeLong(10);
  EXPECT_THROW(buffer_->rollBack(), std::out_of_range);
  EXPECT_EQ(audio(), audioOf(10));
  EXPECT_EQ(buffer_->waypointPos(), 0U);
}

}  // namespace
