// The disk buffer when files cannot be created, read, written or resized.
#include <gmock/gmock.h>

#include <cerrno>
#include <memory>
#include <string>

#include "storage/DiskBufferFixture.h"

namespace {

using support::Bytes;
using support::part;
using support::pattern;
using support::read;
using support::write;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const support::RecordedAlert kCannotOpen = {"couldn't open temp file for writing!",
                                            "The file /nowhere/orvo_000001.flt couldn't be opened "
                                            "for writing. This shouldn't happen! Check "
                                            "your permissions."};

class OVDiskAudioBufferFailureTest : public support::DiskBufferFixture {};

TEST_F(OVDiskAudioBufferFailureTest, WhoseFileCannotBeMadeIsNoneAndTellsThePath) {
  support::FailingTemporaryFiles failing;
  failing.failCreation(EACCES);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(failing);
  services_->clear();
  EXPECT_EQ(OVDiskAudioBuffer::init(), nullptr);
  EXPECT_THAT(services_->alerts(), ElementsAre(kCannotOpen));
  EXPECT_THAT(services_->registeredTempFiles(), IsEmpty());
}

TEST_F(OVDiskAudioBufferFailureTest, TellsAFailedWriteBeforeTheWriteAndCountsItAsWritten) {
  buffer_->setDelegate(delegate_);
  files_.fillUpAfter(30);
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->f_size(), 80U);
  EXPECT_THAT(delegate_->calls(), ElementsAre(support::DelegateCall{nullptr, 0, 0, ENOSPC},
                                              support::DelegateCall{bytes.data(), 0, 80, 0}));
  EXPECT_EQ(read(*buffer_, 80, 0), part(bytes, 0, 24)) << "the whole frames that the disk took";
}

TEST_F(OVDiskAudioBufferFailureTest, AFailedReadGivesNothingAndEndsItsFill) {
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(EIO);
  EXPECT_THAT(read(*buffer_, 80, 0), IsEmpty());
  waitForTheFill();
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
  files_.failReads(0);
  EXPECT_EQ(read(*buffer_, 80, 0), pattern(80, 1));
}

TEST_F(OVDiskAudioBufferFailureTest, TellsAFailedReadOnceARead) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(ENXIO);
  EXPECT_THAT(read(*buffer_, 80, 0), IsEmpty());
  waitForTheFill();
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(ENXIO)) << "the fill's own reader tells";
  EXPECT_THAT(readNoCache(80, 0), IsEmpty());
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(ENXIO, ENXIO));
}

TEST_F(OVDiskAudioBufferFailureTest, AReadThatEndsWhereTheRecordingDoesIsNoFailure) {
  buffer_->setDelegate(delegate_);
  write(*buffer_, pattern(80, 1), 0);
  EXPECT_THAT(readNoCache(200, 40), SizeIs(40));
  EXPECT_THAT(readNoCache(8, 80), IsEmpty());
  EXPECT_THAT(delegate_->readErrors(), IsEmpty());
}

TEST_F(OVDiskAudioBufferFailureTest, ContinuesShortReads) {
  const Bytes bytes = pattern(800, 1);
  write(*buffer_, bytes, 0);
  files_.shortenReads(7);
  EXPECT_EQ(readNoCache(800, 0), bytes);
  buffer_->fillCacheFromPosition(0);
  EXPECT_EQ(buffer_->cache_fillsize(), 800U);
}

TEST_F(OVDiskAudioBufferFailureTest, StaysAsItWasWhenTheNewFileCannotBeMade) {
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

TEST_F(OVDiskAudioBufferFailureTest, StaysAsItWasWhenTheDiskFillsUpInTheMiddleOfACut) {
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

TEST_F(OVDiskAudioBufferFailureTest, StaysAsItWasWhenItCannotBeReadInTheMiddleOfACut) {
  const Bytes bytes = pattern(8000, 1);
  write(*buffer_, bytes, 0);
  files_.failReads(EIO);
  buffer_->cutoffBufferBeforePosition(100);
  files_.failReads(0);
  EXPECT_EQ(read(*buffer_, 8000, 0), bytes);
}

TEST_F(OVDiskAudioBufferFailureTest, EndsAtACutThatTheFileRefused) {
  write(*buffer_, pattern(8000, 1), 0);
  files_.failSizeChanges(EIO);
  buffer_->cutoffBufferAfterPosition(10);
  EXPECT_EQ(buffer_->f_size(), 80U);
  EXPECT_THAT(read(*buffer_, 8000, 0), SizeIs(80));
  EXPECT_EQ(services_->consoleLinesWith("could not cut a temporary file at frame 10"), 1U);
}

}  // namespace
