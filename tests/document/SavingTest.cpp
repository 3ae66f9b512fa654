#include <gmock/gmock.h>
#include <QComboBox>

#include "document/FileFixture.h"
#include "document/OVSaveJob.h"
#include "support/FileSizeLimit.h"

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
  document_->undoCommand();
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

}  // namespace
