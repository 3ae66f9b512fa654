#include "document/DocumentFixture.h"
#include "storage/OVAudioBuffer.h"

class EditingTest : public DocumentFixture {
 protected:
  void save() { document_->setDocumentEdited(false); }
};

TEST_F(EditingTest, UndoOfARecordingRestoresTheAudioBeforeAndRedoBringsItBack) {
  openWindow();
  recordChunks(2, 0.25F);
  document_->prevButton(nullptr);
  recordChunks(1, 0.5F);
  document_->undoCommand();
  settle();
  EXPECT_EQ(samplesAt(0, 1), (std::vector{0.25F, 0.25F}));
  EXPECT_EQ(document_->windowWillReturnUndoManager()->redoActionName(), "Record");
  document_->redoCommand();
  settle();
  EXPECT_EQ(samplesAt(0, 1), (std::vector{0.5F, 0.5F}));
  EXPECT_EQ(samplesAt(kChunkFrames, 1), (std::vector{0.25F, 0.25F}));
}

TEST_F(EditingTest, OnlyTheLastActionCanBeUndone) {
  openWindow();
  recordChunks(1);
  recordChunks(1);
  document_->undoCommand();
  EXPECT_EQ(length(), kChunkFrames);
  EXPECT_FALSE(document_->windowWillReturnUndoManager()->canUndo());
  document_->undoCommand();
  EXPECT_EQ(length(), kChunkFrames);
}

TEST_F(EditingTest, UndoRedoUndoRestoresTheStateBeforeTheActionBeforeTheLast) {
  openWindow();
  recordChunks(1);
  recordChunks(1);
  document_->undoCommand();
  EXPECT_EQ(length(), kChunkFrames);
  document_->redoCommand();
  EXPECT_EQ(length(), 2u * kChunkFrames);
  document_->undoCommand();
  EXPECT_EQ(length(), 0u);
}

TEST_F(EditingTest, TheUndoCommandStopsARunningRecordingFirst) {
  openWindow();
  pressRecord();
  capture(0.5F);
  document_->undoCommand();
  EXPECT_FALSE(document_->recorder()->isRecording());
  EXPECT_FALSE(button("recButton")->isOn());
  EXPECT_EQ(length(), 0u);
}

TEST_F(EditingTest, TheUndoCommandStopsARunningPlaybackFirst) {
  openWindow();
  recordChunks(4);
  pressPlay();
  document_->undoCommand();
  EXPECT_EQ(document_->player(), nullptr);
  EXPECT_EQ(length(), 0u);
}

TEST_F(EditingTest, ARecordingAfterAnUndoneOneLeavesNoHole) {
  openWindow();
  recordChunks(2, 0.25F);
  recordChunks(2, 0.5F);
  document_->undoCommand();
  recordChunks(1, 0.75F);
  EXPECT_EQ(samplesAt(0, 3 * kChunkFrames).size(), 6u * kChunkFrames);
  EXPECT_EQ(samplesAt(2 * kChunkFrames, 1), (std::vector{0.75F, 0.75F}));
}

TEST_F(EditingTest, ARecordingAfterUndoAndRedoIsAppendedAndReplacesNothing) {
  openWindow();
  recordChunks(2, 0.25F);
  recordChunks(2, 0.5F);
  document_->undoCommand();
  document_->redoCommand();
  recordChunks(1, 0.75F);
  EXPECT_EQ(length(), 5u * kChunkFrames);
  EXPECT_EQ(samplesAt(2 * kChunkFrames, 1), (std::vector{0.5F, 0.5F}));
  EXPECT_EQ(samplesAt(4 * kChunkFrames, 1), (std::vector{0.75F, 0.75F}));
}

TEST_F(EditingTest, ASummaryThatWasUnderWayBeforeAnEditIsNotInstalled) {
  openWindow();
  recordChunks(4, 0.25F);
  settle();
  document_->prevButton(nullptr);
  pressRecord();
  capture(0.5F);
  document_->updatePlaybackMarkerView();
  ASSERT_TRUE(document_->waveformIsChanging());
  document_->undoCommand();  // before the replacement is installed
  const auto shown = document_->waveForm();
  settle();
  EXPECT_FALSE(document_->waveformIsChanging());
  EXPECT_EQ(document_->waveForm(), shown);
}

TEST_F(EditingTest, TheOperationsThemselvesTouchNoPosition) {
  openWindow();
  recordChunks(2);
  document_->undo(nullptr);
  EXPECT_EQ(document_->recordingPosition(), 2u * kChunkFrames);
  EXPECT_EQ(length(), 0u);
  document_->redo(nullptr);
  EXPECT_EQ(document_->recordingPosition(), 2u * kChunkFrames);
  EXPECT_EQ(length(), 2u * kChunkFrames);
}

TEST_F(EditingTest, RemoveAfterMarkerAtTheStartLeavesNothingAndShowsZeroSeconds) {
  openWindow();
  recordChunks(3);
  document_->prevButton(nullptr);
  document_->removeAfterMarker(nullptr);
  settle();
  EXPECT_EQ(length(), 0u);
  const auto* const time = document_->window()->findChild<OVTimeView*>("timeView");
  EXPECT_DOUBLE_EQ(time->durationInSeconds(), 0.0);
  EXPECT_DOUBLE_EQ(time->currentTimeInSeconds(), 0.0);
}

TEST_F(EditingTest, RemoveBeforeMarkerAtTheEndLeavesNothing) {
  openWindow();
  recordChunks(3);
  document_->nextButton(nullptr);
  document_->removeBeforeMarker(nullptr);
  settle();
  EXPECT_EQ(length(), 0u);
}

TEST_F(EditingTest, AfterACutTheMarkerIsAtTheStartAndRecordingAtTheNewEnd) {
  openWindow();
  recordChunks(4);
  document_->setPlaybackPosition(1000);
  document_->removeAfterMarker(nullptr);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  EXPECT_EQ(document_->recordingPosition(), 1000u);
  EXPECT_EQ(document_->recorder()->writingPosition(), 8000u);
}

TEST_F(EditingTest, UndoAfterACutRestoresLengthWaveformAndEditedFlagAndRedoRepeatsIt) {
  openWindow();
  recordChunks(4);
  settle();
  save();
  const auto elements = document_->waveForm()->elementCount();
  document_->setPlaybackPosition(kChunkFrames);
  document_->removeBeforeMarker(nullptr);
  settle();
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(length(), 3u * kChunkFrames);
  EXPECT_EQ(document_->waveForm()->elementCount(), elements * 3 / 4);
  document_->undoCommand();
  settle();
  EXPECT_FALSE(document_->isDocumentEdited());
  EXPECT_EQ(length(), 4u * kChunkFrames);
  EXPECT_EQ(document_->waveForm()->elementCount(), elements);
  document_->redoCommand();
  settle();
  EXPECT_TRUE(document_->isDocumentEdited());
  EXPECT_EQ(length(), 3u * kChunkFrames);
  EXPECT_EQ(document_->waveForm()->elementCount(), elements * 3 / 4);
}

TEST_F(EditingTest, AMemoryBufferCanBeReversedAndUndoReversesAgain) {
  openWindow();
  auto memory = OVAudioBuffer::init();
  document_->setBuffer(memory);
  const std::vector<float> samples = {0.1F, 0.2F, 0.3F, 0.4F};
  memory->writeData(samples.data(), 0, 16);
  using Action = VLRecorderWindowController::MenuAction;
  EXPECT_TRUE(document_->validateMenuItem(Action::reverseBuffer));
  document_->reverseBuffer(nullptr);
  EXPECT_EQ(samplesAt(0, 2), (std::vector{0.4F, 0.3F, 0.2F, 0.1F}));
  EXPECT_EQ(document_->windowWillReturnUndoManager()->undoActionName(), "Reverse Audio");
  document_->undoCommand();
  settle();
  EXPECT_EQ(samplesAt(0, 2), samples);
}

TEST_F(EditingTest, TheProgressBarIsSeenDuringARefreshAndHiddenAfterwards) {
  openWindow();
  recordChunks(4);
  settle();
  document_->refreshCompleteUI(true);
  EXPECT_TRUE(document_->loadingIndicator()->isVisible());
  settle();
  EXPECT_FALSE(document_->loadingIndicator()->isVisible());
}

TEST_F(EditingTest, ACutBeforeAMarkerThatAnUndoLeftBehindTheEndEmptiesTheRecording) {
  openWindow();
  recordChunks(1);
  document_->stopButton(nullptr);
  recordChunks(1);
  document_->nextButton(nullptr);
  document_->undoCommand();
  settle();
  ASSERT_EQ(document_->playbackPosition(), 2u * kChunkFrames);
  document_->removeBeforeMarker(nullptr);
  settle();
  EXPECT_EQ(length(), 0u);
  EXPECT_EQ(document_->recordingPosition(), 0u);
}

TEST_F(EditingTest, ACutAfterAMarkerThatAnUndoLeftBehindTheEndKeepsTheRecording) {
  openWindow();
  recordChunks(1);
  document_->stopButton(nullptr);
  recordChunks(1);
  document_->nextButton(nullptr);
  document_->undoCommand();
  settle();
  document_->removeAfterMarker(nullptr);
  settle();
  EXPECT_EQ(length(), kChunkFrames);
  EXPECT_EQ(samplesAt(0, kChunkFrames).size(), 2u * kChunkFrames);
}

TEST_F(EditingTest, UndoOfARecordingGivesBackTheEditedFlagOfBeforeIt) {
  openWindow();
  recordChunks(2);
  save();
  document_->setPlaybackPosition(100);
  document_->removeAfterMarker(nullptr);  // not saved
  recordChunks(1);
  document_->undoCommand();
  settle();
  EXPECT_TRUE(document_->isDocumentEdited());
}

TEST_F(EditingTest, TheEndOfAnOlderRefreshLeavesTheBarOfTheNewerOne) {
  openWindow();
  recordChunks(4);
  settle();
  document_->refreshCompleteUI(true);
  EXPECT_TRUE(awaitGlobalQueue());  // its end waits in the main queue
  document_->recreateIndicator(true);
  document_->refreshCompleteUI(true);
  bool firstEnded = false;
  platform::mainQueue().async([&] { firstEnded = true; });
  EXPECT_TRUE(document_->loadingIndicator()->isVisible());
  EXPECT_TRUE(runMainLoopUntil([&] { return firstEnded; }));
  settle();
  EXPECT_FALSE(document_->loadingIndicator()->isVisible());
}
