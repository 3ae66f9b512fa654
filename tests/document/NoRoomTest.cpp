// Files for which a disk has no room are refused beforehand, in one sentence, with nothing half
// done.
#include <filesystem>

#include <gmock/gmock.h>

#include "document/FileFixture.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/programs/Mpeg4Length.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class NoRoomTest : public DocumentFileFixture {
 protected:
  static constexpr std::uint64_t kFrames = 10'000;
  static constexpr std::uint64_t kNeeded = kFrames * kFrameBytes;  // in the temporary file
  static constexpr std::uint64_t kSaved = kFrames * 4;             // in a WAV file

  ~NoRoomTest() override {
    gate_.open();
    panels_->answerEverySheetWith(VLRecorderWindowController::kDontSave);
    closeDocument();
  }

  /// One alert says that this file needs so much where there is only so much.
  void expectTold(const std::string& title, const std::string& needed, const std::string& left) {
    ASSERT_THAT(services_->alerts(), SizeIs(1));
    EXPECT_EQ(services_->alerts()[0].title, title);
    EXPECT_THAT(services_->alerts()[0].message, AllOf(HasSubstr(needed), HasSubstr(left)));
  }

  support::Gate gate_;
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

// Loading ---------------------------------------------------------------------------------------

TEST_F(NoRoomTest, AnImportIsRefusedBeforehandAndChangesNothing) {
  openWindow();
  recordChunks(1);
  document_->setDocumentEdited(false);
  const Samples before = audio();
  freeSpace_->set(kNeeded - 1);
  import(writeFile("part.wav", ramp(kFrames)));
  ASSERT_NO_FATAL_FAILURE(
      expectTold("“part.wav” does not fit on the disk", "80.000 kB", "79.999 kB"));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("“/nowhere”"));
  EXPECT_EQ(audio(), before);
  EXPECT_EQ(files_.writes(), 1U) << "the recording's";
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  EXPECT_TRUE(transportEnabled());
}

TEST_F(NoRoomTest, AnOpenedFileIsRefusedBeforehandAndTheWindowBelongsToNoFile) {
  openWindow();
  const std::string path = writeFile("take.wav", ramp(kFrames));
  document_->setCurrentFilename(path);
  freeSpace_->set(1000);
  open(path);
  ASSERT_NO_FATAL_FAILURE(expectTold("“take.wav” does not fit on the disk", "80.0 kB", "1.0 kB"));
  EXPECT_EQ(files_.writes(), 0U);
  EXPECT_EQ(length(), 0U);
  EXPECT_EQ(document_->currentFilename(), "");
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_TRUE(transportEnabled());
}

TEST_F(NoRoomTest, AFileThatJustFitsIsLoaded) {
  openWindow();
  freeSpace_->set(kNeeded);
  open(writeFile("take.wav", ramp(kFrames)));
  EXPECT_EQ(length(), kFrames);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(NoRoomTest, WhereTheFreeSpaceCannotBeReadEverythingIsTried) {
  openWindow();
  freeSpace_->fail(EIO);
  open(writeFile("take.wav", ramp(kFrames)));
  EXPECT_EQ(length(), kFrames);
  saveTo(at("copy.wav"));
  EXPECT_EQ(readFile(at("copy.wav")).size(), 2 * kFrames);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(NoRoomTest, AFileOfUnknownLengthIsTried) {
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "sine=d=3", "-ac", "2", "-ar", "44100", "-c:a",
                             "alac", at("live.m4a")}),
            "");
  ASSERT_TRUE(support::setMpeg4Length(at("live.m4a"), 44100, 0));
  {
    const auto reader = OVAudioFileReader::initWithFile(at("live.m4a"));
    ASSERT_NE(reader, nullptr);
    ASSERT_EQ(reader->fileSizeInFrames(), 0) << "this file is to have no length";
  }
  openWindow();
  freeSpace_->set(1000);
  open(at("live.m4a"));
  EXPECT_EQ(length(), 3U * 44100U);
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(NoRoomTest, ALoadThatBecameImpossibleMeanwhileGivesItsSpaceBackToTheNextRecording) {
  openWindow();
  recordChunks(1);
  const std::string path = writeFile("part.wav", ramp(2 * platform::kFileChunkFrames));
  files_.fillUpAfter(platform::kFileChunkFrames * kFrameBytes + 100);
  import(path);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(length(), kChunkFrames);
  document_->stopButton(nullptr);
  pressRecord();
  for (int i = 0; i < 60; ++i) {
    ASSERT_TRUE(capture(0.5F));
  }
  document_->stopButton(nullptr);
  settle();
  EXPECT_EQ(length(), 61 * kChunkFrames);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
}

// Saving ----------------------------------------------------------------------------------------

TEST_F(NoRoomTest, ASaveIsRefusedBeforehandAndPausesNoRecording) {
  openWindow();
  fill(ramp(kFrames));
  document_->setRecordingPosition(kFrames);
  pressRecord();
  freeSpace_->set(kSaved - 1);
  document_->saveFileNamed(at("take.wav"), 0);
  ASSERT_NO_FATAL_FAILURE(expectTold("“take.wav” could not be saved", "40.000 kB", "39.999 kB"));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("“" + folder_.path() + "”"));
  EXPECT_FALSE(document_->isFileIOActive());
  EXPECT_TRUE(document_->recorder()->isRecording());
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(NoRoomTest, TheSpaceOfTheFileThatIsReplacedDoesNotCountAsFree) {
  openDocument();
  const std::string path = writeFile("take.wav", ramp(2 * kFrames));
  const std::string before = bytesOf(path);
  fill(ramp(kFrames));
  freeSpace_->set(kSaved - 1);
  saveTo(path);
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_EQ(bytesOf(path), before);
}

TEST_F(NoRoomTest, TheFolderThatALinkPointsToIsTheOneThatCounts) {
  openDocument();
  fill(ramp(kFrames));
  std::filesystem::create_directory(at("far"));
  std::filesystem::create_symlink(at("far/real.wav"), at("link.wav"));
  freeSpace_->set(kSaved - 1);
  saveTo(at("link.wav"));
  EXPECT_THAT(freeSpace_->folders(), Contains(at("far")));
  ASSERT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("“" + at("far") + "”"));
}

TEST_F(NoRoomTest, ASaveThatCannotFitEndsAQuit) {
  openDocument();
  fill(ramp(kFrames));
  document_->setDocumentEdited(true);
  freeSpace_->set(0);
  saveTo(at("take.wav"));
  EXPECT_EQ(services_->cancelledTerminations(), 1U);
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(NoRoomTest, ARingtoneIsRefusedForItsOwnLength) {
  openDocument();
  const std::uint64_t second = 44100;
  fill(Samples(2 * 3 * second, 0.25F));
  document_->setPlaybackPosition(second);  // two seconds from there on
  freeSpace_->set(2 * 16'000);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("tone.m4r"));
  awaitIdle();
  EXPECT_TRUE(std::filesystem::exists(at("tone.m4r")));
  freeSpace_->set(2 * 16'000 - 1);
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("other.m4r"));
  awaitIdle();
  EXPECT_FALSE(std::filesystem::exists(at("other.m4r")));
  EXPECT_THAT(services_->alerts(), SizeIs(1));
  EXPECT_THAT(desktop_.opened, SizeIs(1));
}

TEST_F(NoRoomTest, ADiskThatAnswersLateRefusesTheSaveAllTheSame) {
  openWindow();
  fill(ramp(kFrames));
  freeSpace_->set(kSaved - 1);
  freeSpace_->beforeAnswers([this] { gate_.pass(); });
  document_->saveFileNamed(at("take.wav"), 0);
  EXPECT_TRUE(document_->isFileIOActive()) << "the window waits for no disk";
  EXPECT_THAT(services_->alerts(), IsEmpty());
  gate_.open();
  awaitIdle();
  ASSERT_NO_FATAL_FAILURE(expectTold("“take.wav” could not be saved", "40.000 kB", "39.999 kB"));
  EXPECT_EQ(filesInFolder(), 0U);
  EXPECT_TRUE(transportEnabled());
}

TEST_F(NoRoomTest, AnEmptyRecordingIsSavedOnAFullDiskAsFarAsItTakesNoRoom) {
  openDocument();
  freeSpace_->set(0);
  saveTo(at("empty.wav"));
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(at("empty.wav")));
}

}  // namespace
