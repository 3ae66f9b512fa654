#include "document/editing/OVKeptDocument.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include "document/editing/OVDocumentAudio.h"
#include "platform/files/PosixFile.h"
#include "recovery/RecordingKeeper.h"
#include "storage/JournalReplay.h"
#include "storage/OVAudioBuffer.h"
#include "storage/OVBlockBuffer.h"
#include "support/fakes/RememberingKeeper.h"

namespace {

class OVKeptDocumentTest : public testing::Test {
 protected:
  OVKeptDocumentTest() { audio_.setBuffer(buffer_); }

  [[nodiscard]] JournalOrigin origin() const {
    platform::PosixFile journal(::dup(buffer_->journal()->descriptor()));
    auto read = readJournalOrigin(journal);
    return read ? *read : JournalOrigin();
  }

  support::RememberingKeeper keeper_;
  platform::Installed<RecordingKeeper>::Scope installed_{keeper_};
  std::shared_ptr<OVBlockBuffer> buffer_ = OVBlockBuffer::init();
  OVDocumentAudio audio_;
  std::unique_ptr<OVKeptDocument> document_ = std::make_unique<OVKeptDocument>(audio_);
};

TEST_F(OVKeptDocumentTest, NothingIsKeptBeforeTheFirstChange) {
  document_->setEdited(false);
  document_->recordingBegins();
  EXPECT_TRUE(keeper_.kept.empty());
  EXPECT_EQ(buffer_->journal(), nullptr);
}

TEST_F(OVKeptDocumentTest, AudioAndJournalAreKeptFromTheFirstChangeOn) {
  document_->setEdited(true);
  ASSERT_EQ(keeper_.kept.size(), 1U);
  const auto& recording = keeper_.kept.begin()->second;
  EXPECT_EQ(recording.audio, buffer_->fileDescriptor());
  EXPECT_EQ(recording.journal, buffer_->journal()->descriptor());
  EXPECT_EQ(origin().state, journal::State::edited);
  document_->setEdited(true);
  EXPECT_EQ(keeper_.kept.size(), 1U);
}

TEST_F(OVKeptDocumentTest, SavedDocumentIsNotMissedUntilItsNextChange) {
  document_->setEdited(true);
  document_->setEdited(false);
  EXPECT_EQ(origin().state, journal::State::saved);
  EXPECT_EQ(keeper_.kept.size(), 1U);
  document_->setEdited(true);
  EXPECT_EQ(origin().state, journal::State::edited);
}

TEST_F(OVKeptDocumentTest, ClosedDocumentIsLetGo) {
  document_->setEdited(true);
  document_->close();
  EXPECT_TRUE(keeper_.kept.empty());
  EXPECT_EQ(origin().state, journal::State::closed);
  document_->setEdited(true);  // a late report
  EXPECT_TRUE(keeper_.kept.empty());
}

TEST_F(OVKeptDocumentTest, DestroyedDocumentIsLetGo) {
  document_->setEdited(true);
  document_.reset();
  EXPECT_TRUE(keeper_.kept.empty());
}

TEST_F(OVKeptDocumentTest, DocumentsHaveDifferentNumbers) {
  OVDocumentAudio otherAudio;
  otherAudio.setBuffer(OVBlockBuffer::init());
  OVKeptDocument other(otherAudio);
  document_->setEdited(true);
  other.setEdited(true);
  EXPECT_EQ(keeper_.kept.size(), 2U);
}

TEST_F(OVKeptDocumentTest, JournalHasTheNameAndTheTimeOfTheRecoveredFile) {
  constexpr std::int64_t kStart = 1'000'000'000;
  document_->setRecoveredFrom("Orvo recording.caf", 7, kStart);
  document_->setEdited(true);
  EXPECT_EQ(origin().recoveredFrom, "Orvo recording.caf");
  EXPECT_EQ(origin().recoveredFile, 7U);
  EXPECT_EQ(origin().begun, kStart);
  document_->recordingBegins();
  EXPECT_EQ(origin().begun, kStart) << "it is not the first one";
  document_->recordingTakenBack();
  EXPECT_EQ(origin().begun, kStart);
}

TEST_F(OVKeptDocumentTest, JournalHasTheTimeOfTheFirstRecording) {
  document_->setEdited(true);
  platform::PosixFile file(::dup(buffer_->journal()->descriptor()));
  journal::Header header;
  ASSERT_EQ(file.readAt(&header, sizeof header, 0).byteCount, sizeof header);
  EXPECT_EQ(header.firstRecording.load(), 0);
  document_->recordingBegins();
  ASSERT_EQ(file.readAt(&header, sizeof header, 0).byteCount, sizeof header);
  EXPECT_GE(header.firstRecording.load(), header.created);
}

TEST_F(OVKeptDocumentTest, RecordPressedInVainLeavesNoTime) {
  document_->setEdited(true);
  const std::int64_t created = origin().begun;
  document_->recordingTakenBack();
  document_->recordingBegins();
  document_->recordingTakenBack();
  platform::PosixFile file(::dup(buffer_->journal()->descriptor()));
  journal::Header header;
  ASSERT_EQ(file.readAt(&header, sizeof header, 0).byteCount, sizeof header);
  EXPECT_EQ(header.firstRecording.load(), 0);
  EXPECT_EQ(origin().begun, created);
  document_->recordingBegins();
  document_->recordingBegins();  // the second one fails
  document_->recordingTakenBack();
  ASSERT_EQ(file.readAt(&header, sizeof header, 0).byteCount, sizeof header);
  EXPECT_NE(header.firstRecording.load(), 0) << "the first one stands";
}

TEST_F(OVKeptDocumentTest, WithoutAKeeperThereIsNoJournal) {
  keeper_.available = false;
  document_->setEdited(true);
  EXPECT_EQ(buffer_->journal(), nullptr);
  EXPECT_TRUE(keeper_.kept.empty());
}

TEST_F(OVKeptDocumentTest, DocumentWithoutABlockBufferIsNotKept) {
  audio_.setBuffer(OVAudioBuffer::init());
  document_->setEdited(true);
  audio_.setBuffer(nullptr);
  document_->setEdited(true);
  EXPECT_TRUE(keeper_.kept.empty());
}

}  // namespace
