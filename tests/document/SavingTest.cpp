#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <semaphore>
#include <utility>

#include <gmock/gmock.h>
#include <QComboBox>
#include <QProgressBar>

#include "document/FileFixture.h"
#include "document/files/OVSaveJob.h"
#include "platform/files/UserAudioFiles.h"
#include "support/FileSizeLimit.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SavingTest : public DocumentFileFixture {
 protected:
  /// Chooses a kind as the user does in the panel's accessory.
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
  EXPECT_THAT(panels_->savePanel().suggestedName, testing::StartsWith("Recording 2"));
  EXPECT_THAT(panels_->savePanel().fileTypes, testing::Contains("wav"));
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

TEST_F(SavingTest, UndoAfterASaveWithGapsDiffersFromTheFile) {
  openWindow();
  fill(ramp(1000));
  fill(ramp(1000), 1500);
  document_->setPlaybackPosition(2400);
  document_->removeAfterMarker(nullptr);
  settle();
  saveTo(at("take.wav"));
  ASSERT_EQ(services_->alerts().size(), 1U);
  document_->undoCommand();
  settle();
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

TEST_F(SavingTest, ANameMayHoldQuotesAndLineBreaks) {
  openWindow();
  recordChunks(1);
  const std::string path = at("\"two\"\nlines %1.wav");
  saveAs(path, 0);
  EXPECT_EQ(readFile(path), audio());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SavingTest, ANameThatIsTooLongIsToldAndLeavesNothing) {
  openWindow();
  recordChunks(1);
  std::string threeBytesEach;
  for (int i = 0; i < 85; ++i) {
    threeBytesEach += "録";
  }
  for (const std::string& name : {std::string(252, 'x'), std::string(400, 'x'), threeBytesEach}) {
    services_->clear();
    saveAs(at(name + ".wav"), 0);
    ASSERT_EQ(services_->alerts().size(), 1U);
    EXPECT_EQ(services_->alerts()[0].message, "The name is too long.");
    EXPECT_TRUE(document_->isDocumentEdited());
    EXPECT_EQ(document_->currentFilename(), "");
  }
  EXPECT_EQ(filesInFolder(), 0U);
  saveAs(at(std::string(251, 'x') + ".wav"), 0);
  EXPECT_FALSE(document_->isDocumentEdited());
}

TEST_F(SavingTest, AFailedSaveOfARecordingWithGapsIsToldOnce) {
  openWindow();
  fill(ramp(1000));
  fill(ramp(1000), 1500);
  const support::FileSizeLimit limit(10);
  saveTo(at("take.wav"));
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts().at(0).message, HasSubstr("on this disk may be"));
  EXPECT_EQ(filesInFolder(), 0U);
}

// Undo and redo after a save -------------------------------------------------------------------

TEST_F(SavingTest, UndoAfterASaveOfACutDiffersFromTheFileAndRedoDoesNot) {
  const std::string path = writeFile("take.wav", ramp(1000));
  openWindow();
  document_->setCurrentFilename(path);
  open(path);
  document_->setPlaybackPosition(400);
  document_->removeAfterMarker(nullptr);
  settle();
  saveTo(path);
  ASSERT_FALSE(document_->isDocumentEdited());
  document_->undoCommand();
  EXPECT_EQ(length(), 1000U);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowShouldClose(document_->window()));
  document_->redoCommand();
  EXPECT_EQ(audio(), readFile(path));
  EXPECT_FALSE(document_->isDocumentEdited());
  document_->undoCommand();
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(SavingTest, RedoAfterASaveOfWhatWasUndoneDiffersFromTheFile) {
  openWindow();
  recordChunks(1);
  saveTo(at("take.wav"));
  recordChunks(1, 0.5F);
  document_->undoCommand();
  saveTo(at("take.wav"));
  document_->redoCommand();
  EXPECT_EQ(length(), 2U * kChunkFrames);
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(SavingTest, UndoAfterASaveOfARecordingOrAnImportDiffersFromTheFile) {
  openWindow();
  recordChunks(2);
  saveTo(at("take.wav"));
  document_->undoCommand();
  EXPECT_EQ(length(), 0U);
  EXPECT_TRUE(document_->isDocumentEdited());
  document_->redoCommand();
  EXPECT_FALSE(document_->isDocumentEdited());

  import(writeFile("other.wav", ramp(100)));
  ASSERT_TRUE(document_->isDocumentEdited());
  saveTo(at("take.wav"));
  document_->undoCommand();
  EXPECT_EQ(length(), 2U * kChunkFrames);
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(SavingTest, AnExportOrAFailedSaveLeavesToUndoWhatItHadToSay) {
  openWindow();
  recordChunks(2);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  saveTo(at("gone/take.wav"));
  EXPECT_TRUE(document_->isDocumentEdited());
  document_->undoCommand();
  EXPECT_FALSE(document_->isDocumentEdited());  // the empty document as it was
}

// Progress ---------------------------------------------------------------------------------------

TEST_F(SavingTest, TheBarMovesWhileTheFileIsWritten) {
  support::FailingTemporaryFiles disk;
  const platform::Installed<platform::TemporaryFiles>::Scope installed(disk);
  openWindow();
  const Samples chunk(2 * OVSaveJob::kChunkFrames, 0.25F);
  for (std::uint64_t i = 0; i < 4; ++i) {
    fill(chunk, i * OVSaveJob::kChunkFrames);
  }
  std::counting_semaphore<> turns(0);
  disk.beforeReads([&turns] { turns.acquire(); });  // one read per chunk
  document_->saveFileNamed(at("take.wav"), 0);
  const auto value = [this] {
    const QProgressBar* const bar = document_->loadingIndicator();
    return static_cast<double>(bar->value() - bar->minimum()) / (bar->maximum() - bar->minimum());
  };
  EXPECT_EQ(value(), 0.0);
  for (const double written : {0.25, 0.5, 0.75}) {
    turns.release();
    EXPECT_TRUE(runMainLoopUntil([&] { return std::abs(value() - written) < 0.01; }))
        << value() << " instead of " << written;
    EXPECT_TRUE(document_->loadingIndicator()->isVisibleTo(document_->window()));
  }
  disk.beforeReads(nullptr);
  turns.release();
  awaitIdle();
  EXPECT_EQ(document_->loadingIndicator()->value(), document_->loadingIndicator()->minimum());
}

// Media ------------------------------------------------------------------------------------------

class SavingMediaTest : public SavingTest {
 protected:
  ~SavingMediaTest() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
    ::chmod(folder_.path().c_str(), 0700);
  }

  // Root may write everywhere; permissions affect only other users.
  void becomeOrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0) {
      ASSERT_EQ(::seteuid(kNobody), 0);
      dropped_ = true;
    }
  }

  /// A document called take.wav with changes that are not in the file of this name.
  void openChanged() {
    const std::string path = writeFile("take.wav", ramp(100));
    openWindow();
    document_->setCurrentFilename(path);
    open(path);
    document_->setCurrentFiletype(0);
    document_->window()->setTitle(VLRecorderWindowController::titleWithName("take.wav"));
    recordChunks(1);
    recorded_ = audio();
    before_ = bytesOf(path);
  }

  /// One alert reported the failed save with this reason; the document and the file are unchanged.
  void expectTold(const std::string& reason) {
    ASSERT_EQ(services_->alerts().size(), 1U);
    EXPECT_THAT(services_->alerts()[0].title + services_->alerts()[0].message,
                HasSubstr("“take.wav”"));
    EXPECT_THAT(services_->alerts()[0].message, HasSubstr(reason));
    EXPECT_TRUE(document_->isDocumentEdited());
    EXPECT_EQ(document_->currentFilename(), at("take.wav"));
    EXPECT_EQ(document_->window()->title(), "Orvo - take.wav");
    EXPECT_EQ(audio(), recorded_);
    EXPECT_TRUE(transportEnabled());
    EXPECT_EQ(bytesOf(at("take.wav")), before_);
    EXPECT_EQ(filesInFolder(), 1U);
  }

  Samples recorded_;
  std::string before_;
  bool dropped_ = false;
};

TEST_F(SavingMediaTest, AFolderThatMayNotBeWrittenIsTold) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can make another user's file";
  }
  openChanged();
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0555), 0);
  becomeOrdinaryUser();
  document_->saveFile(nullptr);
  awaitIdle();
  expectTold("You may not write in the folder “");
}

/// The file is the user's own, in a folder in which the user may make none.
class SavingInPlaceTest : public SavingMediaTest {
 protected:
  void saveWhereNothingCanBeMade() {
    openChanged();
    if (::geteuid() == 0) {
      constexpr uid_t kNobody = 65534;
      ASSERT_EQ(::chown(at("take.wav").c_str(), kNobody, kNobody), 0);
    }
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0555), 0);
    becomeOrdinaryUser();
    document_->saveFile(nullptr);
    awaitIdle();
    ASSERT_EQ(panels_->sheets(), 1U);
    EXPECT_THAT(panels_->sheet().title.toStdString(), HasSubstr("“take.wav”"));
    EXPECT_EQ(panels_->sheet().buttons.size(), 2U);
    EXPECT_EQ(alertCount(), 0U);
  }
};

TEST_F(SavingInPlaceTest, TheFileIsWrittenAfterAQuestion) {
  ASSERT_NO_FATAL_FAILURE(saveWhereNothingCanBeMade());
  EXPECT_EQ(bytesOf(at("take.wav")), before_);
  panels_->answerSheet(1);
  awaitIdle();
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(readFile(at("take.wav")), recorded_);
  EXPECT_EQ(alertCount(), 0U);
}

TEST_F(SavingInPlaceTest, CancelKeepsFileAndChangesAndEndsAQuit) {
  ASSERT_NO_FATAL_FAILURE(saveWhereNothingCanBeMade());
  panels_->answerSheet(0);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(bytesOf(at("take.wav")), before_);
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  EXPECT_EQ(alertCount(), 0U);
}

/// Temporary files that can be written, but not read beyond the first megabyte.
class UnreadableTemporaryFiles : public platform::TemporaryFiles {
 public:
  explicit UnreadableTemporaryFiles(std::string folder) : folder_(std::move(folder) + "/") {}
  [[nodiscard]] std::string directory() const override { return folder_; }
  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    auto created = real_->createUnlinked(pathTemplate);
    if (created) {
      created->file = std::make_unique<Unreadable>(std::move(created->file));
    }
    return created;
  }
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    return real_->createNamed(pathTemplate);
  }

 private:
  class Unreadable : public platform::File {
   public:
    explicit Unreadable(std::unique_ptr<platform::File> file) : file_(std::move(file)) {}
    platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                  std::uint64_t offset) override {
      constexpr std::uint64_t kReadable = 1 << 20;
      return offset + byteCount > kReadable ? platform::FileTransfer{.byteCount = 0, .error = EIO}
                                            : file_->readAt(destination, byteCount, offset);
    }
    platform::FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                   std::uint64_t offset) override {
      return file_->writeAt(data, byteCount, offset);
    }
    std::uint64_t size() override { return file_->size(); }
    int setSize(std::uint64_t byteCount) override { return file_->setSize(byteCount); }

   private:
    const std::unique_ptr<platform::File> file_;
  };

  const std::shared_ptr<platform::TemporaryFiles> real_ =
      platform::TemporaryFiles::whenNoneIsInstalled();
  const std::string folder_;
};

TEST_F(SavingInPlaceTest, TheAlertOfAFailureNamesTheCopyOfTheOldFile) {
  support::TemporaryFolder copies;
  ASSERT_EQ(::chmod(copies.path().c_str(), 0777), 0);
  ASSERT_NO_FATAL_FAILURE(saveWhereNothingCanBeMade());
  fill(ramp(600'000), length());
  UnreadableTemporaryFiles files(copies.path());
  const platform::Installed<platform::TemporaryFiles>::Scope installed(files);
  panels_->answerSheet(1);
  awaitIdle();
  ASSERT_EQ(services_->alerts().size(), 1U);
  const std::string told = services_->alerts()[0].message;
  const std::size_t path = told.find(copies.path());
  ASSERT_NE(path, std::string::npos) << told;
  EXPECT_EQ(bytesOf(told.substr(path, told.rfind('.') - path)), before_);
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(SavingMediaTest, AFileThatMayNotBeWrittenIsTold) {
  openChanged();
  ASSERT_EQ(::chmod(at("take.wav").c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  becomeOrdinaryUser();
  document_->saveFile(nullptr);
  awaitIdle();
  expectTold("You do not have the permission for it.");
}

TEST_F(SavingMediaTest, ADiskThatCanOnlyBeReadIsTold) {
  openChanged();
  support::TestUserAudioFiles disk;
  disk.failOpening(EROFS);
  const platform::Installed<platform::UserAudioFiles>::Scope installed(disk);
  document_->saveFile(nullptr);
  awaitIdle();
  expectTold("You are not allowed to write");
}

TEST_F(SavingMediaTest, AMediumThatIsPulledWhileItIsWrittenIsTold) {
  for (const int error : {ENODEV, EIO}) {
    services_->clear();
    openChanged();
    support::TestUserAudioFiles disk;
    disk.fillUpAfter(10'000, error);
    const platform::Installed<platform::UserAudioFiles>::Scope installed(disk);
    document_->saveFile(nullptr);
    awaitIdle();
    expectTold("It may have been removed.");
    document_->setDocumentEdited(false);
    closeDocument();
  }
}

}  // namespace
