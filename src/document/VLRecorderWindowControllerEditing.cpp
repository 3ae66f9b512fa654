#include <algorithm>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVTransportButton.h"
#include "displays/OVTimeView.h"
#include "document/VLRecorderWindowController.h"
#include "platform/Localization.h"
#include "waveform/OVWaveFormView.h"
#include "waveform/OVWaveformSummary.h"

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
  prevWaveform_ = waveForm_->copy();
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
  buffer_->undo();
  exchangeHistory();
}

void VLRecorderWindowController::redo(QObject*) {
  registerUndo(&VLRecorderWindowController::undo);
  buffer_->redo();
  exchangeHistory();
}

void VLRecorderWindowController::exchangeHistory() {
  const bool edited = isDocumentEdited();
  setDocumentEdited(prevSaveState_);
  prevSaveState_ = edited;
  const auto shown = waveForm_;
  setWaveForm(prevWaveform_);
  prevWaveform_ = shown;
  if (wfView_) {
    wfView_->setWaveForm(waveForm_);
    wfView_->setShouldRedrawWaveform(true);
    setViewNeedsDisplay(wfView_);
  }
  // A copy that was taken in the middle of a generation from scratch has to be finished.
  refreshCompleteUI(waveForm_->isRegenerating());
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
  ++summaryEpoch_;
  recreateIndicator(true, platform::textKey("Drawing the waveform"));
  showIndicator(true);
  if (regenerate) {
    // At once: a copy that is taken before the task begins has to know it, too.
    waveForm_->setShouldRegenerateWaveform(true);
  }
  platform::globalQueue().async(
      [self = weak_from_this(), summary = waveForm_, epoch = summaryEpoch_] {
        summary->generate();
        platform::mainQueue().async([self, epoch] {
          if (const auto controller = self.lock()) {
            controller->finishRefresh(epoch);
          }
        });
      });
}

void VLRecorderWindowController::finishRefresh(std::uint64_t epoch) {
  if (epoch != summaryEpoch_ || isFileIOActive_) {
    return;  // what came after it shows itself
  }
  if (wfView_) {
    wfView_->setWaveForm(waveForm_);
    wfView_->setShouldRedrawWaveform(true);
    setViewNeedsDisplay(wfView_);
  }
  if (timeView_) {
    timeView_->setDurationInSeconds(secondsOfFrames(bufferSizeInFrames()));
    timeView_->setCurrentTimeInSeconds(secondsOfFrames(playbackPosition()));
    setViewNeedsDisplay(timeView_);
  }
  ++lastPlaybackPosition_;
  if (pollTimer_) {
    updatePlaybackMarkerView();
  }
  setIndicatorValue(0.0);
  showIndicator(false);
}
