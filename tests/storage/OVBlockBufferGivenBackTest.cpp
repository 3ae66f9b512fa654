// What a step that was rolled back has written is given back to the disk.
#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <future>

#include "storage/BlockBufferFixture.h"
#include "support/Eventually.h"
#include "support/Gate.h"

namespace {

using support::Bytes;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;  // NOLINT(misc-unused-using-decls): used as an operator

class OVBlockBufferGivenBackTest : public support::BlockBufferFixture {
 protected:
  /// 800 bytes that stay, then a step that has written 400 over their middle and end.
  void beginStep() {
    write(*buffer_, before_, 0);
    buffer_->setWaypoint();
    write(*buffer_, pattern(300, 2), 700);
    write(*buffer_, pattern(100, 3), 100);
  }

  void holdTheNextRead() {
    files_.beforeReads([this] {
      if (!isHolding_.exchange(true)) {
        gate_.pass();
      }
    });
  }

  const Bytes before_ = pattern(800, 1);
  support::Gate gate_;

 private:
  std::atomic<bool> isHolding_ = false;
};

TEST_F(OVBlockBufferGivenBackTest, TheFileEndsAndGoesOnWhereTheStepBegan) {
  ASSERT_NO_FATAL_FAILURE(beginStep());
  ASSERT_EQ(buffer_->f_write_pos(), 1200U);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 800U);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_);
  const Bytes next = pattern(160, 4);
  write(*buffer_, next, 800);
  EXPECT_EQ(buffer_->blocklist().back(), OVBlock(800, 800, 160));
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, ADiskThatTheStepHasFilledTakesTheNextWriteWhole) {
  write(*buffer_, before_, 0);
  files_.fillUpAfter(400);
  buffer_->setWaypoint();
  write(*buffer_, pattern(300, 2), 800);
  write(*buffer_, pattern(300, 3), 1100);  // 100 of them find room
  buffer_->rollBack();
  const Bytes next = pattern(400, 4);
  write(*buffer_, next, 800);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, WhatTheRedoStateMapsIsKept) {
  write(*buffer_, before_, 0);
  buffer_->setWaypoint();
  const Bytes undone = pattern(200, 2);
  write(*buffer_, undone, 800);
  buffer_->undo();
  buffer_->setWaypoint();
  write(*buffer_, pattern(300, 3), 0);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 1000U);
  buffer_->redo();
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + undone);
}

TEST_F(OVBlockBufferGivenBackTest, WhatWasUndoneAfterTheLastWaypointIsKept) {
  write(*buffer_, before_, 0);
  buffer_->setWaypoint();
  buffer_->setWaypoint();
  const Bytes undone = pattern(200, 2);
  write(*buffer_, undone, 800);
  buffer_->undo();
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 1000U);
  buffer_->redo();
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + undone);
}

TEST_F(OVBlockBufferGivenBackTest, WhatWasWrittenBeforeTheStepStaysEvenIfNothingMapsItAnyMore) {
  write(*buffer_, before_, 0);
  buffer_->cutoffBufferAfterPosition(10);
  buffer_->setWaypoint();
  write(*buffer_, pattern(300, 2), 80);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 800U);
}

TEST_F(OVBlockBufferGivenBackTest, AFileThatCannotBeShortenedKeepsEverything) {
  ASSERT_NO_FATAL_FAILURE(beginStep());
  files_.failSizeChanges(EIO);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 1200U);
  files_.failSizeChanges(0);
  const Bytes next = pattern(160, 4);
  write(*buffer_, next, 800);
  EXPECT_EQ(buffer_->f_write_pos(), 1360U);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, AReadThatIsUnderWayStillFindsItsBytes) {
  ASSERT_NO_FATAL_FAILURE(beginStep());
  const Bytes during = read(*buffer_, 2000, 0);
  holdTheNextRead();
  auto reader = std::async(std::launch::async, [&] { return read(*buffer_, 2000, 0); });
  ASSERT_TRUE(gate_.awaitArrival());
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 1200U);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_);
  gate_.open();
  EXPECT_EQ(reader.get(), during);
  const Bytes next = pattern(160, 4);
  write(*buffer_, next, 800);
  EXPECT_EQ(buffer_->f_write_pos(), 960U) << "the next write gives it back first";
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, AWriteDuringALongReadDoesNotWaitForIt) {
  ASSERT_NO_FATAL_FAILURE(beginStep());
  holdTheNextRead();
  auto reader = std::async(std::launch::async, [&] { return read(*buffer_, 2000, 0); });
  ASSERT_TRUE(gate_.awaitArrival());
  buffer_->rollBack();
  const Bytes next = pattern(160, 4);
  write(*buffer_, next, 800);
  EXPECT_EQ(buffer_->f_write_pos(), 1360U);
  gate_.open();
  reader.wait();
  write(*buffer_, pattern(40, 5), 960);
  EXPECT_EQ(buffer_->f_write_pos(), 1400U) << "nothing below a later write is given back";
  EXPECT_EQ(read(*buffer_, 960, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, AWriteForWhichThereIsNoRoomOtherwiseWaitsForTheReadAndIsWhole) {
  write(*buffer_, before_, 0);
  files_.fillUpAfter(400);
  buffer_->setWaypoint();
  write(*buffer_, pattern(400, 2), 800);
  const Bytes during = read(*buffer_, 2000, 0);
  holdTheNextRead();
  auto reader = std::async(std::launch::async, [&] { return read(*buffer_, 2000, 0); });
  ASSERT_TRUE(gate_.awaitArrival());
  buffer_->rollBack();
  const Bytes next = pattern(400, 4);
  const auto writes = files_.writes();
  auto writer = std::async(std::launch::async, [&] { write(*buffer_, next, 800); });
  ASSERT_TRUE(support::eventually([&] { return files_.writes() > writes; }));
  gate_.open();
  EXPECT_EQ(reader.get(), during);
  writer.get();
  EXPECT_EQ(buffer_->f_write_pos(), 1200U);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_ + next);
}

TEST_F(OVBlockBufferGivenBackTest, StepsThatAreRolledBackOneAfterTheOtherGiveBackNothingTwice) {
  write(*buffer_, before_, 0);
  buffer_->setWaypoint();
  write(*buffer_, pattern(100, 2), 800);
  buffer_->setWaypoint();
  write(*buffer_, pattern(100, 3), 900);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 900U);
  buffer_->rollBack();
  EXPECT_EQ(buffer_->f_write_pos(), 900U);
  EXPECT_EQ(read(*buffer_, 2000, 0), before_);
}

}  // namespace
