// Documents that were opened from a recovered file.
#include <gmock/gmock.h>
#include <unistd.h>

#include "document/FileFixture.h"
#include "document/files/loadFile.h"
#include "document/files/recoveredFiles.h"
#include "platform/files/PosixFile.h"
#include "storage/JournalReplay.h"
#include "support/Gate.h"
#include "support/RecoveredFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RememberingKeeper.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kName = "Orvo recording 2026-11-21 14.02.31.caf";

class RecoveredTest : public DocumentFileFixture {
 protected:
  /// Adds a file of these bytes and claims it.
  OVRecoveredFile add(const std::string& bytes) {
    recovered_.put(kName, bytes);
    const auto listing = recoveredFilesIn(recovered_.path());
    EXPECT_THAT(listing.files, SizeIs(1));
    return listing.files.empty() ? OVRecoveredFile() : listing.files.front();
  }

  /// Opens a recovered file of these samples in a new window, and waits until it is loaded.
  void openRecovered(const Samples& samples) {
    openWindow();
    document_->openRecovered(add(support::recoveredCaf(samples)));
    awaitIdle();
  }

  [[nodiscard]] bool isKept() {
    settle();
    return recovered_.has(kName);
  }
  /// Whether another listing can claim the file.
  [[nodiscard]] bool isReleased() const {
    return recoveredFilesIn(recovered_.path()).files.size() == 1;
  }

  void close(int answer) {
    document_->window()->performClose();
    ASSERT_EQ(panels_->sheets(), 1U);
    panels_->answerSheet(answer);
  }

  support::RecoveredFolder recovered_{folder_.path()};
};

TEST_F(RecoveredTest, ADocumentHasTheSoundAndNoFileIsEditedAndHasNothingToUndo) {
  const Samples samples = ramp(2 * kLoadChunkFrames + 77);
  openRecovered(samples);
  EXPECT_EQ(audio(), samples);
  EXPECT_TRUE(document_->currentFilename().empty());
  EXPECT_EQ(document_->currentFiletype(), -1);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canRedo());
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_TRUE(isKept());
  EXPECT_FALSE(isReleased());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(RecoveredTest, TheTitleSaysWhenTheRecordingBeganAndSoDoesTheSuggestedName) {
  openRecovered(ramp(1000));
  const QString start =
      QLocale().toString(QDateTime(QDate(2026, 11, 21), QTime(14, 2, 31)), QLocale::ShortFormat);
  EXPECT_EQ(document_->window()->title(), "Orvo - Recovered " + start);
  document_->saveFile(nullptr);
  ASSERT_EQ(panels_->savePanels(), 1U);
  EXPECT_EQ(panels_->savePanel().suggestedName, "Recovered 2026-11-21 14.02.31");
  panels_->answerSave(std::nullopt);
  EXPECT_TRUE(isKept());
}

TEST_F(RecoveredTest, SavingEverythingDeletesTheRecoveredFile) {
  const Samples samples = ramp(1000);
  openRecovered(samples);
  document_->saveFile(nullptr);
  panels_->answerSave(at("take.wav"));
  awaitIdle();
  EXPECT_FALSE(isKept());
  EXPECT_EQ(readFile(at("take.wav")), samples);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->window()->title(), "Orvo - take.wav");
}

TEST_F(RecoveredTest, DontSaveDeletesItAndCancelKeepsIt) {
  openRecovered(ramp(1000));
  close(VLRecorderWindowController::kCancelClosing);
  EXPECT_TRUE(isKept());
  EXPECT_FALSE(isReleased());
  close(VLRecorderWindowController::kDontSave);
  document_.reset();
  EXPECT_FALSE(isKept());
}

TEST_F(RecoveredTest, ClosingWithSaveDeletesItWhenTheSaveIsComplete) {
  openRecovered(ramp(1000));
  const QPointer<OVRecorderWindow> window = document_->window();
  close(VLRecorderWindowController::kSave);
  EXPECT_TRUE(isKept());
  panels_->answerSave(at("take.wav"));
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_FALSE(isKept());
}

TEST_F(RecoveredTest, IfTheProgramEndsUnexpectedlyAgainTheNewFileReplacesIt) {
  const auto keeper = std::make_shared<support::RememberingKeeper>();
  const platform::Installed<RecordingKeeper>::Scope installation(keeper);
  openRecovered(ramp(1000));
  ASSERT_EQ(keeper->kept.size(), 1U);
  platform::PosixFile file(::dup(keeper->kept.begin()->second.journal));
  const auto origin = readJournalOrigin(file);
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->state, journal::State::edited);
  EXPECT_EQ(origin->recoveredFrom, kName);
}

TEST_F(RecoveredTest, ASaveThatFailsAndAnExportKeepIt) {
  openRecovered(ramp(1000));
  document_->saveFileNamed(at("gone/take.wav"), 0);
  awaitIdle();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_TRUE(isKept());
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_FALSE(bytesOf(at("tone.m4r")).empty());
  EXPECT_TRUE(isKept());
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(RecoveredTest, UndoingALaterEditLeavesItEdited) {
  openRecovered(ramp(1000));
  document_->setPlaybackPosition(500);
  document_->removeAfterMarker(nullptr);
  awaitIdle();
  document_->undoCommand();
  awaitIdle();
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_TRUE(isKept());
}

TEST_F(RecoveredTest, DocumentsOfOtherFilesDeleteNothing) {
  recovered_.add(kName, ramp(1000));
  openWindow();
  open(recovered_.file(kName));
  document_->setDocumentEdited(true);
  close(VLRecorderWindowController::kDontSave);
  document_.reset();
  EXPECT_TRUE(isKept());
}

TEST_F(RecoveredTest, AWindowThatClosesDuringTheLoadKeepsAndReleasesIt) {
  support::Gate gate;
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  files.beforeWrites(gate.holdingTheFirst());
  openWindow();
  document_->openRecovered(add(support::recoveredCaf(ramp(1000))));
  ASSERT_TRUE(gate.awaitArrival());
  EXPECT_FALSE(isReleased());
  document_->window()->performClose();
  EXPECT_EQ(panels_->sheets(), 0U);
  document_.reset();
  gate.open();
  EXPECT_TRUE(isKept());
  EXPECT_TRUE(isReleased());
}

TEST_F(RecoveredTest, ADamagedFileGivesWhatItHoldsWithOneAlertAndStandsForIt) {
  const Samples samples = ramp(5000);
  openWindow();
  document_->openRecovered(add(support::recoveredCaf(samples, 80000)));
  awaitIdle();
  EXPECT_EQ(audio(), samples);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_TRUE(document_->isDocumentEdited());
  close(VLRecorderWindowController::kDontSave);
  document_.reset();
  EXPECT_FALSE(isKept());
}

TEST_F(RecoveredTest, AFileThatCannotBeReadIsKeptAndReleasedAfterOneAlert) {
  for (const std::string& bytes : {std::string(), std::string("This is a letter.\n")}) {
    openWindow();
    document_->openRecovered(add(bytes));
    awaitIdle();
    EXPECT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_FALSE(document_->isDocumentEdited());
    EXPECT_EQ(document_->window()->title(), "Orvo - Unnamed");
    closeDocument();
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(isReleased());
    services_->clear();
  }
}

TEST_F(RecoveredTest, AFileThatCouldNotBeLoadedWholeIsKept) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  files.fillUpAfter(kLoadChunkFrames * kFrameBytes + 1000);
  constexpr std::size_t kLacking = 500;  // frames, shorter than a header may be
  document_->openRecovered(add(support::recoveredCaf(ramp(kLoadChunkFrames + kLacking))));
  awaitIdle();
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(length(), kLoadChunkFrames);
  EXPECT_TRUE(isReleased());
  document_->setDocumentEdited(true);
  close(VLRecorderWindowController::kDontSave);
  document_.reset();
  EXPECT_TRUE(isKept());
}

TEST_F(RecoveredTest, ADocumentWithoutStorageKeepsAndReleasesIt) {
  support::FailingTemporaryFiles files;
  files.failCreation(EACCES);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  document_->openRecovered(add(support::recoveredCaf(ramp(100))));
  EXPECT_TRUE(isReleased());
  EXPECT_FALSE(document_->isDocumentEdited());
}

// Origin ----------------------------------------------------------------------------------------

TEST_F(RecoveredTest, TheOriginIsKnownFromTheEndOfTheLoadUntilEverythingIsSaved) {
  const auto document = std::make_shared<int>();
  std::unique_ptr<OVDocumentParts> parts;
  parts = std::make_unique<OVDocumentParts>(
      OVDocumentParts::Operations{.menuCommand = {},
                                  .loading = {.loaded = [&] { parts->loading.drawWaveform(); },
                                              .drawn = [&] { parts->loading.complete(); },
                                              .ended = [&] { parts->loadEnded(); }},
                                  .fileSavingComplete = {},
                                  .saveFile = {},
                                  .alertDidEnd = {}});
  parts->life.begin(document);
  parts->audio.setBuffer(OVBlockBuffer::init());
  parts->summaries->setBuffer(parts->audio.buffer());
  std::vector<std::string> origins;
  parts->recovered.setChangeHandler([&] { origins.push_back(parts->recovered.path()); });
  const OVRecoveredFile file = add(support::recoveredCaf(ramp(1000)));
  parts->recovered.open(file);
  EXPECT_EQ(parts->recovered.path(), "");
  ASSERT_TRUE(runMainLoopUntil([&] { return !parts->operation.isActive(); }));
  EXPECT_THAT(origins, ElementsAre(file.path));
  parts->recovered.saved();
  EXPECT_THAT(origins, ElementsAre(file.path, ""));
  settle();
}

}  // namespace
