#include <cerrno>

#include <gmock/gmock.h>
#include <QComboBox>
#include <QFileInfo>
#include <QImage>
#include <QLabel>

#include "document/FileFixture.h"
#include "document/OVSaveJob.h"
#include "support/FileSizeLimit.h"
#include "waveform/OVWaveFormView.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SavingTest : public DocumentFileTest {
 protected:
  /// Chooses a kind as a person does in the panel's accessory.
  void chooseType(std::int32_t type) {
    auto* const choice =
        panels_->savePanel().accessoryView->findChild<QComboBox*>("fileTypeButton");
    ASSERT_NE(choice, nullptr);
    choice->setCurrentIndex(choice->findData(type));
  }

  void saveAs(const std::string& path, std::int32_t type) {
    document_->saveFileAs(nullptr);
    chooseType(type);
    panels_->answerSave(path);
    awaitIdle();
  }
};

TEST_F(SavingTest, ANewDocumentAsksWhereToSave) {
  openWindow();
  fill(ramp(100));
  document_->saveFile(nullptr);
  ASSERT_EQ(panels_->savePanels(), 1U);
  EXPECT_EQ(panels_->savePanel().suggestedName, "Unnamed");
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("wav"));
  chooseType(1);
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("aiff", "aif"));
  panels_->answerSave(std::nullopt);
  EXPECT_FALSE(document_->isFileIOActive());
}

TEST_F(SavingTest, TheThreeLosslessKindsHoldEverySampleExactly) {
  openDocument();
  const Samples samples = ramp(OVSaveJob::kChunkFrames + 1234);
  fill(samples);
  const std::vector<std::string> names{"take.wav", "take.aiff", "take.caf"};
  for (std::int32_t type = 0; type < 3; ++type) {
    const std::string path = at(names[static_cast<std::size_t>(type)]);
    saveAs(path, type);
    EXPECT_EQ(document_->currentFiletype(), type);
    EXPECT_EQ(readFile(path), samples) << path;
  }
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(SavingTest, AnAacFileHasTheExactLength) {
  openDocument();
  fill(ramp(100'001));
  saveAs(at("take.m4a"), 3);
  EXPECT_EQ(readFile(at("take.m4a")).size(), 2 * 100'001U);
}

TEST_F(SavingTest, ASavedDocumentIsUnchangedAndBearsItsName) {
  openWindow();
  recordChunks(2);
  ASSERT_TRUE(document_->isDocumentEdited());
  saveAs(at("my take.wav"), 0);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), at("my take.wav"));
  EXPECT_EQ(document_->window()->title(), "Orvo - my take.wav");
}

TEST_F(SavingTest, TheNextSaveAsksNothing) {
  openDocument();
  fill(ramp(100));
  saveAs(at("take.wav"), 0);
  fill(ramp(50, 9), 100);
  document_->saveFile(nullptr);
  EXPECT_EQ(panels_->savePanels(), 0U);
  awaitIdle();
  EXPECT_EQ(readFile(at("take.wav")), audio());
}

TEST_F(SavingTest, ADocumentThatWasOpenedIsSavedAsInItsOwnKind) {
  const std::string path = writeFile("old.aif", ramp(100), 1);
  openDocument();
  document_->setCurrentFilename(path);
  open(path);
  document_->saveFile(nullptr);
  ASSERT_EQ(panels_->savePanels(), 1U);
  EXPECT_EQ(panels_->savePanel().suggestedName, "old");
  EXPECT_EQ(panels_->savePanel().directory, folder_.path());
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("aiff", "aif"));
  panels_->answerSave(std::nullopt);
}

TEST_F(SavingTest, ASaveThatIsCancelledKeepsTheFlagAndEndsAQuit) {
  openWindow();
  recordChunks(1);
  document_->saveFileAs(nullptr);
  panels_->answerSave(std::nullopt);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  EXPECT_EQ(document_->currentFilename(), "");
}

TEST_F(SavingTest, ASaveStopsTheTransportAndRestoresIt) {
  openWindow();
  recordChunks(2);
  pressPlay();
  document_->saveFileNamed(at("take.wav"), 0);
  EXPECT_TRUE(document_->isFileIOActive());
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_FALSE(transportEnabled());
  EXPECT_TRUE(document_->loadingIndicator()->isVisibleTo(document_->window()));
  awaitIdle();
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(document_->loadingIndicator()->isVisibleTo(document_->window()));
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(document_->recordingPosition(), length());
}

TEST_F(SavingTest, ASaveDuringARecordingHoldsWhatIsRecorded) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  ASSERT_TRUE(capture(0.5F));
  saveTo(at("take.wav"));
  EXPECT_EQ(readFile(at("take.wav")), audio());
  EXPECT_EQ(length(), 2U * kChunkFrames);
}

TEST_F(SavingTest, WhileASaveRunsNothingElseStarts) {
  openWindow();
  recordChunks(2);
  const std::string other = writeFile("other.wav", ramp(10));
  document_->saveFileNamed(at("take.wav"), 0);
  document_->saveFileAs(nullptr);
  document_->importFile(nullptr);
  document_->openFileNamed(other);
  document_->exportRingtone(nullptr);
  document_->removeAfterMarker(nullptr);
  document_->removeBeforeMarker(nullptr);
  document_->reverseBuffer(nullptr);
  document_->undoCommand();
  document_->redoCommand();
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  EXPECT_EQ(panels_->savePanels(), 0U);
  EXPECT_EQ(panels_->openPanels(), 0U);
  using Action = VLRecorderWindowController::MenuAction;
  EXPECT_FALSE(document_->validateMenuItem(Action::file));
  EXPECT_FALSE(document_->validateMenuItem(Action::edit));
  awaitIdle();
  EXPECT_TRUE(document_->validateMenuItem(Action::file));
  EXPECT_EQ(length(), 2U * kChunkFrames);
}

// Failures --------------------------------------------------------------------------------------

TEST_F(SavingTest, ASaveIntoAFolderThatIsGoneIsToldOnceAndChangesNothing) {
  openWindow();
  recordChunks(1);
  saveTo(at("gone/100% of it.wav"));
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->alerts()[0].title, "“100% of it.wav” could not be saved");
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("is not there any more"));
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
  EXPECT_EQ(document_->currentFiletype(), -1);
  EXPECT_TRUE(transportEnabled());
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
}

TEST_F(SavingTest, ASaveOntoAFolderLeavesTheFolder) {
  openDocument();
  fill(ramp(10));
  folder_.makeFolder("take.wav");
  saveTo(at("take.wav"));
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SavingTest, AFullDiskLeavesTheOldFileWholeAndNothingBesideIt) {
  openDocument();
  fill(ramp(5'000'000));
  const std::string path = writeFile("take.wav", ramp(10));
  const std::string before = bytesOf(path);
  support::FileSizeLimit limit(1'000'000);
  saveTo(path);
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(bytesOf(path), before);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SavingTest, AKindThatCannotHoldTheLengthIsRefusedBeforehand) {
  openDocument();
  const std::uint64_t most = *OVAudioFileWriter::maximumFrames(1);
  fill(ramp(1), most);  // one frame too many, most of it a hole
  saveTo(at("take.aiff"), 1);
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("too long for a file of the type AIFF"));
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SavingTest, AnEmptyRecordingIsRefusedAsAacAndSavedAsWav) {
  openDocument();
  saveTo(at("take.m4a"), 3);
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(filesInFolder(), 0U);
  saveTo(at("take.wav"), 0);
  EXPECT_EQ(readFile(at("take.wav")).size(), 0U);
}

TEST_F(SavingTest, WhatStorageDoesNotGiveBackIsSilentInPlaceAndTold) {
  openWindow();
  const Samples samples = ramp(1000);
  fill(samples);
  fill(samples, 1500);
  document_->setDocumentEdited(true);
  saveTo(at("take.wav"));
  Samples expected = samples;
  expected.resize(3000, 0.0F);
  expected.insert(expected.end(), samples.begin(), samples.end());
  EXPECT_EQ(readFile(at("take.wav")), expected);
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("0.01 seconds"));
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(SavingTest, APictureOntoAFullDiskIsToldWithItsCause) {
  openWindow();
  const support::FileSizeLimit limit(10);
  document_->dumpWaveform(nullptr);
  panels_->answerSave(at("picture.png"));
  settle();
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("larger than the disk allows"));
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SavingTest, AFileThatIsThereIsNotReplacedByOneWithGaps) {
  openWindow();
  fill(ramp(1000));
  fill(ramp(1000), 1500);
  const std::string path = writeFile("take.wav", ramp(10));
  const std::string before = bytesOf(path);
  saveTo(path);
  EXPECT_EQ(bytesOf(path), before);
  EXPECT_EQ(filesInFolder(), 1U);
  EXPECT_EQ(document_->currentFilename(), "");
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->alerts()[0].title, "“take.wav” could not be saved");
}

// Closing ---------------------------------------------------------------------------------------

TEST_F(SavingTest, AnUnchangedDocumentClosesWithoutAQuestion) {
  openWindow();
  EXPECT_TRUE(document_->windowShouldClose(document_->window()));
  EXPECT_EQ(panels_->sheets(), 0U);
}

TEST_F(SavingTest, AChangedDocumentAsksOnceAndStaysWhileItAsks) {
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

TEST_F(SavingTest, CancelKeepsTheWindowAndEndsAQuit) {
  openWindow();
  document_->setDocumentEdited(true);
  document_->window()->performClose();
  panels_->answerSheet(-1);
  EXPECT_TRUE(document_->window()->isVisible());
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 1U);
}

TEST_F(SavingTest, DontSaveClosesTheWindow) {
  openWindow();
  document_->setDocumentEdited(true);
  const QPointer<OVRecorderWindow> window = document_->window();
  window->performClose();
  panels_->answerSheet(0);
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
}

TEST_F(SavingTest, SaveClosesTheWindowWhenTheFileIsComplete) {
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

TEST_F(SavingTest, SaveWithACancelledPanelKeepsTheWindow) {
  openWindow();
  recordChunks(1);
  document_->window()->performClose();
  panels_->answerSheet(1);
  panels_->answerSave(std::nullopt);
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  saveTo(at("take.wav"));
  EXPECT_TRUE(document_->window()->isVisible());  // the wish to close went with the panel
}

TEST_F(SavingTest, SaveThatFailsKeepsTheWindow) {
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

TEST_F(SavingTest, ClosingWhileRecordingPausesAndAsks) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->window()->performClose();
  EXPECT_FALSE(document_->recorder()->isRecording());
  EXPECT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(-1);
  EXPECT_EQ(length(), kChunkFrames);
}

TEST_F(SavingTest, AWindowThatIsBeingSavedClosesWhenTheFileIsComplete) {
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

TEST_F(SavingTest, AChangedWindowThatIsBeingExportedAsksWhenTheFileIsComplete) {
  openWindow();
  recordChunks(2);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 0U);
  awaitIdle();
  EXPECT_EQ(panels_->sheets(), 1U);
}

TEST_F(SavingTest, AnUnknownAnswerOfTheQuestionIsAProgrammingError) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  openDocument();
  EXPECT_DEATH(document_->alertDidEnd(7), "Unknown button return: 7");
}

// Exports ---------------------------------------------------------------------------------------

TEST_F(SavingTest, ARingtoneBeginsAtTheMarkerAndLastsAtMostFortySeconds) {
  openWindow();
  fill(ramp(50 * 44100));
  document_->setPlaybackPosition(5 * 44100);
  document_->setDocumentEdited(true);
  document_->exportRingtone(nullptr);
  const auto* const rule = qobject_cast<QLabel*>(panels_->savePanel().accessoryView);
  ASSERT_NE(rule, nullptr);
  EXPECT_THAT(rule->text().toStdString(), HasSubstr("at most 40 seconds"));
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("m4r"));
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(readFile(at("tone.m4r")).size(), 2U * 40 * 44100);
  EXPECT_THAT(desktop_.opened, ElementsAre("file://" + at("tone.m4r")));
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
}

TEST_F(SavingTest, ARingtoneWithTheMarkerAtTheEndBeginsAtTheStart) {
  openDocument();
  fill(ramp(44100));
  document_->setPlaybackPosition(44100);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(readFile(at("tone.m4r")).size(), 2U * 44100);
}

TEST_F(SavingTest, ARingtoneThatFailsIsNotOpened) {
  openDocument();
  fill(ramp(44100));
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("gone/tone.m4r"));
  awaitIdle();
  saveTo(at("take.wav"));
  EXPECT_THAT(desktop_.opened, IsEmpty());
  EXPECT_EQ(services_->alerts().size(), 1U);
}

TEST_F(SavingTest, ASavedFileThatNoProgramOpensIsTold) {
  openDocument();
  fill(ramp(44100));
  desktop_.knowsPrograms = false;
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_EQ(alertCount(), 1U);
}

TEST_F(SavingTest, TheWaveformPictureHasTheViewsSizeInThePixelsOfTheScreen) {
  openWindow();
  fill(ramp(44100));
  auto* const view = document_->window()->findChild<OVWaveFormView*>("wfView");
  view->grab();
  document_->setDocumentEdited(true);
  document_->dumpWaveform(nullptr);
  EXPECT_THAT(panels_->savePanel().acceptedSuffixes(), ElementsAre("png"));
  panels_->answerSave(at("picture.png"));
  settle();
  const QImage picture(QString::fromStdString(at("picture.png")));
  EXPECT_EQ(picture.size(), view->size() * view->devicePixelRatioF());
  EXPECT_EQ(picture.convertToFormat(QImage::Format_ARGB32),
            view->image().convertToFormat(QImage::Format_ARGB32));
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
}

TEST_F(SavingTest, APictureThatCannotBeWrittenIsTold) {
  openWindow();
  document_->dumpWaveform(nullptr);
  panels_->answerSave(at("gone/picture.png"));
  settle();
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->alerts()[0].title, "“picture.png” could not be saved");
}

TEST_F(SavingTest, ACancelledExportChangesNothing) {
  openWindow();
  document_->exportRingtone(nullptr);
  panels_->answerSave(std::nullopt);
  document_->dumpWaveform(nullptr);
  panels_->answerSave(std::nullopt);
  EXPECT_EQ(filesInFolder(), 0U);
  EXPECT_EQ(services_->cancelledTerminations(), 0U);
}

}  // namespace
