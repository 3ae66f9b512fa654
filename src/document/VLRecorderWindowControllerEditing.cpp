#include <algorithm>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/buttons/OVTransportButton.h"
#include "displays/OVTimeView.h"
#include "document/VLRecorderWindowController.h"
#include "platform/mainloop/Localization.h"

// Cuts ------------------------------------------------------------------------------------------

void VLRecorderWindowController::removeAfterMarker(QObject*) {
  cut(&OVAudioBufferInterface::cutoffBufferAfterPosition, platform::textKey("Remove After Marker"));
}

void VLRecorderWindowController::removeBeforeMarker(QObject*) {
  cut(&OVAudioBufferInterface::cutoffBufferBeforePosition,
      platform::textKey("Remove Before Marker"));
}

void VLRecorderWindowController::cut(void (OVAudioBufferInterface::*cutoff)(std::uint64_t),
                                     platform::TextKey actionName) {
  if (isFileIOActive_ || !buffer_) {
    return;
  }
  pauseButton(pauseButton_);
  buffer_->setWaypoint();
  keepHistory();
  // An undo may have left the marker behind the end.
  (buffer_.get()->*cutoff)(std::min(playbackPosition(), bufferSizeInFrames()));
  setDocumentEdited(true);
  setPlaybackPosition(0);
  setReadingPosition(playbackPosition());
  setRecordingPosition(bufferSizeInFrames());
  setWritingPosition(recordingPosition());
  registerUndo(&VLRecorderWindowController::undo, actionName);
  refreshCompleteUI(true);
}

// Reversing is its own inverse: it registers itself, and nothing else is touched.
void VLRecorderWindowController::reverseBuffer(QObject*) {
  if (isFileIOActive_ || !buffer_) {
    return;
  }
  buffer_->reverseBuffer();
  refreshCompleteUI(true);
  registerUndo(&VLRecorderWindowController::reverseBuffer, platform::textKey("Reverse Audio"));
}

// An undo may have left it behind the end: a recording or an import there would leave a hole.
void VLRecorderWindowController::bringRecordingPositionInside() {
  if (recordingPosition() > bufferSizeInFrames()) {
    setRecordingPosition(bufferSizeInFrames());
    setWritingPosition(recordingPosition());
  }
}

// What an undo of the step that begins now brings back beside the audio.
void VLRecorderWindowController::keepHistory() {
  summaries_->keep();
  prevSaveState_ = isDocumentEdited();
}

// Undo and redo ---------------------------------------------------------------------------------

void VLRecorderWindowController::registerUndo(
    void (VLRecorderWindowController::*operation)(QObject*),
    std::optional<platform::TextKey> actionName) {
  if (!undoManager_) {
    return;
  }
  undoManager_->registerUndo(weak_from_this(), [this, operation] { (this->*operation)(nullptr); });
  if (actionName) {
    undoManager_->setActionName(platform::localizedUtf8(*actionName));
  }
}

void VLRecorderWindowController::undo(QObject*) {
  registerUndo(&VLRecorderWindowController::redo);
  summaries_->willExchange();
  buffer_->undo();
  exchangeHistory();
}

void VLRecorderWindowController::redo(QObject*) {
  registerUndo(&VLRecorderWindowController::undo);
  summaries_->willExchange();
  buffer_->redo();
  exchangeHistory();
}

void VLRecorderWindowController::exchangeHistory() {
  const bool edited = isDocumentEdited();
  setDocumentEdited(prevSaveState_);
  prevSaveState_ = edited;
  refreshCompleteUI(summaries_->exchange());
}

void VLRecorderWindowController::undoCommand() {
  if (validateMenuItem(MenuAction::undo)) {
    runHistoryCommand(&platform::UndoManager::undo);
  }
}

void VLRecorderWindowController::redoCommand() {
  if (validateMenuItem(MenuAction::redo)) {
    runHistoryCommand(&platform::UndoManager::redo);
  }
}

void VLRecorderWindowController::runHistoryCommand(void (platform::UndoManager::*command)()) {
  if (isRecording() || player_) {
    pauseButton(pauseButton_);
  }
  (undoManager_.get()->*command)();
}

// Refresh ---------------------------------------------------------------------------------------

void VLRecorderWindowController::refreshCompleteUI(bool regenerate) {
  if (!isFileIOActive_) {  // a file operation shows its own progress
    recreateIndicator(true, platform::textKey("Drawing the waveform"));
    showIndicator(true);
  }
  summaries_->refresh(regenerate);
}

void VLRecorderWindowController::finishRefresh() {
  summaries_->show();
  if (timeView_) {
    timeView_->setDurationInSeconds(secondsOfFrames(bufferSizeInFrames()));
    timeView_->setCurrentTimeInSeconds(secondsOfFrames(playbackPosition()));
    setViewNeedsDisplay(timeView_);
  }
  ++lastPlaybackPosition_;
  if (pollTimer_) {
    updatePlaybackMarkerView();
  }
  if (!isFileIOActive_) {
    setIndicatorValue(0.0);
    showIndicator(false);
  }
}
