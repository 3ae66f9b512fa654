#include <algorithm>
#include <set>

#include <gmock/gmock.h>
#include <QLabel>

#include "document/FileFixture.h"
#include "document/files/loadFile.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LoadingTest : public DocumentFileFixture {
 protected:
  static Samples joined(const Samples& a, const Samples& b) {
    Samples all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
  }

  /// A file that is not audio, under an audio file's name.
  std::string writeNonsense(const std::string& name) {
    std::ofstream(at(name)) << "This is a letter, not a sound.\n";
    return at(name);
  }

  OVTimeView* timeView() { return document_->window()->findChild<OVTimeView*>("timeView"); }
};

// Open ------------------------------------------------------------------------------------------

TEST_F(LoadingTest, AFileShorterThanAChunkIsLoadedWhole) {
  openWindow();
  const Samples samples = ramp(1000);
  document_->openFileNamed(writeFile("short.wav", samples));
  int furthest = 0;  // its one step is 264.6 times the whole bar
  QObject::connect(document_->loadingIndicator(), &QProgressBar::valueChanged,
                   [&furthest](int value) { furthest = std::max(furthest, value); });
  const int whole = document_->loadingIndicator()->maximum();
  awaitIdle();
  EXPECT_EQ(audio(), samples);
  EXPECT_EQ(furthest, whole);
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(document_->loadingIndicator()->isVisibleTo(document_->window()));
}

TEST_F(LoadingTest, AFileOfSeveralChunksIsLoadedWhole) {
  openWindow();
  const Samples samples = ramp(2 * kLoadChunkFrames + 77);
  open(writeFile("long.wav", samples));
  EXPECT_EQ(audio(), samples);
  EXPECT_DOUBLE_EQ(timeView()->durationInSeconds(), static_cast<double>(length()) / 44100.0);
}

TEST_F(LoadingTest, AnEmptyFileLoadsNothingAndCompletes) {
  openWindow();
  open(writeFile("empty.wav", {}));
  EXPECT_EQ(length(), 0U);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_TRUE(transportEnabled());
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(LoadingTest, OpeningResetsBothPositionsAndLeavesTheDocumentUnedited) {
  openWindow();
  open(writeFile("take.wav", ramp(1000)));
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(document_->recordingPosition(), 0U);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
}

TEST_F(LoadingTest, OpeningWhileRecordingStopsTheRecordingFirst) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  const Samples samples = ramp(500);
  document_->openFileNamed(writeFile("take.wav", samples));
  EXPECT_FALSE(document_->recorder()->isRecording());
  awaitIdle();
  const Samples recorded(2 * std::size_t{kChunkFrames}, 0.25F);
  EXPECT_EQ(audio(), joined(recorded, samples));
}

TEST_F(LoadingTest, TheTransportIsDisabledWhileAFileIsLoaded) {
  openWindow();
  document_->openFileNamed(writeFile("take.wav", ramp(100'000)));
  EXPECT_TRUE(document_->isFileIOActive());
  EXPECT_FALSE(transportEnabled());
  auto* const view = document_->window()->findChild<OVWaveFormView*>("wfView");
  EXPECT_FALSE(view->isEnabled());
  EXPECT_TRUE(document_->loadingIndicator()->isVisibleTo(document_->window()));
  awaitIdle();
  EXPECT_TRUE(view->isEnabled());
}

TEST_F(LoadingTest, ASecondOpenOrImportWhileOneRunsIsIgnored) {
  openWindow();
  const Samples samples = ramp(300'000);
  const std::string first = writeFile("first.wav", samples);
  const std::string second = writeFile("second.wav", ramp(10));
  document_->openFileNamed(first);
  document_->openFileNamed(second);
  document_->importFile(nullptr);
  EXPECT_EQ(panels_->openPanels(), 0U);
  awaitIdle();
  EXPECT_EQ(audio(), samples);
}

TEST_F(LoadingTest, NothingIsEditedUndoneOrRedoneWhileAFileIsLoaded) {
  openWindow();
  recordChunks(1, 0.25F);
  recordChunks(1, 0.5F);
  document_->undoCommand();
  settle();
  ASSERT_TRUE(document_->windowWillReturnUndoManager()->canRedo());
  document_->setPlaybackPosition(kChunkFrames / 2);
  document_->setRecordingPosition(kChunkFrames);
  document_->setDocumentEdited(false);
  const Samples samples = ramp(300'000);
  document_->openFileNamed(writeFile("take.wav", samples));
  document_->removeAfterMarker(nullptr);
  document_->removeBeforeMarker(nullptr);
  document_->reverseBuffer(nullptr);
  document_->redoCommand();
  document_->undoCommand();
  EXPECT_EQ(document_->playbackPosition(), kChunkFrames / 2);
  EXPECT_TRUE(document_->windowWillReturnUndoManager()->canRedo());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  awaitIdle();
  EXPECT_EQ(audio(), joined(Samples(2 * std::size_t{kChunkFrames}, 0.25F), samples));
  EXPECT_FALSE(document_->isDocumentEdited());
}

TEST_F(LoadingTest, TheDurationGrowsAndTheBarMovesWhileAFileIsLoaded) {
  openWindow();
  std::set<double> durations;
  int furthest = 0;  // of the bar, before the waveform is built
  double last = 0.0;
  constexpr double kSeconds = 20 * 6.0;
  document_->openFileNamed(writeFile("take.wav", ramp(20 * kLoadChunkFrames)));
  EXPECT_TRUE(runMainLoopUntil([&] {
    const double duration = timeView()->durationInSeconds();
    EXPECT_GE(duration, last);
    last = duration;
    durations.insert(duration);
    if (!document_->isRenderingWaveform() && duration < kSeconds) {
      furthest = std::max(furthest, document_->loadingIndicator()->value());
    }
    return !document_->isFileIOActive();
  }));
  EXPECT_GE(durations.size(), 3U);
  EXPECT_GT(furthest, 0);
  settle();
}

TEST_F(LoadingTest, TheWaveformOfTheWholeFileIsShownAtTheEnd) {
  openWindow();
  open(writeFile("take.wav", ramp(44100)));
  EXPECT_FALSE(document_->waveForm()->isRegenerating());
  EXPECT_GT(document_->waveForm()->powerAtPosition(0.5), 0.0);
}

TEST_F(LoadingTest, DuringTheRegenerationBarAndTimeFollowItsReader) {
  openWindow();
  fill(ramp(44100));
  document_->waveForm()->generate();
  document_->setIsRenderingWaveform(true);
  document_->setPlaybackPosition(22050);
  document_->updatePlaybackMarkerView();
  EXPECT_DOUBLE_EQ(timeView()->currentTimeInSeconds(),
                   static_cast<double>(document_->waveForm()->readerPos()) / 44100.0);
  EXPECT_EQ(document_->loadingIndicator()->value(), document_->loadingIndicator()->maximum());
  document_->setIsRenderingWaveform(false);
}

TEST_F(LoadingTest, AFileThatCannotBeReadIsToldOnceAndLeavesNothingBehind) {
  openWindow();
  const std::string path = writeNonsense("letter.wav");
  document_->setCurrentFilename(path);
  document_->window()->setTitle("Orvo - letter.wav");
  open(path);
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("letter.wav"));
  EXPECT_EQ(length(), 0U);
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->currentFilename(), "");
  EXPECT_EQ(document_->window()->title(), "Orvo - Unnamed");
}

TEST_F(LoadingTest, TwoWindowsLoadSideBySide) {
  const Samples first = ramp(600'000);
  const Samples second = ramp(700'000, 5);
  const std::string firstPath = writeFile("first.wav", first);
  const std::string secondPath = writeFile("second.caf", second, 2);
  openWindow();
  auto other = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
  document_->openFileNamed(firstPath);
  other->openFileNamed(secondPath);
  EXPECT_TRUE(runMainLoopUntil([&] { return !other->isFileIOActive(); }));
  awaitIdle();
  EXPECT_EQ(audio(), first);
  std::swap(document_, other);
  EXPECT_EQ(audio(), second);
  other->window()->performClose();
}

// Import ----------------------------------------------------------------------------------------

TEST_F(LoadingTest, AnImportGoesToTheRecordingPositionAndMovesNothing) {
  openWindow();
  fill(ramp(1000));
  const Samples samples = ramp(300, 11);
  document_->setRecordingPosition(400);
  document_->setPlaybackPosition(200);
  import(writeFile("part.wav", samples));
  EXPECT_EQ(samplesAt(400, 300), samples);
  EXPECT_EQ(length(), 1000U);
  EXPECT_EQ(document_->recordingPosition(), 400U);
  EXPECT_EQ(document_->playbackPosition(), 200U);
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(LoadingTest, TheImportPanelTakesOneFileOfTheReadableKinds) {
  openWindow();
  document_->importFile(nullptr);
  ASSERT_EQ(panels_->openPanels(), 1U);
  EXPECT_EQ(panels_->openPanel().title, "Import");
  EXPECT_EQ(panels_->openPanel().acceptLabel, "&Import");
  EXPECT_FALSE(panels_->openPanel().allowsMultipleSelection);
  EXPECT_THAT(panels_->openPanel().fileTypes,
              ElementsAre("caf", "aif", "aiff", "wav", "mp3", "mp4", "m4a", "m4r", "aac"));
  panels_->answerOpen({});
  settle();
  EXPECT_FALSE(document_->isFileIOActive());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
}

TEST_F(LoadingTest, TheImportPanelBeginsInTheFolderOfTheDocumentsFile) {
  openWindow();
  document_->importFile(nullptr);
  EXPECT_EQ(panels_->openPanel().directory, "") << "that of the last panel";
  panels_->answerOpen({});
  document_->setCurrentFilename(writeFile("take.wav", ramp(100)));
  document_->importFile(nullptr);
  EXPECT_EQ(panels_->openPanel().directory, folder_.path());
  panels_->answerOpen({});
  settle();
}

TEST_F(LoadingTest, TheImportPanelSaysWhereTheFileGoesAndWhatItReplaces) {
  openWindow();
  fill(ramp(10 * 44100));
  const auto sentence = [this](const std::string& path) {
    const auto& panel = panels_->openPanel();
    panel.selectionChanged(path);
    settle();
    return qobject_cast<QLabel*>(panel.accessoryView)->text().toStdString();
  };
  const std::string path = writeFile("part.wav", ramp(8 * 44100));
  document_->setRecordingPosition(std::uint64_t{44100});
  document_->importFile(nullptr);
  EXPECT_EQ(sentence(""), "Goes in at 00:00:01.00.");
  EXPECT_EQ(sentence(path), "Goes in at 00:00:01.00 and replaces 8 s.");
  EXPECT_EQ(sentence(at("no such file.wav")), "Goes in at 00:00:01.00.");
  EXPECT_EQ(sentence(folder_.path()), "Goes in at 00:00:01.00.");
  panels_->answerOpen({});
  document_->nextButton(nullptr);
  document_->importFile(nullptr);
  EXPECT_EQ(sentence(path), "Goes in at the end.");
  EXPECT_THAT(services_->alerts(), IsEmpty());
  panels_->answerOpen({});
}

TEST_F(LoadingTest, TheImportPanelFollowsARunningRecordingOrPlayback) {
  openWindow();
  fill(ramp(10 * 44100));
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  document_->importFile(nullptr);
  const auto* const label = qobject_cast<QLabel*>(panels_->openPanel().accessoryView);
  EXPECT_EQ(label->text().toStdString(), "Goes in at 00:00:00.09.");
  ASSERT_TRUE(capture(0.25F));
  EXPECT_TRUE(runMainLoopUntil([&] { return label->text() == "Goes in at 00:00:00.18."; }));
  panels_->answerOpen({});
}

TEST_F(LoadingTest, AnImportIsOneUndoableStep) {
  openWindow();
  const Samples before = ramp(1000);
  fill(before);
  document_->setRecordingPosition(900);
  const Samples samples = ramp(2 * kLoadChunkFrames, 3);
  import(writeFile("part.wav", samples));
  const Samples after = audio();
  EXPECT_EQ(length(), 900 + 2 * kLoadChunkFrames);
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Import File");
  document_->undoCommand();
  settle();
  EXPECT_EQ(audio(), before);
  document_->redoCommand();
  settle();
  EXPECT_EQ(audio(), after);
}

TEST_F(LoadingTest, AnImportThatCannotBeReadChangesNothing) {
  openWindow();
  recordChunks(2);
  document_->setDocumentEdited(false);
  document_->setPlaybackPosition(100);
  const Samples before = audio();
  import(writeNonsense("letter.mp3"));
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(audio(), before);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  EXPECT_EQ(document_->playbackPosition(), 100U);
  EXPECT_TRUE(transportEnabled());
  EXPECT_FALSE(document_->isImport());
}

TEST_F(LoadingTest, AnImportWhileRecordingKeepsTheRecording) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  const Samples samples = ramp(500);
  import(writeFile("part.wav", samples));
  const Samples recorded(2 * std::size_t{kChunkFrames}, 0.25F);
  EXPECT_EQ(audio(), joined(recorded, samples));
}

TEST_F(LoadingTest, AnImportAfterAnUndoLeavesNoHole) {
  openWindow();
  recordChunks(2);
  document_->undoCommand();
  settle();
  ASSERT_EQ(length(), 0U);
  const Samples samples = ramp(500);
  import(writeFile("part.wav", samples));
  EXPECT_EQ(audio(), samples);
}

TEST_F(LoadingTest, UndoOfAnImportDuringARecordingKeepsTheRecording) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.25F));
  import(writeFile("part.wav", ramp(500)));
  document_->undoCommand();
  settle();
  EXPECT_EQ(audio(), Samples(2 * std::size_t{kChunkFrames}, 0.25F));
}

TEST_F(LoadingTest, UndoOfAnImportGivesBackTheEditedFlagOfBefore) {
  openWindow();
  recordChunks(1);
  import(writeFile("part.wav", ramp(500)));
  document_->undoCommand();
  settle();
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(LoadingTest, AnImportThatBreaksOffBeforeItsFirstFrameIsTakenBack) {
  openWindow();
  const Samples before = ramp(1000);
  fill(before);
  const std::string path = writeFile("part.m4a", ramp(100'000), 3);
  // Keeps the header and removes all audio after it.
  std::string bytes = bytesOf(path);
  const std::size_t data = bytes.find("mdat");
  ASSERT_NE(data, std::string::npos);
  const std::size_t header = bytes.find("moov");
  ASSERT_NE(header, std::string::npos);
  std::fill(bytes.begin() + static_cast<long>(data) + 4,
            bytes.begin() + static_cast<long>(header) - 4, '\xFF');
  std::ofstream(path, std::ios::binary) << bytes;
  import(path);
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(audio(), before);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
}

TEST_F(LoadingTest, DontSaveDuringAnImportClosesAtOnce) {
  openWindow();
  recordChunks(1);
  document_->importFile(nullptr);
  panels_->answerOpen({writeFile("part.wav", ramp(600'000))});
  const QPointer<OVRecorderWindow> window = document_->window();
  window->performClose();
  panels_->answerSheet(0);
  document_.reset();
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  settle();
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

// A slow or full disk under the temporary file ----------------------------------------------------

class LoadingFullDiskTest : public LoadingTest {
 protected:
  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
};

TEST_F(LoadingFullDiskTest, AnOpenKeepsWhatWasStoredAndTellsOnce) {
  openWindow();
  const Samples samples = ramp(3 * kLoadChunkFrames);
  const std::string path = writeFile("take.wav", samples);
  files_.fillUpAfter(2 * kLoadChunkFrames * kFrameBytes + 100);
  open(path);
  EXPECT_EQ(length(), 2 * kLoadChunkFrames);
  EXPECT_TRUE(std::equal(samples.begin(), samples.begin() + 4 * kLoadChunkFrames, audio().begin()));
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_EQ(services_->alerts()[0].title, "“take.wav” could not be loaded whole");
  EXPECT_THAT(services_->alerts()[0].message, HasSubstr("The disk is full."));
  EXPECT_EQ(document_->window()->title(), "Orvo - Unnamed");
  EXPECT_TRUE(transportEnabled());
}

TEST_F(LoadingFullDiskTest, AnImportIsTakenBackAndToldOnce) {
  openWindow();
  const Samples before = ramp(1000);
  fill(before);
  document_->setRecordingPosition(500);
  const std::string path = writeFile("part.wav", ramp(3 * kLoadChunkFrames));
  files_.fillUpAfter(2 * kLoadChunkFrames * kFrameBytes);
  import(path);
  EXPECT_EQ(audio(), before);
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  EXPECT_EQ(document_->recordingPosition(), 500U);
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_TRUE(transportEnabled());
}

TEST_F(LoadingFullDiskTest, NothingIsUndoneWhileAFileIsImported) {
  openWindow();
  recordChunks(1, 0.25F);
  const Samples samples = ramp(300'000);
  support::Gate gate;
  files_.beforeWrites([&gate] { gate.pass(); });
  document_->importFile(nullptr);
  panels_->answerOpen({writeFile("part.wav", samples)});
  document_->undoCommand();  // while the file is being opened
  EXPECT_TRUE(runMainLoopUntil([&] { return document_->isImport(); }));
  ASSERT_TRUE(gate.awaitArrival());
  document_->undoCommand();  // and while it is being read
  document_->removeBeforeMarker(nullptr);
  gate.open();
  awaitIdle();
  EXPECT_EQ(audio(), joined(Samples(2 * std::size_t{kChunkFrames}, 0.25F), samples));
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Import File");
}

TEST_F(LoadingFullDiskTest, TheQuestionAnsweredWithSaveDuringAnImportSavesWhenItIsDone) {
  openWindow();
  recordChunks(1);
  support::Gate gate;
  files_.beforeWrites([&gate] { gate.pass(); });
  document_->importFile(nullptr);
  panels_->answerOpen({writeFile("part.wav", ramp(600'000))});
  EXPECT_TRUE(runMainLoopUntil([&] { return document_->isImport(); }));
  ASSERT_TRUE(gate.awaitArrival());
  document_->window()->performClose();
  ASSERT_EQ(panels_->sheets(), 1U);
  panels_->answerSheet(1);
  gate.open();
  EXPECT_TRUE(runMainLoopUntil([&] { return panels_->savePanels() == 1; }));
  const QPointer<OVRecorderWindow> window = document_->window();
  panels_->answerSave(at("all.wav"));
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_EQ(readFile(at("all.wav")).size(), 2 * (600'000U + kChunkFrames));
}

}  // namespace
