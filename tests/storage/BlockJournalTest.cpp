#include "storage/BlockJournal.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/PosixFile.h"
#include "storage/BlockBufferFixture.h"
#include "storage/JournalReplay.h"
#include "support/Sanitizers.h"
#include "support/SystemCalls.h"

namespace {

using support::pattern;
using support::write;

class BlockJournalTest : public support::BlockBufferFixture {
 protected:
  void begin(const BlockJournal::Origin& origin = {.created = 7, .recoveredFrom = {}}) {
    ASSERT_NE(buffer_->beginJournal(origin), nullptr);
    file_ = std::make_unique<platform::PosixFile>(::dup(buffer_->journal()->descriptor()));
  }

  /// Memory that the journal takes.
  [[nodiscard]] std::uint64_t bytesInUse() const {
    struct stat information = {};
    EXPECT_EQ(::fstat(file_->descriptor(), &information), 0);
    return static_cast<std::uint64_t>(information.st_blocks) * 512;
  }

  void expectReplayed() const {
    auto replay = JournalReplay::begin(*file_);
    ASSERT_TRUE(replay);
    replay->run();
    EXPECT_EQ(replay->list().blocks(), buffer_->blocklist());
    EXPECT_EQ(replay->fillSize(), buffer_->bufferFillSize());
  }

  std::unique_ptr<platform::PosixFile> file_;
};

TEST_F(BlockJournalTest, SaysWhatItsDocumentSaid) {
  begin({.created = 7, .recoveredFrom = "Orvo recording.caf"});
  auto origin = readJournalOrigin(*file_);
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->state, journal::State::saved);
  EXPECT_EQ(origin->begun, 7);
  EXPECT_EQ(origin->recoveredFrom, "Orvo recording.caf");

  buffer_->journal()->setState(journal::State::edited);
  EXPECT_TRUE(buffer_->journal()->recordingBegins(19));
  buffer_->journal()->recordingTakenBack();
  EXPECT_TRUE(buffer_->journal()->recordingBegins(20));
  EXPECT_FALSE(buffer_->journal()->recordingBegins(30));
  origin = readJournalOrigin(*file_);
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->state, journal::State::edited);
  EXPECT_EQ(origin->begun, 20) << "the time of the first recording counts";
}

TEST_F(BlockJournalTest, NameThatDoesNotFitIsLeftOut) {
  begin({.created = 7, .recoveredFrom = std::string(journal::kMaxName, 'n')});
  const auto origin = readJournalOrigin(*file_);
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->recoveredFrom, "");
}

TEST_F(BlockJournalTest, BeginsWithWhatTheBufferHolds) {
  writeSequence(5, 800);
  begin();
  expectReplayed();
  buffer_->cutoffBufferAfterPosition(100);
  expectReplayed();
}

TEST_F(BlockJournalTest, RecordsWithoutASystemCall) {
  if (support::kAnySanitizer) {
    GTEST_SKIP() << "a sanitizer makes calls of its own";
  }
  writeSequence(5, 800);
  begin();
  BlockJournal& journal = *buffer_->journal();
  buffer_->setWaypoint();
  const auto state = buffer_->waypointStack().front();
  EXPECT_TRUE(support::makesNoSystemCalls([&] {
    for (std::uint64_t number = 0; number < 100; ++number) {
      journal.wrote(OVBlock(number * 800, number * 800, 800));
      journal.cutAfter(400);
      journal.cutBefore(100);
      journal.merged();
      journal.kept(*state);
      journal.restored(*state);
      journal.setState(journal::State::edited);
      static_cast<void>(journal.wantsSettling());
    }
  }));
  EXPECT_FALSE(support::makesNoSystemCalls([] { static_cast<void>(::getppid()); }))
      << "any other call is noticed";
}

TEST_F(BlockJournalTest, SecondBeginningKeepsTheFirst) {
  begin();
  const auto* const first = buffer_->journal();
  EXPECT_EQ(buffer_->beginJournal({.created = 8, .recoveredFrom = {}}), first);
  const auto origin = readJournalOrigin(*file_);
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->begun, 7);
}

TEST_F(BlockJournalTest, RolledBackStepIsReplayed) {
  writeSequence(3, 800);
  begin();
  buffer_->setWaypoint();
  write(*buffer_, pattern(800, 9), 400);
  buffer_->rollBack();
  expectReplayed();
}

// A program that is killed right after the cut is recovered by this journal.
TEST_F(BlockJournalTest, FileIsCutOffOnceTheJournalMapsNothingThereAnyMore) {
  for (const bool isBegunBefore : {true, false}) {
    buffer_ = OVBlockBuffer::init();
    writeSequence(3, 800);
    if (isBegunBefore) {
      begin();
    }
    buffer_->setWaypoint();
    write(*buffer_, pattern(800, 9), 400);
    begin();
    std::vector<std::uint64_t> cuts;
    files_.beforeSizeChanges([&](std::uint64_t size) {
      cuts.push_back(size);
      auto replay = JournalReplay::begin(*file_);
      ASSERT_TRUE(replay);
      replay->run();
      EXPECT_LE(replay->list().endInFile(), size) << isBegunBefore;
    });
    buffer_->rollBack();
    files_.beforeSizeChanges(nullptr);
    EXPECT_EQ(cuts, std::vector<std::uint64_t>{2400}) << isBegunBefore;
    EXPECT_EQ(buffer_->f_write_pos(), 2400U) << isBegunBefore;
  }
}

TEST_F(BlockJournalTest, StateOlderThanTheJournalIsRestoredAsANewState) {
  writeSequence(3, 800);
  buffer_->setWaypoint();
  write(*buffer_, pattern(800, 9), 400);
  begin();
  buffer_->undo();
  expectReplayed();
  buffer_->redo();
  expectReplayed();
}

TEST_F(BlockJournalTest, UndoWithoutAWaypointLeavesItAsItWas) {
  writeSequence(3, 800);
  begin();
  EXPECT_THROW(buffer_->undo(), std::out_of_range);
  expectReplayed();
}

// 20 hours in chunks of 93 ms, into a recording of 100,000 pieces.
TEST_F(BlockJournalTest, StaysBelow16MegabytesInALongRecordingOfManyPieces) {
  constexpr std::uint64_t kPieces = 100'000;
  constexpr std::uint64_t kChunks = std::uint64_t{20} * 3600 * 44100 / 4096;
  const auto chunk = pattern(8, 1);
  begin();
  for (std::uint64_t i = 0; i < kPieces; ++i) {
    write(*buffer_, chunk, i * 16);
  }
  std::uint64_t most = 0;
  for (std::uint64_t i = 0; i < kChunks; ++i) {
    write(*buffer_, chunk, kPieces * 16 + i * 8);
    if (i % 1000 == 0) {
      most = std::max(most, bytesInUse());
    }
  }
  EXPECT_LT(most, 16'000'000U);
  expectReplayed();
}

TEST_F(BlockJournalTest, ShortRecordingTakesLittleMemory) {
  begin();
  writeSequence(500, 80);
  EXPECT_LE(bytesInUse(), 256U * 1024);
  expectReplayed();
}

TEST_F(BlockJournalTest, MoreBlocksThanItHoldsAreAnError) {
  auto made = BlockJournal::create({});
  ASSERT_TRUE(made);
  EXPECT_EQ((*made)->prepareState(300'000), 0);
  EXPECT_EQ((*made)->prepareState(400'000), ENOSPC);
}

// What is recovered then is what the document held before it outgrew the journal.
TEST_F(BlockJournalTest, DocumentGoesOnWhenItsBlocksOutgrowTheJournal) {
  constexpr std::uint64_t kMost = 400'000;
  constexpr std::uint64_t kApart = 16;  // bytes, so that pieces of 8 bytes never become neighbours
  const auto piece = pattern(8, 1);
  begin();
  std::uint64_t pieces = 0;
  while (!buffer_->journal()->isBehind() && pieces < kMost) {
    write(*buffer_, piece, pieces++ * kApart);
  }
  ASSERT_GT(pieces, 300'000U);
  ASSERT_LT(pieces, kMost) << "it holds more than it has room for";
  EXPECT_EQ(services_->consoleLines().size(), 1U);
  for (int further = 0; further < 1000; ++further) {
    write(*buffer_, piece, pieces++ * kApart);
  }
  buffer_->setWaypoint();
  const auto lines = services_->consoleLines();
  ASSERT_EQ(lines.size(), 1U) << "it is told once";
  EXPECT_TRUE(lines[0].starts_with("There is no room for the journal of a recording")) << lines[0];
  EXPECT_EQ(buffer_->blocklist().size(), pieces);
  support::Bytes last(piece.size());
  EXPECT_EQ(buffer_->readDataInto(last.data(), last.size(), (pieces - 1) * kApart).byteCount,
            last.size());
  EXPECT_EQ(last, piece);

  auto replay = JournalReplay::begin(*file_);
  ASSERT_TRUE(replay);
  replay->run();
  const std::uint64_t kept = replay->list().size();
  // All but perhaps the piece that did not fit, and those after it.
  EXPECT_GE(kept, pieces - 1001);
  EXPECT_LE(kept, pieces - 1000);
  EXPECT_EQ(replay->fillSize(), (kept - 1) * kApart + piece.size());

  buffer_->cutoffBufferAfterPosition(kApart / 8 * 1000);
  EXPECT_FALSE(buffer_->journal()->isBehind()) << "there is room again";
  expectReplayed();
  write(*buffer_, piece, 0);
  expectReplayed();
  buffer_->undo();
  EXPECT_TRUE(buffer_->journal()->isBehind());
  EXPECT_EQ(services_->consoleLines().size(), 1U);
}

TEST_F(BlockJournalTest, NothingIsRecordedBeforeTheFirstState) {
  auto made = BlockJournal::create({});
  ASSERT_TRUE(made);
  (*made)->merged();
  platform::PosixFile file(::dup((*made)->descriptor()));
  EXPECT_FALSE(JournalReplay::begin(file));
  EXPECT_TRUE((*made)->wantsSettling());
}

TEST_F(BlockJournalTest, AnythingElseThanAJournalIsRefused) {
  platform::PosixFile nothing(::dup(0));
  EXPECT_FALSE(readJournalOrigin(nothing));
  auto memory = platform::SharedMemory::create("zeros", journal::kBytes);
  ASSERT_TRUE(memory);
  platform::PosixFile zeros(::dup((*memory)->descriptor()));
  EXPECT_EQ(readJournalOrigin(zeros).error(), EBADMSG);
  EXPECT_EQ(JournalReplay::begin(zeros).error(), EBADMSG);
}

// Bytes that a dying program may have overwritten: the replay ends there.
class DamagedJournalTest : public BlockJournalTest {
 protected:
  /// Writes `value` over the number at an offset of the area in use.
  void overwrite(std::uint64_t offset, std::uint64_t value) {
    std::uint64_t published = 0;
    static_cast<void>(file_->readAt(&published, sizeof published, 8));
    const auto area = journal::areaOffset(journal::unpacked(published).area);
    ASSERT_EQ(file_->writeAt(&value, sizeof value, area + offset).byteCount, sizeof value);
  }

  std::size_t stepsReplayed() {
    auto replay = JournalReplay::begin(*file_);
    std::size_t steps = 0;
    while (replay && replay->step()) {
      ++steps;
    }
    return steps;
  }
};

TEST_F(DamagedJournalTest, EndsTheReplayAtTheRecordThatMakesNoSense) {
  begin();
  writeSequence(6, 80);
  EXPECT_EQ(stepsReplayed(), 6U);
  overwrite(sizeof(journal::Record) * 4, 99);  // the kind of the fourth write
  EXPECT_EQ(stepsReplayed(), 3U);
  overwrite(sizeof(journal::Record) * 2, 7);  // a state that was never kept
  EXPECT_EQ(stepsReplayed(), 1U);
}

TEST_F(DamagedJournalTest, StateThatIsLongerThanTheJournalIsRefused) {
  begin();
  overwrite(8, 1'000'000'000'000);  // the number of blocks
  EXPECT_FALSE(JournalReplay::begin(*file_));
}

// The list relies on it that they do not overlap.
TEST_F(DamagedJournalTest, BlockOfAStateThatIsTooLongEndsWhereTheNextOneBegins) {
  constexpr std::size_t kSize = 2 * sizeof(std::uint64_t);  // where it is in a block
  writeSequence(4, 80);
  begin();
  overwrite(journal::stateBytes(0) + kSize, 1000);
  expectReplayed();
  write(*buffer_, pattern(40, 9), 100);
  buffer_->cutoffBufferBeforePosition(2);
  write(*buffer_, pattern(200, 10), 8);
  expectReplayed();
}

TEST_F(DamagedJournalTest, OnlyTheLastBlockOfAStateAtAnAddressIsThere) {
  writeSequence(3, 80);
  begin();
  overwrite(journal::stateBytes(1), 160);  // the address of the second block is the third's
  write(*buffer_, pattern(160, 9), 40);
  buffer_->cutoffBufferAfterPosition(24);
  auto replay = JournalReplay::begin(*file_);
  ASSERT_TRUE(replay);
  EXPECT_EQ(replay->list().reachableBlocks(),
            (std::vector<OVBlock>{OVBlock(0, 0, 80), OVBlock(160, 160, 80)}));
  replay->run();
  EXPECT_EQ(replay->list().reachableBlocks(),
            (std::vector<OVBlock>{OVBlock(0, 0, 40), OVBlock(40, 240, 152)}));
}

}  // namespace
