// The time between choosing a file to import and reading its first audio: on a slow medium it may
// be long, and the document is already in a file operation.
#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

using testing::SizeIs;

constexpr std::uint16_t kKeyR = 15;
constexpr std::size_t kImportedFrames = 500;

class ImportOpeningTest : public DocumentFileFixture {
 protected:
  ~ImportOpeningTest() override {
    gate_.open();
    panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave);
    closeDocument();  // before the medium is destroyed
  }

  /// Chooses a file on a medium that does not respond until the gate is open.
  void chooseOnASlowMedium(const std::string& bytes) {
    storage_.setBytes(bytes);
    storage_.beforeReads([this](std::uint64_t) { gate_.pass(); });
    document_->importFile(nullptr);
    panels_->answerOpen({"/slow/part.wav"});
    ASSERT_TRUE(gate_.awaitArrival());
  }

  static std::string sound() {
    return support::wavBytes(44100, 2, 16, std::string(4 * kImportedFrames, 'x'));
  }

  void strikeR() {
    document_->windowDidReceiveKeyDown(document_->window(), kKeyR);
    document_->windowDidReceiveKeyUp(document_->window(), kKeyR);
  }

  bool indicatorIsShown() {
    return document_->loadingIndicator()->isVisibleTo(document_->window());
  }

  support::Gate gate_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  support::TestUserAudioFiles storage_;
  platform::Installed<platform::UserAudioFiles>::Scope storageInstallation_{storage_};
};

TEST_F(ImportOpeningTest, TheTransportIsDisabledAndABarWithoutAnEndIsShown) {
  openWindow();
  recordChunks(1);
  auto* const view = document_->window()->findChild<OVWaveFormView*>("wfView");
  ASSERT_NO_FATAL_FAILURE(chooseOnASlowMedium(sound()));
  EXPECT_FALSE(transportEnabled());
  EXPECT_FALSE(view->isEnabled());
  EXPECT_TRUE(indicatorIsShown());
  EXPECT_EQ(document_->loadingIndicator()->maximum(), 0);
  strikeR();
  EXPECT_FALSE(document_->recorder()->isRecording());
  document_->recMenu(nullptr);
  EXPECT_FALSE(document_->recorder()->isRecording());
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  gate_.open();
  awaitIdle();
  EXPECT_EQ(length(), kChunkFrames + kImportedFrames);
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Import File");
  EXPECT_TRUE(transportEnabled());
  EXPECT_TRUE(view->isEnabled());
  EXPECT_FALSE(indicatorIsShown());
}

TEST_F(ImportOpeningTest, AFileThatCannotBeReadLeavesTheTransportAsItWas) {
  openWindow();
  recordChunks(1);
  ASSERT_NO_FATAL_FAILURE(chooseOnASlowMedium(std::string(1000, 'x')));
  gate_.open();
  awaitIdle();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(indicatorIsShown());
  EXPECT_GT(document_->loadingIndicator()->maximum(), 0);
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  strikeR();
  EXPECT_TRUE(document_->recorder()->isRecording());
}

TEST_F(ImportOpeningTest, ARecordingIsPausedAtTheChoiceAndKept) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  ASSERT_NO_FATAL_FAILURE(chooseOnASlowMedium(sound()));
  EXPECT_FALSE(document_->recorder()->isRecording());
  EXPECT_EQ(length(), kChunkFrames);
  gate_.open();
  awaitIdle();
  EXPECT_EQ(length(), kChunkFrames + kImportedFrames);
}

TEST_F(ImportOpeningTest, WhatAFullDiskDidNotTakeJustBeforeIsDroppedAllTheSame) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  files_.fillUpAfter(100);
  static_cast<void>(capture(0.25F));  // its result is reported when the main loop runs
  ASSERT_NO_FATAL_FAILURE(chooseOnASlowMedium(sound()));
  drainMainQueue();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(length(), kChunkFrames);
  EXPECT_EQ(document_->recordingPosition(), kChunkFrames);
}

}  // namespace
