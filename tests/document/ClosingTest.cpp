#include <gmock/gmock.h>

#include "document/FileFixture.h"

namespace {

using testing::HasSubstr;

using ClosingTest = DocumentFileFixture;

TEST_F(ClosingTest, AnUnchangedDocumentClosesWithoutAQuestion) {
  openWindow();
  EXPECT_TRUE(document_->windowShouldClose(document_->window()));
  EXPECT_EQ(panels_->sheets(), 0U);
}

TEST_F(ClosingTest, AChangedDocumentAsksOnceAndStaysWhileItAsks) {
  openWindow();
  document_->setCurrentFilename("/tmp/50%1 off.wav");
  document_->setDocumentEdited(true);
  EXPECT_FALSE(document_->windowShouldClose(document_->window()));
  EXPECT_FALSE(document_->windowShouldClose(document_->window()));
  ASSERT_EQ(panels_->sheets(), 1U);
  EXPECT_THAT(panels_->sheet().title.toStdString(), HasSubstr("“50%1 off.wav”"));
  ASSERT_EQ(panels_->sheet().buttons.size(), 3U);
  EXPECT_EQ(panels_->sheet().buttons[0].returnCode, 1);
  EXPECT_EQ(panels_->sheet().buttons[1].returnCode, 0);
  EXPECT_EQ(panels_->sheet().buttons[2].returnCode, -1);
}

TEST_F(ClosingTest, TheQuestionHoldsTheNameInOneLineAndInItsDirection) {
  openWindow();
  document_->setCurrentFilename("/tmp/a\nb\u202E?ev.wav");
  document_->setDocumentEdited(true);
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheet().title, "Do you want to save the changes made to “a b ?ev.wav”?");
}

TEST_F(ClosingTest, CancelKeepsTheWindowAndEndsAQuit) {
  openWindow();
  document_->setDocumentEdited(true);
  document_->window()->performClose();
  panels_->answerSheet(-1);
  EXPECT_TRUE(document_->window()->isVisible());
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 1U);
}

TEST_F(ClosingTest, DontSaveClosesTheWindow) {
  openWindow();
  document_->setDocumentEdited(true);
  const QPointer<OVRecorderWindow> window = document_->window();
  window->performClose();
  panels_->answerSheet(0);
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
}

TEST_F(ClosingTest, SaveClosesTheWindowWhenTheFileIsComplete) {
  openWindow();
  recordChunks(2);
  const Samples samples = audio();
  const QPointer<OVRecorderWindow> window = document_->window();
  window->performClose();
  panels_->answerSheet(1);
  ASSERT_EQ(panels_->savePanels(), 1U);
  EXPECT_TRUE(window->isVisible());
  panels_->answerSave(at("take.wav"));
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_EQ(readFile(at("take.wav")), samples);
}

TEST_F(ClosingTest, SaveWithACancelledPanelKeepsTheWindow) {
  openWindow();
  recordChunks(1);
  document_->window()->performClose();
  panels_->answerSheet(1);
  panels_->answerSave(std::nullopt);
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  saveTo(at("take.wav"));
  EXPECT_TRUE(document_->window()->isVisible());  // cancelling the panel also cancelled closing
}

TEST_F(ClosingTest, SaveThatFailsKeepsTheWindow) {
  openWindow();
  recordChunks(1);
  document_->window()->performClose();
  panels_->answerSheet(1);
  panels_->answerSave(at("gone/take.wav"));
  awaitIdle();
  EXPECT_TRUE(document_->window()->isVisible());
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
}

TEST_F(ClosingTest, ClosingWhileRecordingPausesAndAsks) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->window()->performClose();
  EXPECT_FALSE(document_->recorder()->isRecording());
  EXPECT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(-1);
  EXPECT_EQ(length(), kChunkFrames);
}

TEST_F(ClosingTest, AWindowThatIsBeingSavedClosesWhenTheFileIsComplete) {
  openWindow();
  recordChunks(2);
  const Samples samples = audio();
  const QPointer<OVRecorderWindow> window = document_->window();
  document_->saveFileNamed(at("take.wav"), 0);
  window->performClose();
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(panels_->sheets(), 0U);
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_EQ(readFile(at("take.wav")), samples);
}

TEST_F(ClosingTest, AChangedWindowThatIsBeingExportedAsksWhenTheFileIsComplete) {
  openWindow();
  recordChunks(2);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 0U);
  awaitIdle();
  EXPECT_EQ(panels_->sheets(), 1U);
}

TEST_F(ClosingTest, AnUnknownAnswerOfTheQuestionIsAProgrammingError) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  openDocument();
  EXPECT_DEATH(document_->alertDidEnd(7), "Unknown button return: 7");
}

TEST_F(ClosingTest, TheQuestionIsAskedWhereItCanBeSeen) {
  openWindow();
  document_->setDocumentEdited(true);
  document_->window()->showMinimized();
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->window()->isMinimized(); }));
  document_->window()->performClose();
  ASSERT_EQ(panels_->sheets(), 1U);
  EXPECT_FALSE(document_->window()->isMinimized());
  EXPECT_TRUE(document_->window()->isVisible());
}

TEST_F(ClosingTest, TheQuestionThatIsThereAlreadyIsShownAgain) {
  openWindow();
  document_->setDocumentEdited(true);
  document_->window()->performClose();
  document_->window()->showMinimized();
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 1U);
  EXPECT_FALSE(document_->window()->isMinimized());
}

TEST_F(ClosingTest, APanelThatHasToBeAnsweredFirstIsShownAndCancelsNoQuit) {
  openWindow();
  document_->setDocumentEdited(true);
  document_->importFile(nullptr);
  document_->window()->showMinimized();
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 0U);
  EXPECT_FALSE(document_->window()->isMinimized());
  EXPECT_TRUE(services_->postedAlerts().empty());
  EXPECT_EQ(services_->cancelledTerminations(), 0U);
  panels_->answerOpen({});
}

TEST_F(ClosingTest, AnExportThatEndsWhileAPanelIsOpenClosesNothingAndCancelsNoQuit) {
  openWindow();
  recordChunks(2);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  document_->window()->performClose();
  document_->dumpWaveform(nullptr);
  awaitIdle();
  EXPECT_TRUE(document_->window()->isVisible());
  EXPECT_TRUE(services_->postedAlerts().empty());
  EXPECT_EQ(services_->cancelledTerminations(), 0U);
  panels_->answerSave(std::nullopt);
}

TEST_F(ClosingTest, TheSaveAsPanelOfAClosingIsShownAgain) {
  openWindow();
  recordChunks(1);
  document_->window()->performClose();
  panels_->answerSheet(VLRecorderWindowController::kSave);
  document_->window()->showMinimized();
  document_->window()->performClose();
  EXPECT_EQ(panels_->savePanels(), 1U);
  EXPECT_FALSE(document_->window()->isMinimized());
  panels_->answerSave(std::nullopt);
}

TEST_F(ClosingTest, AChangedDocumentWithoutAWindowStaysWhileAPanelIsAnswered) {
  openDocument();
  document_->setDocumentEdited(true);
  document_->importFile(nullptr);
  EXPECT_FALSE(document_->windowShouldClose(nullptr));
  panels_->answerOpen({});
  EXPECT_FALSE(document_->windowShouldClose(nullptr));
  EXPECT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(document_->windowShouldClose(nullptr));
}

}  // namespace
