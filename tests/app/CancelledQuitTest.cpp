// A quit that is refused or cancelled leaves each document as it would be without it.
#include <filesystem>

#include "app/QuitFixture.h"

namespace {

using Controller = VLRecorderWindowController;

class CancelledQuitTest : public QuitFixture {
 protected:
  /// `window` gets a panel that has to be answered before a question.
  static void editAndShowAPanel(OVRecorderWindow* window) {
    documentOf(window)->setDocumentEdited(true);
    documentOf(window)->importFile(nullptr);
  }

  /// A Save As panel for the answer Save to the question of a closing.
  void closeAndAskWhere() {
    document_->setCurrentFiletype(-1);
    document_->setDocumentEdited(true);
    keeper_.close();
    panels_->answerSheet(Controller::kSave);
    ASSERT_EQ(panels_->savePanels(), 1U);
  }
};

TEST_F(CancelledQuitTest, AnUneditedExportThatTheQuitWaitedForLeavesItsWindow) {
  keeper_.enter(State::exporting);
  delegate_.terminate();
  ASSERT_TRUE(delegate_.isTerminating());
  OVRecorderWindow* const later = spawn();
  documentOf(later)->setDocumentEdited(true);
  delegate_.checkTermination();
  ASSERT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(Controller::kCancelClosing);
  keeper_.leave(State::exporting);
  EXPECT_FALSE(keeper_.closed());
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(CancelledQuitTest, ASaveAsThatIsCancelledInAnotherWindowGivesUpTheSaveThatWaits) {
  document_->setDocumentEdited(true);
  documentOf(other_)->setDocumentEdited(true);
  keeper_.enter(State::importing);
  delegate_.terminate();
  ASSERT_EQ(panels_->sheets(), 2U);
  panels_->answerSheet(Controller::kSave);
  panels_->answerSheet(Controller::kSave);
  ASSERT_EQ(panels_->savePanels(), 1U);
  panels_->answerSave(std::nullopt);
  keeper_.leave(State::importing);
  EXPECT_FALSE(keeper_.closed());
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_FALSE(std::filesystem::exists(keeper_.ownFile()));
  EXPECT_EQ(told(), 0U);
}

TEST_F(CancelledQuitTest, CancelWithoutAQuitLeavesTheClosingOfAnotherWindow) {
  keeper_.enter(State::savePending);
  documentOf(other_)->setDocumentEdited(true);
  other_->performClose();
  panels_->answerSheet(Controller::kCancelClosing);
  keeper_.leave(State::savePending);
  EXPECT_TRUE(keeper_.closed());
  EXPECT_TRUE(std::filesystem::exists(keeper_.ownFile()));
  EXPECT_TRUE(other_->isVisible());
}

TEST_F(CancelledQuitTest, AfterACancelledQuitItsWindowCanBeClosedAgain) {
  document_->setDocumentEdited(true);
  documentOf(other_)->setDocumentEdited(true);
  keeper_.enter(State::importing);
  delegate_.terminate();
  panels_->answerSheet(Controller::kSave);
  panels_->answerSheet(Controller::kCancelClosing);
  keeper_.close();
  ASSERT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(Controller::kSave);
  delegate_.cancelTermination();  // of no quit
  keeper_.leave(State::importing);
  EXPECT_TRUE(keeper_.closed());
  EXPECT_TRUE(std::filesystem::exists(keeper_.ownFile()));
}

TEST_F(CancelledQuitTest, APanelInOneWindowEndsNoRecordingInAnother) {
  editAndShowAPanel(window_);
  item(other_, "Record")->trigger();
  ASSERT_TRUE(documentOf(other_)->recorder()->isRecording());
  delegate_.terminate();
  EXPECT_TRUE(documentOf(other_)->recorder()->isRecording());
  EXPECT_EQ(panels_->sheets(), 0U);
  EXPECT_FALSE(delegate_.isTerminating());
  ASSERT_EQ(services_->postedAlerts().size(), 1U);
  EXPECT_EQ(services_->postedAlerts()[0].title, "Quitting was cancelled");
  panels_->answerOpen({});
}

TEST_F(CancelledQuitTest, PanelsInSeveralWindowsGiveOneAlert) {
  for (OVRecorderWindow* const window : {window_.data(), other_.data(), spawn()}) {
    editAndShowAPanel(window);
  }
  delegate_.terminate();
  EXPECT_EQ(told(), 1U);
  for (int i = 0; i < 3; ++i) {
    panels_->answerOpen({});
  }
}

TEST_F(CancelledQuitTest, APanelThatComesBeforeTheQuestionOfAnExportEndsTheQuit) {
  document_->setDocumentEdited(true);
  keeper_.enter(State::exporting);
  delegate_.terminate();
  document_->dumpWaveform(nullptr);
  ASSERT_EQ(panels_->savePanels(), 1U);
  keeper_.leave(State::exporting);
  EXPECT_TRUE(runMainLoopUntil([this] { return !delegate_.isTerminating(); }));
  EXPECT_EQ(told(), 1U);
  EXPECT_FALSE(keeper_.closed());
  panels_->answerSave(std::nullopt);
}

TEST_F(CancelledQuitTest, TheSaveAsPanelOfAClosingIsShownOnceToAQuit) {
  ASSERT_NO_FATAL_FAILURE(closeAndAskWhere());
  window_->showMinimized();
  delegate_.terminate();
  EXPECT_TRUE(delegate_.isTerminating());
  EXPECT_FALSE(window_->isMinimized());
  window_->showMinimized();
  delegate_.checkTermination();
  EXPECT_TRUE(window_->isMinimized());
  panels_->answerSave(std::nullopt);
  EXPECT_FALSE(delegate_.isTerminating());
}

}  // namespace
