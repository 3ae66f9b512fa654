#include <gmock/gmock.h>

#include <cerrno>

#include "platform/base/ApplicationServices.h"
#include "storage/OVBlockBuffer.h"
#include "support/TransferHelpers.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDelegate.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/SparseTemporaryFiles.h"

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

const support::RecordedAlert kCannotOpen{
    "couldn't open temp file for writing!",
    "The file /nowhere/orvoXXXXXX couldn't be opened for writing. This shouldn't happen! Check "
    "your permissions."};

class OVBlockBufferFailureTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(buffer_, nullptr);
    buffer_->setDelegate(delegate_);
  }

  support::InstalledRecordingServices services_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope installation_{files_};
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
};

TEST_F(OVBlockBufferFailureTest, ThatGivesNoFileIsToldInAnAlertAndGivesNoBuffer) {
  files_.failCreation(EACCES);
  EXPECT_EQ(OVBlockBuffer::init(), nullptr);
  EXPECT_THAT(services_->alerts(), ElementsAre(kCannotOpen));
  EXPECT_THAT(services_->postedAlerts(), IsEmpty());
}

TEST_F(OVBlockBufferFailureTest, ThatGivesNoFileIsToldWithoutWaitingOnAThreadThatMustNotWait) {
  files_.failCreation(EACCES);
  const platform::PostedAlertsScope scope;
  EXPECT_EQ(OVBlockBuffer::init(), nullptr);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_THAT(services_->postedAlerts(), ElementsAre(kCannotOpen));
}

// Returns a directory whose name is longer than any valid path.
class DeepTemporaryFiles : public support::FailingTemporaryFiles {
 public:
  std::string directory() const override { return "/" + std::string(5000, 'd') + "/"; }
};

TEST_F(OVBlockBufferFailureTest, APathTooLongIsCutForTheSystemAndToldWhole) {
  DeepTemporaryFiles deep;
  deep.failCreation(EINVAL);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(deep);
  EXPECT_EQ(OVBlockBuffer::init(), nullptr);
  ASSERT_EQ(deep.templates().size(), 1U);
  EXPECT_EQ(deep.templates()[0], (deep.directory() + "orvoXXXXXX").substr(0, 4095));
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_NE(services_->alerts()[0].message.find(deep.directory() + "orvoXXXXXX"),
            std::string::npos);
}

TEST_F(OVBlockBufferFailureTest, AWriteTakenInPartIsMappedWholeAndMovesTheEndByItsWholeCount) {
  files_.fillUpAfter(30);
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  EXPECT_EQ(buffer_->f_write_pos(), 80U);
  EXPECT_EQ(buffer_->bufferFillSize(), 80U);
  EXPECT_THAT(buffer_->blocklist(), ElementsAre(OVBlock(0, 0, 80)));
  EXPECT_EQ(read(*buffer_, 80, 0), part(bytes, 0, 30) + Bytes(50, 0)) << "the rest is silence";
}

TEST_F(OVBlockBufferFailureTest, AReadPassesTheLostStretchToTheAudioBehindIt) {
  write(*buffer_, pattern(240, 1), 0);
  files_.fillUpAfter(20);
  const Bytes lost = pattern(80, 2);
  write(*buffer_, lost, 80);
  EXPECT_EQ(read(*buffer_, 240, 0), part(pattern(240, 1), 0, 80) + part(lost, 0, 20) +
                                        Bytes(60, 0) + part(pattern(240, 1), 160, 240));
}

TEST_F(OVBlockBufferFailureTest, ALostWriteAfterAnotherIsSilenceToo) {
  files_.fillUpAfter(0);
  write(*buffer_, pattern(80, 1), 0);
  write(*buffer_, pattern(80, 2), 80);
  EXPECT_EQ(read(*buffer_, 160, 0), Bytes(160, 0));
}

TEST_F(OVBlockBufferFailureTest, TheLostStretchNeverShowsOtherAudio) {
  files_.fillUpAfter(30);
  const Bytes lost = pattern(80, 1);
  write(*buffer_, lost, 0);
  files_.freeSpace();
  const Bytes later = pattern(80, 2);
  write(*buffer_, later, 80);
  EXPECT_EQ(read(*buffer_, 160, 0), part(lost, 0, 30) + Bytes(50, 0) + later);
}

TEST_F(OVBlockBufferFailureTest, EveryFailedWriteIsToldWithItsErrorBeforeTheWrite) {
  files_.fillUpAfter(80);
  const Bytes bytes = pattern(80, 1);
  write(*buffer_, bytes, 0);
  write(*buffer_, bytes, 80);
  files_.fillUpAfter(10, EDQUOT);
  write(*buffer_, bytes, 160);
  EXPECT_THAT(delegate_->calls(), ElementsAre(support::DelegateCall{bytes.data(), 0, 80, 0},
                                              support::DelegateCall{nullptr, 0, 0, ENOSPC},
                                              support::DelegateCall{bytes.data(), 80, 80, 0},
                                              support::DelegateCall{nullptr, 0, 0, EDQUOT},
                                              support::DelegateCall{bytes.data(), 160, 80, 0}));
  EXPECT_THAT(services_->alerts(), IsEmpty()) << "how often a person is told is the delegate's";
}

TEST_F(OVBlockBufferFailureTest, AShortWriteWithoutAReasonIsAnInputOutputError) {
  files_.fillUpAfter(10, 0);
  write(*buffer_, pattern(80, 1), 0);
  ASSERT_EQ(delegate_->calls().size(), 2U);
  EXPECT_EQ(delegate_->calls()[0].error, EIO);
}

TEST_F(OVBlockBufferFailureTest, AFailedReadGivesNothingAndDoesNotLoop) {
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(EIO);
  float destination[20];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 80, 0)));
  files_.failReads(0);
  EXPECT_EQ(read(*buffer_, 80, 0), pattern(80, 1));
}

TEST_F(OVBlockBufferFailureTest, AFailedReadIsToldWithItsErrorOutsideTheLock) {
  write(*buffer_, pattern(80, 1), 0);
  files_.failReads(ENXIO);
  delegate_->during([this] {
    buffer_->lock();
    buffer_->unlock();
  });
  float destination[20];
  EXPECT_TRUE(isNothing(buffer_->readDataInto(destination, 80, 0)));
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(ENXIO));
  EXPECT_THAT(services_->alerts(), IsEmpty()) << "how often a person is told is the delegate's";
}

TEST_F(OVBlockBufferFailureTest, BytesThatTheFileDoesNotHoldAreAnInputOutputErrorToTheirReader) {
  files_.fillUpAfter(30);
  files_.failSizeChanges(EIO);
  write(*buffer_, pattern(80, 1), 0);
  EXPECT_EQ(read(*buffer_, 80, 0).size(), 30U);
  EXPECT_THAT(delegate_->readErrors(), ElementsAre(EIO));
}

TEST_F(OVBlockBufferFailureTest, AReadThatEndsWhereTheRecordingDoesIsNoFailure) {
  write(*buffer_, pattern(80, 1), 0);
  files_.shortenReads(7);
  EXPECT_EQ(read(*buffer_, 200, 40).size(), 40U);
  EXPECT_TRUE(read(*buffer_, 8, 80).empty());
  EXPECT_THAT(delegate_->readErrors(), IsEmpty());
}

TEST_F(OVBlockBufferFailureTest, ShortReadsAreContinued) {
  const Bytes first = pattern(80, 1);
  const Bytes second = pattern(80, 2);
  write(*buffer_, second, 80);
  write(*buffer_, first, 0);
  files_.shortenReads(7);
  EXPECT_EQ(read(*buffer_, 160, 0), first + second);
}

TEST_F(OVBlockBufferFailureTest, AReadEndsAtTheFirstStretchThatTheFileDoesNotHold) {
  const Bytes first = pattern(80, 1);
  write(*buffer_, first, 160);
  files_.fillUpAfter(20);
  files_.failSizeChanges(EIO);
  const Bytes lost = pattern(80, 2);
  write(*buffer_, lost, 80);
  EXPECT_EQ(read(*buffer_, 160, 80), part(lost, 0, 20)) << "the block behind it is not reached";
  EXPECT_EQ(read(*buffer_, 80, 160), first);
}

TEST_F(OVBlockBufferFailureTest, TheLevelOfAFrameThatCannotBeReadIsSilence) {
  const float frame[] = {0.5F, 0.5F};
  buffer_->writeData(frame, 0, sizeof frame);
  files_.failReads(EIO);
  EXPECT_EQ(buffer_->powerAtPosition(0), 0.0);
}

TEST_F(OVBlockBufferFailureTest, UndoBringsBackWhatWasThereBeforeTheDiskFilledUp) {
  const Bytes before = pattern(80, 1);
  write(*buffer_, before, 0);
  buffer_->setWaypoint();
  files_.fillUpAfter(0);
  write(*buffer_, pattern(80, 2), 0);
  EXPECT_EQ(read(*buffer_, 80, 0), Bytes(80, 0));
  buffer_->undo();
  EXPECT_EQ(read(*buffer_, 80, 0), before);
}

TEST(OVBlockBufferFailureLengthTest, IsReadAtItsFarEnd) {
  support::SparseTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  const auto buffer = OVBlockBuffer::init();
  const Bytes silence(std::size_t{64} << 20, 0);
  for (int i = 0; i < 65; ++i) {
    write(*buffer, silence, buffer->bufferFillSize());
  }
  const Bytes sound = pattern(4096, 1);
  const std::uint64_t end = buffer->bufferFillSize();
  ASSERT_GT(end, std::uint64_t{1} << 32);
  write(*buffer, sound, end);
  EXPECT_EQ(read(*buffer, 8192, end), sound);
  EXPECT_EQ(read(*buffer, 16, end - 8), Bytes(8, 0) + part(sound, 0, 8));
}

}  // namespace
