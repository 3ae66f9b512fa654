#include "storage/OVDiskAudioBuffer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/GlobalQueue.h"
#include "platform/PosixFile.h"
#include "storage/TransferHelpers.h"
#include "support/Eventually.h"
#include "support/FailingTemporaryFiles.h"
#include "support/RecordingDelegate.h"
#include "support/RecordingServices.h"
#include "support/TemporaryFolder.h"

namespace {

using storagetest::Bytes;
using storagetest::isNothing;
using storagetest::part;
using storagetest::pattern;
using storagetest::read;
using storagetest::write;
using storagetest::operator+;
using support::eventually;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t kCache = OVDiskAudioBuffer::kCacheCapacity;

const support::RecordedAlert kCannotOpen = {"couldn't open temp file for writing!",
                                            "The file /nowhere/orvo_000001.flt couldn't be opened "
                                            "for writing. This shouldn't happen! Check "
                                            "your permissions."};

Bytes readNoCache(OVDiskAudioBuffer& buffer, std::size_t count, std::uint64_t offset) {
  Bytes bytes(count);
  bytes.resize(buffer.readDataIntoNoCache(bytes.data(), count, offset).byteCount);
  return bytes;
}

class ADiskAudioBuffer : public testing::Test {
 protected:
  void waitForTheFill() const {
    ASSERT_TRUE(eventually([this] { return !buffer_->cacheFilling(); }));
  }

  // A recording of `count` bytes whose first bytes are in the cache.
  Bytes recordAndCache(std::size_t count) {
    const Bytes bytes = pattern(count, 1);
    write(*buffer_, bytes, 0);
    buffer_->fillCacheFromPosition(0);
    return bytes;
  }

  support::InstalledRecordingServices services_;
  support::FailingTemporaryFiles files_;
  platform::TemporaryFilesInstallation installation_{files_};
  std::shared_ptr<OVDiskAudioBuffer> buffer_ = OVDiskAudioBuffer::init();
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
};

// Making and ending

TEST_F(ADiskAudioBuffer, HasARegisteredFileWithPrefixAndExtension) {
  EXPECT_THAT(files_.templates(), ElementsAre("/nowhere/orvo_XXXXXX.flt"));
  EXPECT_EQ(buffer_->f_file_name(), "/nowhere/orvo_000001.flt");
  EXPECT_THAT(services_->registeredTempFiles(), ElementsAre(buffer_->f_file_name()));
  EXPECT_EQ(buffer_->f_size(), 0U);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U);
}

TEST_F(ADiskAudioBuffer, WhoseFileCannotBeMadeIsNoneAndTellsThePath) {
  support::FailingTemporaryFiles failing;
  failing.failCreation(EACCES);
  const platform::TemporaryFilesInstallation installation(failing);
  services_->clear();
  EXPECT_EQ(OVDiskAudioBuffer::init(), nullptr);
  EXPECT_THAT(services_->alerts(), ElementsAre(kCannotOpen));
  EXPECT_THAT(services_->registeredTempFiles(), IsEmpty());
}

TEST_F(ADiskAudioBuffer, ClosesItsFileAtItsEnd) {
  EXPECT_EQ(files_.openFiles(), 1U);
  buffer_.reset();
  EXPECT_EQ(files_.openFiles(), 0U);
}

// The operating system's temporary files in a folder of the test's own.
class FilesInAFolder : public platform::PosixTemporaryFiles {
 public:
  [[nodiscard]] std::string directory() const override { return folder_.path() + "/"; }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      paths.push_back(entry.path().string());
    }
    return paths;
  }

 private:
  support::TemporaryFolder folder_;
};

TEST(ADiskAudioBufferOnADisk, KeepsItsNamedFileUntilItsEnd) {
  const support::InstalledRecordingServices services;
  FilesInAFolder installed;
  const platform::TemporaryFilesInstallation installation(installed);
  auto buffer = OVDiskAudioBuffer::init();
  ASSERT_NE(buffer, nullptr);
  EXPECT_THAT(installed.names(), ElementsAre(buffer->f_file_name()));
  write(*buffer, pattern(4096, 1), 0);
  EXPECT_EQ(std::filesystem::file_size(buffer->f_file_name()), 4096U);
  buffer.reset();
  EXPECT_THAT(installed.names(), IsEmpty());
}

TEST(ADiskAudioBufferOnADisk, LivesInANewRegisteredFileAfterACutBefore) {
  const support::InstalledRecordingServices services;
  FilesInAFolder files;
  const platform::TemporaryFilesInstallation installation(files);
  const auto buffer = OVDiskAudioBuffer::init();
  ASSERT_NE(buffer, nullptr);
  const std::string first = buffer->f_file_name();
  const Bytes bytes = pattern(4096, 1);
  write(*buffer, bytes, 0);
  buffer->cutoffBufferBeforePosition(100);
  EXPECT_NE(buffer->f_file_name(), first);
  EXPECT_THAT(files.names(), ElementsAre(buffer->f_file_name())) << "the old one is deleted";
  EXPECT_THAT(services->registeredTempFiles(), ElementsAre(first, buffer->f_file_name()));
  EXPECT_EQ(read(*buffer, 8192, 0), part(bytes, 800, 4096));
}

TEST(ADiskAudioBufferOnADisk, ShortensItsFileWithACutAfter) {
  const support::InstalledRecordingServices services;
  FilesInAFolder files;
  const platform::TemporaryFilesInstallation installation(files);
  const auto buffer = OVDiskAudioBuffer::init();
  ASSERT_NE(buffer, nullptr);
  write(*buffer, pattern(4096, 1), 0);
  buffer->cutoffBufferAfterPosition(10);
  EXPECT_EQ(std::filesystem::file_size(buffer->f_file_name()), 80U);
}

TEST(ADiskAudioBufferOnADisk, DeletesAFileByItsPathAndIgnoresNone) {
  FilesInAFolder files;
  const auto created = files.createNamed(files.directory() + "orvo_XXXXXX.flt");
  OVDiskAudioBuffer::removeTempFile(created.path);
  EXPECT_THAT(files.names(), IsEmpty());
  OVDiskAudioBuffer::removeTempFile(created.path);
  OVDiskAudioBuffer::removeTempFile(std::nullopt);
}

// Writing and reading the file

TEST_F(ADiskAudioBuffer, WritesInPlace) {
  const Bytes first = pattern(800, 1);
  const Bytes second = pattern(80, 2);
  write(*buffer_, first, 0);
  write(*buffer_, second, 160);
  EXPECT_EQ(buffer_->f_size(), 800U);
  EXPECT_EQ(read(*buffer_, 800, 0), part(first, 0, 160) + second + part(first, 240, 800));
}

TEST_F(ADiskAudioBuffer, ReadsZerosWhereNothingWasWritten) {
  const Bytes sound = pattern(80, 1);
  write(*buffer_, sound, 160);
  EXPECT_EQ(read(*buffer_, 240, 0), Bytes(160, 0) + sound);
}

TEST_F(ADiskAudioBuffer, ReadsWholeFramesFromTheFile) {
  const Bytes bytes = pattern(85, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 10U);
  EXPECT_EQ(readNoCache(*buffer_, 31, 0), part(bytes, 0, 24));
  EXPECT_EQ(readNoCache(*buffer_, 100, 0), part(bytes, 0, 80));
  EXPECT_EQ(readNoCache(*buffer_, 100, 3), part(bytes, 3, 83)) << "frames count from the offset";
  float unused = 0.0F;
  EXPECT_TRUE(isNothing(buffer_->readDataIntoNoCache(&unused, 7, 0)));
  EXPECT_TRUE(isNothing(buffer_->readDataIntoNoCache(&unused, 8, 80)));
}

TEST_F(ADiskAudioBuffer, LeavesTheRestOfTheDestinationAsItWas) {
  write(*buffer_, pattern(85, 1), 0);
  Bytes destination(200, 0x55);
  ASSERT_EQ(buffer_->readDataInto(destination.data(), 200, 0).byteCount, 80U);
  EXPECT_EQ(part(destination, 80, 200), Bytes(120, 0x55));
}

TEST_F(ADiskAudioBuffer, KeepsItsThreeSizesAlike) {
  write(*buffer_, pattern(804, 1), 8);
  EXPECT_EQ(buffer_->f_size(), 812U);
  EXPECT_EQ(buffer_->bufferCapacityInFrames(), 101U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 101U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 101U);
}

TEST_F(ADiskAudioBuffer, RefusesAWriteThatEndsPastTheHighestAddress) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(16, 1), ~std::uint64_t{0} - 8);
  EXPECT_EQ(buffer_->f_size(), 0U);
  EXPECT_EQ(files_.writes(), 0U);
  EXPECT_THAT(delegate_->calls(), IsEmpty());
  EXPECT_EQ(services_->consoleLinesWith("refused to write 16 bytes"), 1U);
}

TEST_F(ADiskAudioBuffer, SurvivesReadsAtTheHighestAddresses) {
  recordAndCache(800);
  Bytes destination(16);
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination.data(), 16, ~std::uint64_t{0} - 8)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination.data(), 16, ~std::uint64_t{0})));
}

TEST_F(ADiskAudioBuffer, HoldsTheFramesToPlayForItsCallers) {
  buffer_->setFramesToPlay(44100);
  EXPECT_EQ(buffer_->framesToPlay(), 44100U);
}

TEST_F(ADiskAudioBuffer, UndoRedoReverseAndWaypointsChangeNothing) {
  const Bytes bytes = recordAndCache(8000);
  const std::string name = buffer_->f_file_name();
  buffer_->setWaypoint();
  buffer_->cutoffBufferAfterPosition(500);
  buffer_->undo();
  buffer_->undo();
  buffer_->redo();
  buffer_->reverseBuffer();
  EXPECT_EQ(buffer_->f_size(), 4000U);
  EXPECT_EQ(buffer_->f_file_name(), name);
  EXPECT_EQ(readNoCache(*buffer_, 8000, 0), part(bytes, 0, 4000));
}

// The cache

TEST_F(ADiskAudioBuffer, ServesAReadInsideTheCachedRangeFromTheCacheToTheByte) {
  const Bytes bytes = recordAndCache(8000);
  const std::uint64_t reads = files_.reads();
  Bytes destination(999);
  const auto result = buffer_->readDataInto(destination.data(), 999, 17);
  EXPECT_EQ(result.data, reinterpret_cast<float*>(destination.data()));
  EXPECT_EQ(result.byteCount, 999U);
  EXPECT_EQ(result.frameCount, 124U);
  EXPECT_EQ(destination, part(bytes, 17, 1016));
  EXPECT_EQ(files_.reads(), reads) << "the file was not asked";
  EXPECT_FALSE(buffer_->cacheFilling());
}

TEST_F(ADiskAudioBuffer, ReadsWhatCrossesTheCachesEndFromTheFileAndQueuesOneFill) {
  const Bytes bytes = pattern(kCache + 4096, 1);
  write(*buffer_, bytes, 0);
  buffer_->fillCacheFromPosition(0);
  ASSERT_EQ(buffer_->cache_fillsize(), kCache);
  EXPECT_EQ(read(*buffer_, 800, kCache - 400), part(bytes, kCache - 400, kCache + 400));
  waitForTheFill();
  EXPECT_EQ(buffer_->cached_position(), kCache - 400);
  EXPECT_EQ(buffer_->cache_fillsize(), 4496U);
}

// Holds every transfer of the disk until it is opened.
class ClosedGate {
 public:
  std::function<void()> hook() {
    return [opened = opened_] { opened.wait(); };
  }
  void open() { promise_.set_value(); }

 private:
  std::promise<void> promise_;
  std::shared_future<void> opened_ = promise_.get_future().share();
};

// All threads of the global queue stand at the gate: what is submitted to a queue stays there.
class StoppedQueues {
 public:
  StoppedQueues() {
    for (std::size_t i = 0; i < platform::GlobalQueue::kMaximumThreads; ++i) {
      platform::globalQueue().async([hook = gate_.hook(), standing = standing_] {
        ++*standing;
        hook();
      });
    }
    EXPECT_TRUE(
        eventually([this] { return *standing_ == platform::GlobalQueue::kMaximumThreads; }));
  }
  void go() { gate_.open(); }

 private:
  ClosedGate gate_;
  std::shared_ptr<std::atomic<std::size_t>> standing_ =
      std::make_shared<std::atomic<std::size_t>>(0);
};

TEST_F(ADiskAudioBuffer, QueuesOneFillForManyMisses) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  StoppedQueues queues;
  for (std::uint64_t offset = 800; offset < 8000; offset += 800) {
    EXPECT_EQ(read(*buffer_, 800, offset), part(bytes, offset, offset + 800));
    EXPECT_TRUE(buffer_->cacheFilling());
  }
  EXPECT_EQ(files_.reads(), 9U) << "no fill has run";
  queues.go();
  waitForTheFill();
  EXPECT_EQ(files_.reads(), 10U);
  EXPECT_EQ(buffer_->cached_position(), 800U) << "where the first miss was";
  EXPECT_EQ(buffer_->cache_fillsize(), 7200U);
}

TEST_F(ADiskAudioBuffer, IsReadWhileAFillWaitsForASlowDisk) {
  const Bytes bytes = recordAndCache(8000);
  ClosedGate gate;
  files_.beforeReads(gate.hook());
  auto fill = std::async(std::launch::async, [this] { buffer_->fillCacheFromPosition(4000); });
  ASSERT_TRUE(eventually([this] { return buffer_->cached_position() == 4000; }));
  EXPECT_TRUE(buffer_->cacheFilling());
  Bytes destination(80);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 4000, 80), 0U)
      << "the cache is empty while it is being filled";
  gate.open();
  fill.get();
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 4000, 80), 80U);
  EXPECT_EQ(destination, part(bytes, 4000, 4080));
}

TEST_F(ADiskAudioBuffer, MissesWhatBeginsBeforeOrEndsBehindTheCache) {
  recordAndCache(8000);
  buffer_->fillCacheFromPosition(800);
  Bytes destination(8000);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 799, 8), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 7993, 8), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 800, 7201), 0U);
  EXPECT_EQ(buffer_->getDataFromCache(destination.data(), 800, 7200), 7200U);
}

TEST_F(ADiskAudioBuffer, FillsAheadWhenLessThanFourReadsRemain) {
  write(*buffer_, pattern(kCache + 80000, 1), 0);
  buffer_->fillCacheFromPosition(0);
  Bytes destination(800);
  const std::uint64_t exactlyFour = kCache - 5 * 800;
  ASSERT_EQ(buffer_->getDataFromCache(destination.data(), exactlyFour, 800), 800U);
  EXPECT_EQ(buffer_->cached_position(), 0U) << "four remain: enough";
  ASSERT_EQ(buffer_->getDataFromCache(destination.data(), exactlyFour + 1, 800), 800U);
  EXPECT_EQ(buffer_->cached_position(), exactlyFour + 1) << "filled before the call returned";
  EXPECT_EQ(buffer_->cache_fillsize(), kCache + 80000 - exactlyFour - 1);
  EXPECT_FALSE(buffer_->cacheFilling());
}

TEST_F(ADiskAudioBuffer, FillsNotAheadWhileAFillStandsInTheQueue) {
  write(*buffer_, pattern(8000, 1), 0);
  buffer_->fillCacheFromPosition(4000);
  StoppedQueues queues;
  ASSERT_THAT(read(*buffer_, 800, 0), SizeIs(800)) << "a miss";
  EXPECT_THAT(read(*buffer_, 800, 7200), SizeIs(800)) << "the last of the cache";
  EXPECT_EQ(buffer_->cached_position(), 4000U);
  EXPECT_EQ(buffer_->cache_fillsize(), 4000U);
  queues.go();
  waitForTheFill();
  EXPECT_EQ(buffer_->cached_position(), 0U);
  EXPECT_THAT(read(*buffer_, 800, 7200), SizeIs(800));
  EXPECT_EQ(buffer_->cached_position(), 7200U) << "now it fills ahead";
}

TEST_F(ADiskAudioBuffer, AnyWriteEmptiesTheCache) {
  const Bytes bytes = recordAndCache(8000);
  write(*buffer_, {}, 100000);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U) << "even one of no bytes far away";
  buffer_->fillCacheFromPosition(0);
  const Bytes later = pattern(80, 2);
  write(*buffer_, later, 0);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U);
  EXPECT_EQ(buffer_->cached_position(), 0U);
  EXPECT_EQ(read(*buffer_, 160, 0), later + part(bytes, 80, 160));
}

TEST_F(ADiskAudioBuffer, AWriteDuringAFillLeavesNoStaleBytesInTheCache) {
  write(*buffer_, pattern(8000, 1), 0);
  ClosedGate gate;
  const auto filling = std::make_shared<std::atomic<bool>>(false);  // the read below queues a fill
  files_.beforeReads([filling, wait = gate.hook()] {
    *filling = true;
    wait();
  });
  auto fill = std::async(std::launch::async, [this] { buffer_->fillCacheFromPosition(0); });
  ASSERT_TRUE(eventually([&filling] { return filling->load(); }));
  const Bytes later = pattern(8000, 2);
  auto writer = std::async(std::launch::async, [&] { write(*buffer_, later, 0); });
  gate.open();
  fill.get();
  writer.get();
  EXPECT_EQ(read(*buffer_, 800, 0), part(later, 0, 800));
}

TEST_F(ADiskAudioBuffer, SequentialReadsGiveTheWholeRecording) {
  const Bytes bytes = pattern(2 * kCache + 12345 * 8, 3);
  write(*buffer_, bytes, 0);
  Bytes all;
  for (std::uint64_t at = 0; at < bytes.size(); at += 65536) {
    const Bytes some = read(*buffer_, 65536, at);
    all.insert(all.end(), some.begin(), some.end());
  }
  waitForTheFill();
  EXPECT_EQ(all.size(), bytes.size());
  EXPECT_TRUE(all == bytes);
}

TEST_F(ADiskAudioBuffer, MayEndWhileItsFillStandsInTheQueue) {
  write(*buffer_, pattern(8000, 1), 0);
  const std::weak_ptr<OVDiskAudioBuffer> weak = buffer_;
  ASSERT_THAT(read(*buffer_, 80, 0), SizeIs(80));
  buffer_.reset();
  EXPECT_TRUE(eventually([&] { return weak.expired() && files_.openFiles() == 0; }));
}

// Cuts

TEST_F(ADiskAudioBuffer, CutAfterEndsTheRecording) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(50);
  EXPECT_EQ(buffer_->f_size(), 400U);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 400));
}

TEST_F(ADiskAudioBuffer, CutAfterBeyondTheEndAddsSilence) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(20);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 20U);
  EXPECT_EQ(read(*buffer_, 800, 0), bytes + Bytes(80, 0));
}

TEST_F(ADiskAudioBuffer, CutsDoNotDiscardTheCache) {
  const Bytes bytes = recordAndCache(80000);
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 800)) << "still what was there before the cut";
  buffer_->cutoffBufferBeforePosition(10);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 800));
  EXPECT_THAT(readNoCache(*buffer_, 800, 0), IsEmpty()) << "gone for what goes to the file";
  buffer_->discardCache();
  EXPECT_THAT(read(*buffer_, 800, 0), IsEmpty());
}

TEST_F(ADiskAudioBuffer, CutBeforeKeepsTheTail) {
  const Bytes bytes = pattern(3 * (1 << 20) + 8 * 77, 1);  // several pieces of the copy
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(33);
  EXPECT_EQ(buffer_->f_size(), bytes.size() - 264);
  EXPECT_TRUE(readNoCache(*buffer_, bytes.size(), 0) == part(bytes, 264, bytes.size()));
  EXPECT_EQ(files_.openFiles(), 1U);
}

TEST_F(ADiskAudioBuffer, CutBeforeThatWouldKeepLessThan512BytesKeepsNothing) {
  write(*buffer_, pattern(1016, 1), 0);
  buffer_->cutoffBufferBeforePosition(64);
  EXPECT_EQ(buffer_->f_size(), 0U) << "504 bytes";
  EXPECT_THAT(read(*buffer_, 800, 0), IsEmpty());
}

TEST_F(ADiskAudioBuffer, CutBeforeThatKeepsExactly512BytesKeepsThem) {
  const Bytes bytes = pattern(1024, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(64);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 512, 1024));
}

TEST_F(ADiskAudioBuffer, CutBeforeAPositionPastTheEndEmptiesTheRecording) {
  write(*buffer_, pattern(8000, 1), 0);
  buffer_->cutoffBufferBeforePosition(100000);
  EXPECT_EQ(buffer_->f_size(), 0U);
}

TEST_F(ADiskAudioBuffer, CutBeforeTheStartKeepsEverythingInANewFile) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(0);
  EXPECT_EQ(readNoCache(*buffer_, 8000, 0), bytes);
  EXPECT_THAT(services_->registeredTempFiles(), SizeIs(2));
}

// Levels

TEST_F(ADiskAudioBuffer, GivesTheSignedMeanOfAFrame) {
  const float frames[] = {0.5F, -0.25F, -0.5F, -1.0F};
  buffer_->writeData(frames, 0, sizeof frames);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.125);
  EXPECT_EQ(buffer_->powerAtPosition(1), -0.75);
}

TEST_F(ADiskAudioBuffer, AddsTheChannelsInSinglePrecision) {
  const float frame[] = {1.0F, 1e-9F};
  buffer_->writeData(frame, 0, sizeof frame);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.5);
}

TEST_F(ADiskAudioBuffer, HasNoLevelPastItsEnd) {
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
  EXPECT_EQ(buffer_->powerAtPosition(~std::uint64_t{0}), 0.0);
}

// Failures

TEST_F(ADiskAudioBuffer, TellsAFailedWriteBeforeTheWriteAndCountsItAsWritten) {
  buffer_->setDelegate(delegate_);
  files_.fillUpAfter(30);
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->f_size(), 80U);
  EXPECT_THAT(delegate_->calls(), ElementsAre(support::DelegateCall{nullptr, 0, 0, ENOSPC},
                                              support::DelegateCall{bytes.data(), 0, 80, 0}));
  EXPECT_EQ(read(*buffer_, 80, 0), part(bytes, 0, 24)) << "the whole frames that the disk took";
}

TEST_F(ADiskAudioBuffer, AFailedReadGivesNothingAndEndsItsFill) {
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(EIO);
  EXPECT_THAT(read(*buffer_, 80, 0), IsEmpty());
  waitForTheFill();
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
  files_.failReads(0);
  EXPECT_EQ(read(*buffer_, 80, 0), pattern(80, 1));
}

TEST_F(ADiskAudioBuffer, TellsAFailedReadOnceARead) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(ENXIO);
  EXPECT_THAT(read(*buffer_, 80, 0), IsEmpty());
  waitForTheFill();
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(ENXIO)) << "the fill's own reader tells";
  EXPECT_THAT(readNoCache(*buffer_, 80, 0), IsEmpty());
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(ENXIO, ENXIO));
}

TEST_F(ADiskAudioBuffer, AReadThatEndsWhereTheRecordingDoesIsNoFailure) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(80, 1), 0);
  EXPECT_THAT(readNoCache(*buffer_, 200, 40), SizeIs(40));
  EXPECT_THAT(readNoCache(*buffer_, 8, 80), IsEmpty());
  EXPECT_THAT(delegate_->readErrors(), IsEmpty());
}

TEST_F(ADiskAudioBuffer, ContinuesShortReads) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  files_.shortenReads(7);
  EXPECT_EQ(readNoCache(*buffer_, 800, 0), bytes);
  buffer_->fillCacheFromPosition(0);
  EXPECT_EQ(buffer_->cache_fillsize(), 800U);
}

TEST_F(ADiskAudioBuffer, StaysAsItWasWhenTheNewFileCannotBeMade) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  const std::string name = buffer_->f_file_name();
  files_.failCreation(EMFILE);
  services_->clear();
  buffer_->cutoffBufferBeforePosition(100);
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(services_->alerts()[0].title, kCannotOpen.title);
  EXPECT_EQ(services_->alerts()[0].message,
            "The file /nowhere/orvo_000002.flt couldn't be opened for writing. This shouldn't "
            "happen! Check your permissions.");
  EXPECT_EQ(buffer_->f_file_name(), name);
  EXPECT_EQ(read(*buffer_, 8000, 0), bytes);
}

TEST_F(ADiskAudioBuffer, StaysAsItWasWhenTheDiskFillsUpInTheMiddleOfACut) {
  buffer_->setDelegate(delegate_);
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  files_.fillUpAfter(1000);
  buffer_->cutoffBufferBeforePosition(100);
  EXPECT_EQ(delegate_->calls().back(), (support::DelegateCall{nullptr, 0, 0, ENOSPC}));
  EXPECT_EQ(buffer_->f_file_name(), "/nowhere/orvo_000001.flt");
  EXPECT_EQ(buffer_->f_size(), 8000U);
  EXPECT_EQ(read(*buffer_, 8000, 0), bytes);
  EXPECT_EQ(files_.openFiles(), 1U);
}

TEST_F(ADiskAudioBuffer, StaysAsItWasWhenItCannotBeReadInTheMiddleOfACut) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  files_.failReads(EIO);
  buffer_->cutoffBufferBeforePosition(100);
  files_.failReads(0);
  EXPECT_EQ(read(*buffer_, 8000, 0), bytes);
}

TEST_F(ADiskAudioBuffer, EndsAtACutThatTheFileRefused) {
  write(*buffer_, pattern(8000, 1), 0);
  files_.failSizeChanges(EIO);
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_EQ(buffer_->f_size(), 80U);
  EXPECT_THAT(read(*buffer_, 8000, 0), SizeIs(80));
  EXPECT_EQ(services_->consoleLinesWith("could not cut a temporary file at frame 10"), 1U);
}

}  // namespace
