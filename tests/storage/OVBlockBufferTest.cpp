#include "storage/OVBlockBuffer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <limits>

#include "storage/BlockBufferFixture.h"
#include "support/fakes/RecordingDelegate.h"

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
using testing::SizeIs;

constexpr auto kHighest = std::numeric_limits<std::uint64_t>::max();

class OVBlockBufferTest : public support::BlockBufferFixture {};

TEST_F(OVBlockBufferTest, IsEmptyAtFirst) {
  EXPECT_THAT(buffer_->blocklist(), IsEmpty());
  EXPECT_THAT(buffer_->waypointStack(), IsEmpty());
  EXPECT_EQ(buffer_->f_write_pos(), 0U);
  EXPECT_EQ(buffer_->bufferFillSize(), 0U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 0U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 0U);
  EXPECT_EQ(buffer_->waypointPos(), 0U);
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 0U);
  EXPECT_EQ(buffer_->redoState(), nullptr);
  EXPECT_TRUE(buffer_->delegate().expired());
}

TEST_F(OVBlockBufferTest, AlwaysHasTheWorkingFormat) {
  EXPECT_EQ(buffer_->format(), platform::kWorkingFormat);
}

TEST_F(OVBlockBufferTest, MakesItsFileInTheTemporaryDirectory) {
  EXPECT_THAT(files_.templates(), ElementsAre("/nowhere/orvoXXXXXX"));
  EXPECT_EQ(buffer_->f_file_name(), "/nowhere/orvo000001");
}

TEST_F(OVBlockBufferTest, ClosesItsFileAtItsEnd) {
  EXPECT_EQ(files_.openFiles(), 1U);
  buffer_.reset();
  EXPECT_EQ(files_.openFiles(), 0U);
}

TEST_F(OVBlockBufferTest, WriteInTheMiddleLeavesHeadSplitTailAndNewBlockInThatOrder) {
  const Bytes first = pattern(1000, 1);
  const Bytes second = pattern(500, 2);
  write(*buffer_, first, 0);
  write(*buffer_, second, 250);
  EXPECT_THAT(buffer_->blocklist(),
              ElementsAre(OVBlock(0, 0, 250), OVBlock(750, 750, 250), OVBlock(250, 1000, 500)));
  EXPECT_EQ(read(*buffer_, 1000, 0), part(first, 0, 250) + second + part(first, 750, 1000));
}

TEST_F(OVBlockBufferTest, WriteExactlyOverABlockReplacesIt) {
  writeSequence(1, 1000);
  const Bytes second = pattern(1000, 2);
  write(*buffer_, second, 0);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 1000, 1000)));
  EXPECT_EQ(read(*buffer_, 1000, 0), second);
}

TEST_F(OVBlockBufferTest, WriteFromTheStartOfABlockTrimsItsHead) {
  writeSequence(1, 1000);
  write(*buffer_, pattern(400, 2), 0);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(400, 400, 600), OVBlock(0, 1000, 400)));
}

TEST_F(OVBlockBufferTest, WriteFromInsideABlockToItsEndOrBeyondTrimsItsTail) {
  writeSequence(1, 1000);
  write(*buffer_, pattern(400, 2), 600);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 600), OVBlock(600, 1000, 400)));
  write(*buffer_, pattern(800, 3), 500);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 500), OVBlock(500, 1400, 800)));
}

TEST_F(OVBlockBufferTest, OnlyWritesPastTheEndLengthenTheRecording) {
  writeSequence(1, 1000);
  EXPECT_EQ(buffer_->bufferFillSize(), 1000U);
  write(*buffer_, pattern(100, 2), 500);
  EXPECT_EQ(buffer_->bufferFillSize(), 1000U);
  write(*buffer_, pattern(100, 3), 900);
  EXPECT_EQ(buffer_->bufferFillSize(), 1000U);
  write(*buffer_, pattern(100, 4), 901);
  EXPECT_EQ(buffer_->bufferFillSize(), 1001U);
  write(*buffer_, pattern(80, 5), 2000);
  EXPECT_EQ(buffer_->bufferFillSize(), 2080U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 260U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 260U);
}

TEST_F(OVBlockBufferTest, CountsOnlyWholeFrames) {
  write(*buffer_, pattern(15, 1), 0);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 1U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 1U);
}

TEST_F(OVBlockBufferTest, OnlyEverAppendsToItsFile) {
  writeSequence(3, 100);
  write(*buffer_, pattern(50, 9), 0);
  buffer_->cutoffBufferAfterPosition(1);
  EXPECT_EQ(buffer_->f_write_pos(), 350U);
  write(*buffer_, pattern(8, 9), 0);
  EXPECT_EQ(buffer_->f_write_pos(), 358U);
}

TEST_F(OVBlockBufferTest, TwentySequentialWritesStayTwentyBlocks) {
  const Bytes all = writeSequence(20, 80);
  EXPECT_THAT(buffer_->blocklist(), SizeIs(20));
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 20U);
  EXPECT_EQ(read(*buffer_, 2000, 0), all);
}

TEST_F(OVBlockBufferTest, TheTwentyFirstSequentialWriteLeavesOneBlock) {
  const Bytes all = writeSequence(21, 80);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 1680)));
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 0U);
  EXPECT_EQ(read(*buffer_, 2000, 0), all);
}

TEST_F(OVBlockBufferTest, EmptyWritesCountTowardsOptimizing) {
  writeSequence(10, 80);
  for (int i = 0; i < 10; ++i) {
    buffer_->writeData(nullptr, 5000, 0);
  }
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 20U);
  buffer_->writeData(nullptr, 5000, 0);
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 0U);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 800), OVBlock(5000, 800, 0)));
  EXPECT_EQ(buffer_->bufferFillSize(), 5000U) << "an empty write lengthens the recording, too";
}

TEST_F(OVBlockBufferTest, AnEmptyWriteSplitsTheBlockThatHoldsItsOffset) {
  const Bytes all = writeSequence(1, 1000);
  buffer_->writeData(nullptr, 400, 0);
  EXPECT_THAT(buffer_->blocklist(),
              ElementsAre(OVBlock(0, 0, 400), OVBlock(400, 400, 600), OVBlock(400, 1000, 0)));
  EXPECT_EQ(read(*buffer_, 1000, 0), all);
}

TEST_F(OVBlockBufferTest, OptimizeMergesOnRequest) {
  const Bytes all = writeSequence(5, 80);
  buffer_->optimize();
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 400)));
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 0U);
  EXPECT_EQ(read(*buffer_, 400, 0), all);
}

TEST_F(OVBlockBufferTest, ReadCrossesBlocksInAddressOrderWhateverTheOrderOfTheList) {
  const Bytes second = pattern(100, 1);
  const Bytes first = pattern(100, 2);
  write(*buffer_, second, 100);
  write(*buffer_, first, 0);
  const Bytes all = first + second;
  EXPECT_EQ(read(*buffer_, 200, 0), all);
  EXPECT_EQ(read(*buffer_, 120, 40), part(all, 40, 160));
}

TEST_F(OVBlockBufferTest, ReadReportsTheDestinationAndWholeFrames) {
  writeSequence(1, 100);
  float destination[32];
  const BufferReadResult result = buffer_->readDataInto(destination, 30, 0);
  EXPECT_EQ(result.data, destination);
  EXPECT_EQ(result.frameCount, 3U);
  EXPECT_EQ(result.byteCount, 30U);
}

TEST_F(OVBlockBufferTest, ReadEndsAtTheEndAndLeavesTheRestOfTheDestination) {
  const Bytes all = writeSequence(1, 100);
  Bytes destination(64, 0xAA);
  const BufferReadResult result = buffer_->readDataInto(destination.data(), 64, 60);
  EXPECT_EQ(result.byteCount, 40U);
  EXPECT_EQ(result.frameCount, 5U);
  EXPECT_EQ(part(destination, 0, 40), part(all, 60, 100));
  EXPECT_EQ(part(destination, 40, 64), Bytes(24, 0xAA));
}

TEST_F(OVBlockBufferTest, ReadAtOrPastTheEndGivesNothing) {
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 0))) << "of an empty buffer";
  writeSequence(1, 100);
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 100)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, kHighest)));
}

TEST_F(OVBlockBufferTest, ReadOfNoBytesGivesNothing) {
  writeSequence(1, 100);
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 0, 0)));
}

TEST_F(OVBlockBufferTest, ReadStopsAtAHoleAndGivesNothingInIt) {
  const Bytes all = writeSequence(1, 100);
  write(*buffer_, pattern(100, 2), 300);
  EXPECT_EQ(read(*buffer_, 400, 0), all);
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 100)));
  EXPECT_EQ(read(*buffer_, 400, 300), pattern(100, 2));
}

TEST_F(OVBlockBufferTest, ReadPastTheEndAndReadOfAnEmptyListWaitForNoLock) {
  float destination[4];
  buffer_->cutoffBufferAfterPosition(100);
  buffer_->lock();
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 0)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 16, 800)));
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 100U);
  buffer_->unlock();
}

TEST_F(OVBlockBufferTest, ReadsNeighboursInTheFileInOneGo) {
  const Bytes all = writeSequence(20, 80);
  EXPECT_EQ(read(*buffer_, 1600, 0), all);
  EXPECT_EQ(files_.reads(), 1U);
}

TEST_F(OVBlockBufferTest, RefusesACountThatIsNegativeAsASignedNumber) {
  writeSequence(1, 100);
  float destination[4];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, std::uint64_t{1} << 63, 0)));
  EXPECT_THAT(services_->consoleLines(), SizeIs(1));
}

TEST_F(OVBlockBufferTest, RefusesAWriteThatWouldEndPastTheHighestAddress) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  writeSequence(1, 96);
  write(*buffer_, pattern(16, 2), kHighest - 8);
  EXPECT_THAT(services_->consoleLines(), SizeIs(1));
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 96)));
  EXPECT_EQ(buffer_->f_write_pos(), 96U);
  EXPECT_EQ(buffer_->bufferFillSize(), 96U);
  EXPECT_EQ(buffer_->blocksAddedSinceOptimization(), 1U);
  EXPECT_EQ(files_.writes(), 1U);
  EXPECT_THAT(delegate->calls(), SizeIs(1));
}

TEST_F(OVBlockBufferTest, TakesAWriteThatEndsAtTheHighestAddress) {
  const Bytes bytes = pattern(16, 2);
  write(*buffer_, bytes, kHighest - 16);
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
  EXPECT_EQ(buffer_->bufferFillSize(), kHighest);
  EXPECT_EQ(read(*buffer_, 100, kHighest - 16), bytes);
}

TEST_F(OVBlockBufferTest, LocatesAddresses) {
  writeSequence(1, 100);
  write(*buffer_, pattern(50, 2), 150);
  buffer_->lock();
  const auto inside = buffer_->getFileOffsetForLinearAddress(170);
  EXPECT_EQ(inside.fileOffset, 120U);
  EXPECT_EQ(inside.bytesAvailable, 30U);
  EXPECT_FALSE(inside.notFound);
  for (const std::uint64_t address : {std::uint64_t{100}, std::uint64_t{200}, kHighest}) {
    const auto location = buffer_->getFileOffsetForLinearAddress(address);
    EXPECT_EQ(location.fileOffset, 0U);
    EXPECT_EQ(location.bytesAvailable, 0U);
    EXPECT_TRUE(location.notFound);
  }
  buffer_->unlock();
}

TEST_F(OVBlockBufferTest, ReversingDoesNothing) {
  const Bytes all = writeSequence(2, 80);
  buffer_->reverseBuffer();
  EXPECT_EQ(read(*buffer_, 160, 0), all);
}

TEST_F(OVBlockBufferTest, GivesThePowerOfAFrameAsTheSignedMeanOfItsChannels) {
  const float frames[] = {0.25F, 0.75F, -1.0F, 0.5F};
  buffer_->writeData(frames, 0, sizeof frames);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.5);
  EXPECT_EQ(buffer_->powerAtPosition(1), -0.25);
}

TEST_F(OVBlockBufferTest, AddsTheChannelsOfAPowerInSinglePrecision) {
  const float frame[] = {16777216.0F, 1.0F};
  buffer_->writeData(frame, 0, sizeof frame);
  EXPECT_EQ(buffer_->powerAtPosition(0), 8388608.0);
}

TEST_F(OVBlockBufferTest, HasThePowerOneWhereThereIsNoWholeFrameInOneBlock) {
  const float frames[] = {0.25F, 0.25F, 0.25F, 0.25F};
  EXPECT_EQ(buffer_->powerAtPosition(0), 1.0) << "of an empty buffer";
  buffer_->writeData(frames, 0, sizeof frames);
  EXPECT_EQ(buffer_->powerAtPosition(2), 1.0) << "at the end";
  EXPECT_EQ(buffer_->powerAtPosition(1000), 1.0) << "beyond the end";
  buffer_->writeData(frames, 80, 8);
  EXPECT_EQ(buffer_->powerAtPosition(5), 1.0) << "in a hole";
  buffer_->writeData(nullptr, 12, 0);
  EXPECT_EQ(buffer_->powerAtPosition(1), 1.0) << "split across two blocks";
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.25);
}

TEST_F(OVBlockBufferTest, TellsItsDelegateOfEveryWriteOutsideTheLock) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  delegate->during([this] {
    buffer_->lock();
    buffer_->unlock();
  });
  buffer_->setDelegate(delegate);
  EXPECT_EQ(buffer_->delegate().lock(), delegate);
  const Bytes bytes = pattern(96, 1);
  write(*buffer_, bytes, 40);
  buffer_->writeData(nullptr, 7, 0);
  EXPECT_THAT(delegate->calls(), ElementsAre(support::DelegateCall{bytes.data(), 40, 96, 0},
                                             support::DelegateCall{nullptr, 7, 0, 0}));
}

TEST_F(OVBlockBufferTest, ToldOfTheTwentyFirstWriteADelegateSeesTheListOptimized) {
  const auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  std::size_t blocksSeen = 0;
  delegate->during([&] { blocksSeen = buffer_->blocklist().size(); });
  writeSequence(21, 8);
  EXPECT_EQ(blocksSeen, 1U);
}

TEST_F(OVBlockBufferTest, DoesNotKeepItsDelegateAlive) {
  auto delegate = std::make_shared<support::RecordingDelegate>();
  buffer_->setDelegate(delegate);
  delegate.reset();
  write(*buffer_, pattern(8, 1), 0);
  EXPECT_TRUE(buffer_->delegate().expired());
}

class OVBlockBufferTemporaryFileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = std::filesystem::temp_directory_path() / "orvo-test-XXXXXX";
    ASSERT_NE(::mkdtemp(path.data()), nullptr);
    path_ = path;
  }
  void TearDown() override { std::filesystem::remove_all(path_); }

  std::filesystem::path path_;
};

TEST_F(OVBlockBufferTemporaryFileTest, IsRemovedByItsPath) {
  const auto file = path_ / "take";
  std::ofstream(file) << "x";
  OVBlockBuffer::removeTempFile(file.string());
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(OVBlockBufferTemporaryFileTest, OneThatIsMissingOrNotGivenIsIgnored) {
  const support::InstalledRecordingServices services;
  const auto file = path_ / "take";
  std::ofstream(file) << "x";
  OVBlockBuffer::removeTempFile((path_ / "missing").string());
  OVBlockBuffer::removeTempFile(std::nullopt);
  EXPECT_TRUE(std::filesystem::exists(file)) << "nothing else is removed";
  EXPECT_THAT(services->alerts(), testing::IsEmpty());
  EXPECT_THAT(services->postedAlerts(), testing::IsEmpty());
  EXPECT_THAT(services->consoleLines(), testing::IsEmpty());
}

TEST(OVBlockBufferOnDiskTest, KeepsWhatItIsGivenInAFileWithoutAName) {
  const auto buffer = OVBlockBuffer::init();
  ASSERT_NE(buffer, nullptr);
  EXPECT_FALSE(std::filesystem::exists(buffer->f_file_name()));
  const Bytes first = pattern(100000, 1);
  const Bytes second = pattern(50000, 2);
  write(*buffer, first, 0);
  write(*buffer, second, 25000);
  EXPECT_EQ(read(*buffer, 200000, 0), part(first, 0, 25000) + second + part(first, 75000, 100000));
}

}  // namespace
