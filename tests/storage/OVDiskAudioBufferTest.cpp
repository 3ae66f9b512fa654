#include "storage/OVDiskAudioBuffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files/TemporaryFiles.h"
#include "storage/DiskBufferFixture.h"
#include "support/TemporaryFolder.h"

namespace {

using support::Bytes;
using support::isNothing;
using support::part;
using support::pattern;
using support::read;
using support::write;
using support::operator+;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OVDiskAudioBufferTest : public support::DiskBufferFixture {};

// Creation and destruction

TEST_F(OVDiskAudioBufferTest, HasARegisteredFileWithPrefixAndExtension) {
  EXPECT_THAT(files_.templates(), ElementsAre("/nowhere/orvo_XXXXXX.flt"));
  EXPECT_EQ(buffer_->f_file_name(), "/nowhere/orvo_000001.flt");
  EXPECT_THAT(services_->registeredTempFiles(), ElementsAre(buffer_->f_file_name()));
  EXPECT_EQ(buffer_->f_size(), 0U);
  EXPECT_EQ(buffer_->cache_fillsize(), 0U);
}

TEST_F(OVDiskAudioBufferTest, ClosesItsFileAtItsEnd) {
  EXPECT_EQ(files_.openFiles(), 1U);
  buffer_.reset();
  EXPECT_EQ(files_.openFiles(), 0U);
}

// The operating system's temporary files, in the test's own folder.
class FilesInAFolder : public platform::TemporaryFiles {
 public:
  [[nodiscard]] std::string directory() const override { return folder_.path() + "/"; }
  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    return real_->createUnlinked(pathTemplate);
  }
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return real_->createNamed(pathTemplate);
  }
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      paths.push_back(entry.path().string());
    }
    return paths;
  }

 private:
  const std::shared_ptr<platform::TemporaryFiles> real_ = platform::temporaryFiles();
  support::TemporaryFolder folder_;
};

TEST(OVDiskAudioBufferOnDiskTest, KeepsItsNamedFileUntilItsEnd) {
  const support::InstalledRecordingServices services;
  FilesInAFolder installed;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(installed);
  auto buffer = OVDiskAudioBuffer::init();
  ASSERT_NE(buffer, nullptr);
  EXPECT_THAT(installed.names(), ElementsAre(buffer->f_file_name()));
  write(*buffer, pattern(4096, 1), 0);
  EXPECT_EQ(std::filesystem::file_size(buffer->f_file_name()), 4096U);
  buffer.reset();
  EXPECT_THAT(installed.names(), IsEmpty());
}

TEST(OVDiskAudioBufferOnDiskTest, LivesInANewRegisteredFileAfterACutBefore) {
  const support::InstalledRecordingServices services;
  FilesInAFolder files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
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

TEST(OVDiskAudioBufferOnDiskTest, ShortensItsFileWithACutAfter) {
  const support::InstalledRecordingServices services;
  FilesInAFolder files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  const auto buffer = OVDiskAudioBuffer::init();
  ASSERT_NE(buffer, nullptr);
  write(*buffer, pattern(4096, 1), 0);
  buffer->cutoffBufferAfterPosition(10);
  EXPECT_EQ(std::filesystem::file_size(buffer->f_file_name()), 80U);
}

TEST(OVDiskAudioBufferOnDiskTest, DeletesAFileByItsPathAndIgnoresNone) {
  FilesInAFolder files;
  const auto created = files.createNamed(files.directory() + "orvo_XXXXXX.flt");
  OVDiskAudioBuffer::removeTempFile(created->path);
  EXPECT_THAT(files.names(), IsEmpty());
  OVDiskAudioBuffer::removeTempFile(created->path);
  OVDiskAudioBuffer::removeTempFile(std::nullopt);
}

// Writing and reading the file

TEST_F(OVDiskAudioBufferTest, WritesInPlace) {
  const Bytes first = pattern(800, 1);
  const Bytes second = pattern(80, 2);
  write(*buffer_, first, 0);
  write(*buffer_, second, 160);
  EXPECT_EQ(buffer_->f_size(), 800U);
  EXPECT_EQ(read(*buffer_, 800, 0), part(first, 0, 160) + second + part(first, 240, 800));
}

TEST_F(OVDiskAudioBufferTest, ReadsZerosWhereNothingWasWritten) {
  const Bytes sound = pattern(80, 1);
  write(*buffer_, sound, 160);
  EXPECT_EQ(read(*buffer_, 240, 0), Bytes(160, 0) + sound);
}

TEST_F(OVDiskAudioBufferTest, ReadsWholeFramesFromTheFile) {
  const Bytes bytes = pattern(85, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 10U);
  EXPECT_EQ(readNoCache(31, 0), part(bytes, 0, 24));
  EXPECT_EQ(readNoCache(100, 0), part(bytes, 0, 80));
  EXPECT_EQ(readNoCache(100, 3), part(bytes, 3, 83)) << "frames count from the offset";
  float unused = 0.0F;
  EXPECT_TRUE(isNothing(buffer_->readDataIntoNoCache(&unused, 7, 0)));
  EXPECT_TRUE(isNothing(buffer_->readDataIntoNoCache(&unused, 8, 80)));
}

TEST_F(OVDiskAudioBufferTest, LeavesTheRestOfTheDestinationAsItWas) {
  write(*buffer_, pattern(85, 1), 0);
  Bytes destination(200, 0x55);
  ASSERT_EQ(buffer_->readDataInto(destination.data(), 200, 0).byteCount, 80U);
  EXPECT_EQ(part(destination, 80, 200), Bytes(120, 0x55));
}

TEST_F(OVDiskAudioBufferTest, KeepsItsThreeSizesAlike) {
  write(*buffer_, pattern(804, 1), 8);
  EXPECT_EQ(buffer_->f_size(), 812U);
  EXPECT_EQ(buffer_->bufferCapacityInFrames(), 101U);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 101U);
  EXPECT_EQ(buffer_->bufferFillSizeInFrames(), 101U);
}

TEST_F(OVDiskAudioBufferTest, RefusesAWriteThatEndsPastTheHighestAddress) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(16, 1), ~std::uint64_t{0} - 8);
  EXPECT_EQ(buffer_->f_size(), 0U);
  EXPECT_EQ(files_.writes(), 0U);
  EXPECT_THAT(delegate_->calls(), IsEmpty());
  EXPECT_EQ(services_->consoleLinesWith("refused to write 16 bytes"), 1U);
}

TEST_F(OVDiskAudioBufferTest, SurvivesReadsAtTheHighestAddresses) {
  recordAndCache(800);
  Bytes destination(16);
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination.data(), 16, ~std::uint64_t{0} - 8)));
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination.data(), 16, ~std::uint64_t{0})));
}

TEST_F(OVDiskAudioBufferTest, HoldsTheFramesToPlayForItsCallers) {
  buffer_->setFramesToPlay(44100);
  EXPECT_EQ(buffer_->framesToPlay(), 44100U);
}

TEST_F(OVDiskAudioBufferTest, UndoRedoReverseAndWaypointsChangeNothing) {
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
  EXPECT_EQ(readNoCache(8000, 0), part(bytes, 0, 4000));
}

// Cuts

TEST_F(OVDiskAudioBufferTest, CutAfterEndsTheRecording) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(50);
  EXPECT_EQ(buffer_->f_size(), 400U);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 400));
}

TEST_F(OVDiskAudioBufferTest, CutAfterBeyondTheEndAddsSilence) {
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferAfterPosition(20);
  EXPECT_EQ(buffer_->bufferSizeInFrames(), 20U);
  EXPECT_EQ(read(*buffer_, 800, 0), bytes + Bytes(80, 0));
}

TEST_F(OVDiskAudioBufferTest, CutsDoNotDiscardTheCache) {
  const Bytes bytes = recordAndCache(80000);
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 800)) << "still what was there before the cut";
  buffer_->cutoffBufferBeforePosition(10);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 0, 800));
  EXPECT_THAT(readNoCache(800, 0), IsEmpty()) << "gone for what goes to the file";
  buffer_->discardCache();
  EXPECT_THAT(read(*buffer_, 800, 0), IsEmpty());
}

TEST_F(OVDiskAudioBufferTest, CutBeforeKeepsTheTail) {
  const Bytes bytes = pattern(3 * (1 << 20) + 8 * 77, 1);  // copied in several pieces
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(33);
  EXPECT_EQ(buffer_->f_size(), bytes.size() - 264);
  EXPECT_TRUE(readNoCache(bytes.size(), 0) == part(bytes, 264, bytes.size()));
  EXPECT_EQ(files_.openFiles(), 1U);
}

TEST_F(OVDiskAudioBufferTest, CutBeforeThatWouldKeepLessThan512BytesKeepsNothing) {
  write(*buffer_, pattern(1016, 1), 0);
  buffer_->cutoffBufferBeforePosition(64);
  EXPECT_EQ(buffer_->f_size(), 0U) << "504 bytes";
  EXPECT_THAT(read(*buffer_, 800, 0), IsEmpty());
}

TEST_F(OVDiskAudioBufferTest, CutBeforeThatKeepsExactly512BytesKeepsThem) {
  const Bytes bytes = pattern(1024, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(64);
  EXPECT_EQ(read(*buffer_, 800, 0), part(bytes, 512, 1024));
}

TEST_F(OVDiskAudioBufferTest, CutBeforeAPositionPastTheEndEmptiesTheRecording) {
  write(*buffer_, pattern(8000, 1), 0);
  buffer_->cutoffBufferBeforePosition(100000);
  EXPECT_EQ(buffer_->f_size(), 0U);
}

TEST_F(OVDiskAudioBufferTest, CutBeforeTheStartKeepsEverythingInANewFile) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  buffer_->cutoffBufferBeforePosition(0);
  EXPECT_EQ(readNoCache(8000, 0), bytes);
  EXPECT_THAT(services_->registeredTempFiles(), SizeIs(2));
}

// Levels

TEST_F(OVDiskAudioBufferTest, GivesTheSignedMeanOfAFrame) {
  const float frames[] = {0.5F, -0.25F, -0.5F, -1.0F};
  buffer_->writeData(frames, 0, sizeof frames);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.125);
  EXPECT_EQ(buffer_->powerAtPosition(1), -0.75);
}

TEST_F(OVDiskAudioBufferTest, AddsTheChannelsInSinglePrecision) {
  const float frame[] = {1.0F, 1e-9F};
  buffer_->writeData(frame, 0, sizeof frame);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.5);
}

TEST_F(OVDiskAudioBufferTest, HasNoLevelPastItsEnd) {
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
  EXPECT_EQ(buffer_->powerAtPosition(~std::uint64_t{0}), 0.0);
}

}  // namespace
