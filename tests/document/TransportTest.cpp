#include <cerrno>

#include "document/DocumentFixture.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

constexpr std::uint16_t kKeyR = 15;
constexpr std::uint16_t kKeyReturn = 36;
constexpr std::uint16_t kKeySpace = 49;

}  // namespace

class TransportTest : public DocumentFixture {
 protected:
  void keyDown(std::uint16_t code) { document_->windowDidReceiveKeyDown(nullptr, code); }
  void keyUp(std::uint16_t code) { document_->windowDidReceiveKeyUp(nullptr, code); }
  void strike(std::uint16_t code) {
    keyDown(code);
    keyUp(code);
  }
  bool recording() { return document_->recorder() && document_->recorder()->isRecording(); }
  bool playing() { return document_->player() && document_->player()->isPlaying(); }
};

TEST_F(TransportTest, RecordingDisablesPlayMarksTheDocumentEditedAndCanBeUndone) {
  openWindow();
  pressRecord();
  EXPECT_TRUE(recording());
  EXPECT_FALSE(button("playButton")->isEnabled());
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Record");
  EXPECT_TRUE(document_->window()->findChild<OVWaveFormView*>("wfView")->scrollBack());
}

TEST_F(TransportTest, PauseAfterRecordingToTheVeryEndPutsTheMarkerAtTheStart) {
  openDocument();
  recordChunks(3);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_EQ(document_->recordingPosition(), 3u * kChunkFrames);
}

TEST_F(TransportTest, PauseAfterRecordingInTheMiddlePutsTheMarkerWhereRecordingStopped) {
  openDocument();
  recordChunks(4);
  document_->prevButton(nullptr);
  recordChunks(2, 0.5F);
  EXPECT_EQ(document_->playbackPosition(), 2u * kChunkFrames);
  EXPECT_EQ(document_->recordingPosition(), 2u * kChunkFrames);
  EXPECT_EQ(length(), 4u * kChunkFrames);
  EXPECT_EQ(samplesAt(2 * kChunkFrames - 1, 2), (std::vector{0.5F, 0.5F, 0.25F, 0.25F}));
}

TEST_F(TransportTest, PausingMergesTheBlocksOfTheRecording) {
  openDocument();
  recordChunks(4);
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(document_->buffer());
  EXPECT_EQ(blocks->blocklist().size(), 1u);
}

TEST_F(TransportTest, ARecorderIsNeverReusedAcrossAPause) {
  openDocument();
  const auto first = document_->recorder();
  recordChunks(1);
  EXPECT_NE(document_->recorder(), first);
  EXPECT_FALSE(first->isRunning());
  EXPECT_EQ(document_->recorder()->writingPosition(), kChunkFrames * kFrameBytes);
}

TEST_F(TransportTest, PauseDuringPlaybackMakesTheNextRecordingStartAtTheMarker) {
  openDocument();
  recordChunks(4);
  pressPlay();
  queues_.output().playOne();
  const auto marker = document_->playbackPosition();
  ASSERT_GT(marker, 0u);
  document_->pauseButton(nullptr);
  EXPECT_EQ(document_->recordingPosition(), marker);
  EXPECT_EQ(document_->recorder()->writingPosition(), marker * kFrameBytes);
  EXPECT_EQ(document_->player(), nullptr);
}

TEST_F(TransportTest, StopDuringPlaybackSetsTheMarkerToTheStartAndRecordingToTheEnd) {
  openDocument();
  recordChunks(4);
  pressPlay();
  queues_.output().playOne();
  document_->stopButton(nullptr);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_EQ(document_->recordingPosition(), length());
  EXPECT_EQ(document_->recorder()->writingPosition(), length() * kFrameBytes);
}

TEST_F(TransportTest, PrevWhileRecordingMovesToTheStartWithoutStopping) {
  openDocument();
  pressRecord();
  capture(0.25F);
  capture(0.25F);
  document_->prevButton(nullptr);
  EXPECT_TRUE(recording());
  EXPECT_EQ(document_->recordingPosition(), 0u);
  EXPECT_EQ(document_->recorder()->writingPosition(), 0u);
  capture(0.5F);
  EXPECT_EQ(samplesAt(0, 1), (std::vector{0.5F, 0.5F}));
  EXPECT_EQ(length(), 2u * kChunkFrames);
}

TEST_F(TransportTest, NextMovesBothPositionsToTheEnd) {
  openDocument();
  recordChunks(2);
  document_->prevButton(nullptr);
  document_->nextButton(nullptr);
  EXPECT_EQ(document_->playbackPosition(), length());
  EXPECT_EQ(document_->recordingPosition(), length());
  EXPECT_EQ(document_->recorder()->writingPosition(), length() * kFrameBytes);
}

TEST_F(TransportTest, PrevAndNextGiveARunningPlayerTheNewPosition) {
  openDocument();
  recordChunks(4);
  pressPlay();
  document_->nextButton(nullptr);
  EXPECT_EQ(document_->player()->readingPosition(), length() * kFrameBytes);
  document_->prevButton(nullptr);
  EXPECT_EQ(document_->player()->readingPosition(), 0u);
  EXPECT_TRUE(playing());
}

TEST_F(TransportTest, PlayStartsAtTheMarkerAndDisablesRecord) {
  openWindow();
  recordChunks(4);
  document_->setPlaybackPosition(kChunkFrames);
  pressPlay();
  EXPECT_TRUE(playing());
  EXPECT_FALSE(button("recButton")->isEnabled());
  // Priming has read three buffers of 1024 frames.
  EXPECT_EQ(document_->playbackPosition(), kChunkFrames + 3u * 1024u);
}

TEST_F(TransportTest, RecordAndPlayCannotRunAtTheSameTime) {
  openWindow();
  recordChunks(4);
  pressPlay();
  document_->recMenu(nullptr);
  EXPECT_FALSE(recording());
  document_->stopButton(nullptr);
  document_->recMenu(nullptr);
  EXPECT_TRUE(recording());
  document_->playMenu(nullptr);  // stops the recording
  EXPECT_FALSE(recording());
  EXPECT_FALSE(playing());
}

TEST_F(TransportTest, HoldingSpaceTogglesPlayExactlyOnceOnRelease) {
  openWindow();
  recordChunks(4);
  keyDown(kKeySpace);
  EXPECT_FALSE(playing());
  EXPECT_TRUE(button("playButton")->isHighlighted());
  EXPECT_TRUE(button("playButton")->isOn());  // shows the state to come
  for (int i = 0; i < 20; ++i) {
    keyDown(kKeySpace);  // auto-repeat
  }
  EXPECT_FALSE(playing());
  keyUp(kKeySpace);
  EXPECT_TRUE(playing());
  EXPECT_TRUE(button("playButton")->isOn());
  EXPECT_FALSE(button("playButton")->isHighlighted());
}

TEST_F(TransportTest, SpaceStopsARecording) {
  openWindow();
  strike(kKeyR);
  EXPECT_TRUE(recording());
  capture(0.5F);
  keyDown(kKeySpace);
  EXPECT_TRUE(button("recButton")->isHighlighted());
  EXPECT_TRUE(recording());
  keyUp(kKeySpace);
  EXPECT_FALSE(recording());
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_FALSE(button("recButton")->isHighlighted());
}

TEST_F(TransportTest, ASpaceThatWasPressedAsACommandOrInAMenuLeavesTheRecordingRunning) {
  openWindow();
  pressRecord();
  const auto send = [&](QEvent::Type type, Qt::KeyboardModifiers modifiers) {
    QKeyEvent event(type, Qt::Key_Space, modifiers);
    QCoreApplication::sendEvent(document_->window(), &event);
  };
  send(QEvent::KeyPress, Qt::ControlModifier);
  send(QEvent::KeyRelease, Qt::ControlModifier);
  EXPECT_TRUE(recording());
  send(QEvent::KeyRelease, Qt::NoModifier);  // the menu took the press and closed
  EXPECT_TRUE(recording());
  send(QEvent::KeyPress, Qt::NoModifier);
  send(QEvent::KeyRelease, Qt::NoModifier);
  EXPECT_FALSE(recording());
}

TEST_F(TransportTest, RTogglesRecordingOnRelease) {
  openWindow();
  keyDown(kKeyR);
  EXPECT_TRUE(button("recButton")->isOn());
  EXPECT_FALSE(recording());
  keyUp(kKeyR);
  EXPECT_TRUE(recording());
  strike(kKeyR);
  EXPECT_FALSE(recording());
}

TEST_F(TransportTest, ReturnGoesToTheStart) {
  openWindow();
  recordChunks(2);
  document_->nextButton(nullptr);
  keyDown(kKeyReturn);
  EXPECT_TRUE(button("prevButton")->isHighlighted());
  EXPECT_EQ(document_->playbackPosition(), length());
  keyUp(kKeyReturn);
  EXPECT_FALSE(button("prevButton")->isHighlighted());
  EXPECT_EQ(document_->playbackPosition(), 0u);
}

TEST_F(TransportTest, OtherKeysDoNothing) {
  openWindow();
  recordChunks(2);
  for (const int code : {0, 1, 14, 16, 48, 0xFFFF}) {
    strike(static_cast<std::uint16_t>(code));
  }
  EXPECT_FALSE(recording());
  EXPECT_FALSE(playing());
}

TEST_F(TransportTest, ThePauseMenuItemHasNoEffect) {
  openWindow();
  pressRecord();
  capture(0.5F);
  document_->pauseMenu(nullptr);
  EXPECT_TRUE(recording());
}

TEST_F(TransportTest, MenuCommandsOfDisabledButtonsDoNothing) {
  openWindow();
  recordChunks(2);
  document_->nextButton(nullptr);
  for (const char* name : {"prevButton", "stopButton", "recButton", "playButton"}) {
    button(name)->setEnabled(false);
  }
  document_->prevMenu(nullptr);
  document_->stopMenu(nullptr);
  document_->recMenu(nullptr);
  document_->playMenu(nullptr);
  EXPECT_EQ(document_->playbackPosition(), length());
  EXPECT_FALSE(recording());
  EXPECT_FALSE(playing());
}

TEST_F(TransportTest, ReverseAudioIsPossibleOnlyInMemory) {
  openDocument();
  using Action = VLRecorderWindowController::MenuAction;
  EXPECT_FALSE(document_->validateMenuItem(Action::reverseBuffer));
  EXPECT_TRUE(document_->validateMenuItem(Action::transport));
  EXPECT_TRUE(document_->validateMenuItem(Action::edit));
  EXPECT_FALSE(document_->validateMenuItem(Action::undo));
  EXPECT_FALSE(document_->validateMenuItem(Action::redo));
}

// Failures --------------------------------------------------------------------------------------

TEST_F(TransportTest, WithNoInputDeviceRecordRollsBackAndOneAlertIsShown) {
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  openWindow();
  EXPECT_EQ(document_->recorder(), nullptr);
  EXPECT_EQ(alertCount(), 0u) << "nobody has asked for a recording";
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  pressRecord();
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_TRUE(button("playButton")->isEnabled());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(document_->buffer());
  EXPECT_EQ(blocks->waypointPos(), 0u);
  EXPECT_EQ(alertCount(), 1u);
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  pressRecord();
  EXPECT_EQ(alertCount(), 1u) << "the device's state has not changed";
}

TEST_F(TransportTest, RecordingIsPossibleAgainWhenTheDeviceIsBack) {
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  openWindow();
  ASSERT_EQ(document_->recorder(), nullptr);
  pressRecord();
  EXPECT_TRUE(recording());
  EXPECT_TRUE(capture(0.5F));
  EXPECT_EQ(length(), kChunkFrames);
}

TEST_F(TransportTest, ADeviceThatVanishesWhileRecordingStopsWithEverythingKept) {
  openWindow();
  pressRecord();
  capture(0.5F);
  capture(0.5F);
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_EQ(length(), 2u * kChunkFrames);
  EXPECT_EQ(document_->recordingPosition(), 2u * kChunkFrames);
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_TRUE(document_->windowWillReturnUndoManager()->canUndo());
  ASSERT_TRUE(awaitAlert());
  EXPECT_EQ(alertCount(), 1u);
  pressRecord();
  EXPECT_TRUE(recording());
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, ALateAnswerThatThereIsNoInputRollsRecordBack) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(recording());
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceUnavailableStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_TRUE(button("playButton")->isEnabled());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(document_->buffer());
  EXPECT_EQ(blocks->waypointPos(), 0u);
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, RollingALateFailureBackLeavesEarlierAudioMarkerAndEditedFlagAsTheyWere) {
  openWindow();
  recordChunks(3);
  document_->setDocumentEdited(false);
  document_->nextButton(nullptr);
  pressRecord();
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  settle();
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(document_->playbackPosition(), length());
  EXPECT_EQ(document_->recordingPosition(), length());
  EXPECT_EQ(samplesAt(0, 3 * kChunkFrames), std::vector<float>(6 * kChunkFrames, 0.25F));
  const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(document_->buffer());
  EXPECT_EQ(blocks->waypointPos(), 1u) << "the one of the recording before";
}

TEST_F(TransportTest, RollingALateFailureBackInTheMiddleLeavesTheSummaryAsItWas) {
  openWindow();
  recordChunks(3);
  document_->prevButton(nullptr);
  const auto summary = document_->waveForm();
  pressRecord();
  document_->updatePlaybackMarkerView();
  settle();
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  settle();
  EXPECT_EQ(document_->waveForm(), summary);
}

TEST_F(TransportTest, ADeviceThatVanishesWhileNothingIsRecordedTakesTheRecorderWithIt) {
  openWindow();
  queues_.input().failLate(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  ASSERT_TRUE(awaitAlert());
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, RecordPressedBeforeALostDeviceWasNoticedRollsBack) {
  openWindow();
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceLostStatus);  // not yet reported to the main thread
  pressRecord();
  EXPECT_FALSE(recording());
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  ASSERT_TRUE(awaitAlert());
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, AFailedWriteDoesNotStopWhatWasStartedAfterThePause) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  pressRecord();
  capture(0.5F);
  files.fillUpAfter(0);
  capture(0.5F);
  document_->pauseButton(nullptr);  // before the report of the failure arrives
  files.freeSpace();
  pressRecord();
  settle();
  EXPECT_TRUE(recording());
  EXPECT_EQ(services_->alerts().size(), 1u);
}

TEST_F(TransportTest, WithNoOutputDevicePlayRollsBack) {
  openWindow();
  recordChunks(2);
  queues_->fail("newOutput", platform::kDeviceUnavailableStatus);
  pressPlay();
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_TRUE(button("recButton")->isEnabled());
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, AFullDiskStopsTheRecordingKeepsWhatWasWrittenAndTellsOnce) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  pressRecord();
  capture(0.5F);
  capture(0.5F);
  files.fillUpAfter(0);
  capture(0.75F);
  capture(0.75F);  // captured before the main thread has noticed: not written any more
  ASSERT_TRUE(runMainLoopUntil([&] { return !recording(); }));
  settle();
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_EQ(services_->alerts().size(), 1u);
  EXPECT_EQ(samplesAt(0, 2 * kChunkFrames), std::vector<float>(4 * kChunkFrames, 0.5F));
  EXPECT_EQ(length(), 2u * kChunkFrames);  // the lost chunk is not at the end
  EXPECT_EQ(document_->recordingPosition(), length());

  files.freeSpace();
  recordChunks(1, 0.25F);
  EXPECT_EQ(length(), 3u * kChunkFrames);
  EXPECT_EQ(services_->alerts().size(), 1u);
}

TEST_F(TransportTest, AFullDiskWhileRecordingOverAudioKeepsTheRestAndUndoBringsAllBack) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  recordChunks(4, 0.25F);
  document_->prevButton(nullptr);
  pressRecord();
  files.fillUpAfter(0);
  capture(0.5F);
  ASSERT_TRUE(runMainLoopUntil([&] { return !recording(); }));
  settle();
  EXPECT_EQ(length(), 4u * kChunkFrames);
  EXPECT_EQ(samplesAt(kChunkFrames, 1), (std::vector{0.25F, 0.25F}));
  document_->undoCommand();
  settle();
  EXPECT_EQ(samplesAt(0, 4 * kChunkFrames), std::vector<float>(8 * kChunkFrames, 0.25F));
}

TEST_F(TransportTest, PlayingRunsAcrossTheStretchThatAFullDiskLostInTheMiddle) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  recordChunks(4, 0.25F);
  document_->prevButton(nullptr);
  pressRecord();
  capture(0.5F);
  files.fillUpAfter(0);
  capture(0.5F);
  ASSERT_TRUE(runMainLoopUntil([&] { return !recording(); }));
  settle();
  document_->prevButton(nullptr);
  pressPlay();
  queues_.output().changeRunning(1);
  std::vector<float> played;
  while (!queues_.output().enqueued.empty()) {
    const auto part = queues_.output().playOne();
    played.insert(played.end(), part.begin(), part.end());
  }
  queues_.output().changeRunning(0);
  settle();
  std::vector<float> expected(2 * kChunkFrames, 0.5F);
  expected.resize(4 * kChunkFrames, 0.0F);
  expected.resize(8 * kChunkFrames, 0.25F);
  EXPECT_EQ(played, expected);
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_TRUE(button("recButton")->isEnabled());
  EXPECT_EQ(alertCount(), 1u);
}

TEST_F(TransportTest, ADiskThatCannotBeReadWhilePlayingPausesAndIsToldOnceAPlayback) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  recordChunks(4);
  settle();
  document_->prevButton(nullptr);
  pressPlay();
  queues_.output().changeRunning(1);
  files.failReads(EIO);
  while (!queues_.output().playOne().empty()) {
  }
  EXPECT_TRUE(services_->alerts().empty()) << "what was read is still heard";
  queues_.output().changeRunning(0);
  settle();
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_TRUE(button("recButton")->isEnabled());
  EXPECT_EQ(document_->playbackPosition(), 3u * 1024u);
  ASSERT_EQ(alertCount(), 1u);
  EXPECT_EQ(services_->alerts()[0].title, "Playing was stopped");
  EXPECT_EQ(services_->alerts()[0].message,
            "The audio could not be read from the temporary file. The disk could not be read or "
            "written.");

  pressPlay();  // nothing can be read from the first buffer on
  queues_.output().changeRunning(1);
  queues_.output().changeRunning(0);
  settle();
  EXPECT_FALSE(button("playButton")->isOn());
  EXPECT_EQ(alertCount(), 2u);

  files.failReads(0);
  pressPlay();
  EXPECT_TRUE(playing());
  EXPECT_GT(queues_.output().playOne().size(), 0u);
  EXPECT_EQ(alertCount(), 2u);
}

TEST_F(TransportTest, AReadThatFailsElsewhereDoesNotEndAPlaybackThatGoesOn) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressPlay();
  queues_.output().changeRunning(1);
  document_->audioBufferFailedToRead(EIO);  // for example a read for the waveform
  settle();
  EXPECT_TRUE(playing());
  EXPECT_EQ(alertCount(), 0u);
}

TEST_F(TransportTest, RecordPressedBeforeTheReportThatPlaybackEndedGoesOnRecording) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressPlay();
  const auto place = document_->playbackPosition();
  queues_.output().changeRunning(0);  // its report waits in the main queue
  pressRecord();
  drainMainQueue();
  ASSERT_TRUE(document_->recorder()->isRecording());
  EXPECT_EQ(document_->player(), nullptr);
  ASSERT_TRUE(capture(0.5F));
  document_->pauseButton(nullptr);
  EXPECT_EQ(document_->recordingPosition(), place + kChunkFrames);
}

TEST_F(TransportTest, AnEndedPlaybackWhoseReportWaitsIsPausedWhereItEnded) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressPlay();
  const auto place = document_->playbackPosition();
  queues_.output().changeRunning(0);
  document_->pauseButton(nullptr);
  drainMainQueue();
  EXPECT_EQ(document_->playbackPosition(), place);
  EXPECT_EQ(document_->recordingPosition(), place);
  EXPECT_EQ(document_->recorder()->writingPosition(), place * kFrameBytes);
}
