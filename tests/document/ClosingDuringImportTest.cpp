// A window that is closed while a file is imported into it: the answer Save waits for the import,
// and until the file is saved no other command is accepted.
#include <gmock/gmock.h>

#include "document/DocumentStates.h"
#include "document/FileFixture.h"

namespace {

class ClosingDuringImportTest : public DocumentFileFixture {
 protected:
  static constexpr std::uint64_t kWholeFrames =
      StateKeeper::kRecordAt + StateKeeper::kFileFrames;  // longer than both takes

  void closeDuringAnImport(int answer) {
    openWindow();
    window_ = document_->window();
    keeper_.fill(document_);
    document_->setDocumentEdited(true);
    keeper_.enter(State::importing);
    window_->performClose();
    ASSERT_EQ(panels_->sheets(), 1U);
    panels_->answerSheet(answer);
  }

  QPointer<OVRecorderWindow> window_;
  StateKeeper keeper_{panels_, queues_};
};

TEST_F(ClosingDuringImportTest, WhileTheSaveWaitsClosingAgainAsksNothingAndChangesNothing) {
  ASSERT_NO_FATAL_FAILURE(closeDuringAnImport(VLRecorderWindowController::kSave));
  window_->performClose();
  window_->performClose();
  ASSERT_EQ(panels_->sheets(), 0U);
  EXPECT_TRUE(document_->isImport());
  EXPECT_TRUE(services_->alerts().empty());
  EXPECT_EQ(services_->cancelledTerminations(), 0U);
  keeper_.leave(State::importing);
  EXPECT_TRUE(runMainLoopUntil([this] { return window_.isNull(); }));
  EXPECT_EQ(readFile(keeper_.ownFile()).size(), 2 * kWholeFrames);
}

TEST_F(ClosingDuringImportTest, ASaveAsThatIsCancelledAfterwardsTakesTheClosingBack) {
  openWindow();
  window_ = document_->window();
  keeper_.fill(document_);
  const std::string old = writeFile("old.wav", ramp(10));
  const std::string before = bytesOf(old);
  document_->setCurrentFilename(old);
  document_->setCurrentFiletype(-1);  // so that Save asks for a path
  document_->setDocumentEdited(true);
  keeper_.enter(State::importing);
  window_->performClose();
  panels_->answerSheet(VLRecorderWindowController::kSave);
  window_->performClose();
  ASSERT_EQ(panels_->sheets(), 0U);
  keeper_.leave(State::importing);
  ASSERT_EQ(panels_->savePanels(), 1U);
  panels_->answerSave(std::nullopt);
  awaitIdle();
  ASSERT_FALSE(window_.isNull());
  EXPECT_TRUE(document_->isDisplayTimerRunning());
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(bytesOf(old), before);
  EXPECT_EQ(services_->cancelledTerminations(), 1U);

  saveTo(at("new.wav"));
  EXPECT_TRUE(document_->isDisplayTimerRunning()) << "the wish to close went with the panel";
}

TEST_F(ClosingDuringImportTest, CancelLeavesTheImportAloneAndSavesNothing) {
  ASSERT_NO_FATAL_FAILURE(closeDuringAnImport(VLRecorderWindowController::kCancelClosing));
  keeper_.leave(State::importing);
  EXPECT_TRUE(document_->isDisplayTimerRunning());
  EXPECT_EQ(length(), kWholeFrames);
  EXPECT_FALSE(std::filesystem::exists(keeper_.ownFile()));
  window_->performClose();
  EXPECT_EQ(panels_->sheets(), 1U);
}

}  // namespace
