#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"
#include "storage/OVAudioBuffer.h"
#include "storage/OVBlockBuffer.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/views/OVPlaybackMarkerView.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

// Key codes of the hardware keyboard.
constexpr std::uint16_t kKeyR = 15;
constexpr std::uint16_t kKeyReturn = 36;
constexpr std::uint16_t kKeySpace = 49;

bool enabled(const OVTransportButton* button) {
  return button != nullptr && button->isEnabled();
}

void setEnabled(OVTransportButton* button, bool enabled) {
  if (button != nullptr) {
    button->setEnabled(enabled);
  }
}

void setOn(OVTransportButton* button, bool on) {
  if (button != nullptr) {
    button->setIsOn(on);
  }
}

}  // namespace

bool VLRecorderWindowController::isRecording() const {
  return recorder_ && recorder_->isRecording();
}

bool VLRecorderWindowController::isPlaying() const {
  return player_ && player_->isPlaying();
}

// Record and play -------------------------------------------------------------------------------

void VLRecorderWindowController::recButton(OVTransportButton* sender) {
  if (sender != nullptr && sender->isOn()) {
    beginRecording();
  } else {
    pauseButton(pauseButton_);
  }
}

void VLRecorderWindowController::beginRecording() {
  if (!recorder_ || recorder_->failure() != platform::kAudioStatusOk) {
    replaceRecorder();
  }
  if (!recorder_) {
    setOn(recButton_, false);  // no input device: nothing has changed, the user has been told
    return;
  }
  bringRecordingPositionInside();
  takeBackPress(playButton_);
  setEnabled(playButton_, false);
  buffer_->setWaypoint();
  keepHistory();
  registerUndo(&VLRecorderWindowController::undo, platform::textKey("Record"));
  if (wfView_) {
    wfView_->setScrollBack(true);
  }
  writeFailures_.recordingBegins();
  writtenSincePress_ = false;
  recorder_->record();
  setDocumentEdited(true);
}

void VLRecorderWindowController::playButton(OVTransportButton* sender) {
  if (sender != nullptr && sender->isOn()) {
    beginPlaying();
  } else {
    pauseButton(pauseButton_);
  }
}

void VLRecorderWindowController::beginPlaying() {
  if (!buffer_) {
    setOn(playButton_, false);
    return;
  }
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  takeBackPress(recButton_);
  setEnabled(recButton_, false);
  readError_ = 0;
  if (!player_) {
    player_ = OVAQPlayer::initWithBuffer(buffer_, playbackPosition() * bytesPerFrame());
    if (!player_) {
      setEnabled(recButton_, true);  // no output device: as before, the user has been told
      setOn(playButton_, false);
      return;
    }
    setPlaybackPosition(player_->readingPosition() / bytesPerFrame());
    player_->setDelegate(weak_from_this());
  }
  player_->play();
}

// Pause, stop, to start, to end -----------------------------------------------------------------

void VLRecorderWindowController::pauseButton(OVTransportButton*) {
  const platform::PostedAlertsScope afterwards;  // no main loop runs in the middle of a command
  if (isRecording()) {
    endRecording();
  }
  if (isPlaying()) {
    setRecordingPosition(playbackPosition());
  }
  if (playbackMarkerView_) {
    playbackMarkerView_->setIsRecordingMarker(false);
  }
  if (player_) {
    player_->stop();
    player_.reset();
  }
  restTransportButtons();
  if (wfView_) {
    wfView_->setScrollBack(false);
  }
  replaceRecorder();
}

void VLRecorderWindowController::endRecording() {
  recorder_->pause();  // from here on writingPosition stands still
  setRecordingPosition(recorder_->writingPosition() / bytesPerFrame());
  setPlaybackPosition(recordingPosition());
  if (playbackPosition() >= buffer_->bufferFillSizeInFrames()) {
    setPlaybackPosition(0);
  }
  if (const auto blocks = std::dynamic_pointer_cast<OVBlockBuffer>(buffer_)) {
    blocks->optimize();
  }
  ++lastPlaybackPosition_;  // the marker leaves the recording position at the next tick
  summaries_->extend();     // the last chunk shows too
}

void VLRecorderWindowController::restTransportButtons() {
  for (OVTransportButton* const button : {recButton_.data(), playButton_.data()}) {
    setEnabled(button, true);
    setOn(button, false);
  }
  for (auto& [keyCode, press] : keyPresses_) {
    press.wasOn = false;
  }
  setEnabled(prevButton_, true);
  setEnabled(nextButton_, true);
}

void VLRecorderWindowController::replaceRecorder() {
  if (recorder_) {
    recorder_->pause();
    recorder_->prepareForDestruction();
  }
  setRecorder(makeRecorder());
}

void VLRecorderWindowController::stopButton(OVTransportButton*) {
  pauseButton(pauseButton_);
  setPlaybackPosition(0);
  setRecordingPosition(bufferSizeInFrames());
  setWritingPosition(recordingPosition());
}

void VLRecorderWindowController::prevButton(OVTransportButton*) {
  setRecordingPosition(0);
  setWritingPosition(0);
  setPlaybackPosition(0);
  setReadingPosition(0);
}

void VLRecorderWindowController::nextButton(OVTransportButton*) {
  setPlaybackPosition(bufferSizeInFrames());
  setReadingPosition(playbackPosition());
  setRecordingPosition(bufferSizeInFrames());
  setWritingPosition(recordingPosition());
}

void VLRecorderWindowController::setReadingPosition(std::uint64_t frames) {
  if (player_) {
    player_->setReadingPosition(frames * bytesPerFrame());
  }
}

void VLRecorderWindowController::setWritingPosition(std::uint64_t frames) {
  if (recorder_) {
    recorder_->setWritingPosition(frames * bytesPerFrame());
  }
}

// Menu ------------------------------------------------------------------------------------------

void VLRecorderWindowController::recMenu(QObject*) {
  if (enabled(recButton_)) {
    recButton_->setIsOn(!recButton_->isOn());
    recButton(recButton_);
  }
}

void VLRecorderWindowController::playMenu(QObject* sender) {
  if (enabled(recButton_) && isRecording()) {
    recMenu(sender);
  } else if (enabled(playButton_)) {
    playButton_->setIsOn(!playButton_->isOn());
    playButton(playButton_);
  }
}

// Deliberately nothing: pausing from the menu is done with the play and record commands.
void VLRecorderWindowController::pauseMenu(QObject*) {}

void VLRecorderWindowController::stopMenu(QObject*) {
  if (enabled(stopButton_)) {
    stopButton(stopButton_);
  }
}

void VLRecorderWindowController::prevMenu(QObject*) {
  if (enabled(prevButton_)) {
    prevButton(prevButton_);
  }
}

void VLRecorderWindowController::nextMenu(QObject*) {
  if (enabled(nextButton_)) {
    nextButton(nextButton_);
  }
}

bool VLRecorderWindowController::validateMenuItem(MenuAction action) const {
  switch (action) {
    case MenuAction::reverseBuffer:
      return !isFileIOActive_ && std::dynamic_pointer_cast<OVAudioBuffer>(buffer_) != nullptr;
    case MenuAction::undo:
      return !isFileIOActive_ && undoManager_ && undoManager_->canUndo();
    case MenuAction::redo:
      return !isFileIOActive_ && undoManager_ && undoManager_->canRedo();
    case MenuAction::transport:
    case MenuAction::open:  // in a window of its own: needs nothing of this document
      return !isFileIOActive_;
    case MenuAction::edit:
    case MenuAction::file:
      return !isFileIOActive_ && buffer_ != nullptr;
    case MenuAction::other:
      return true;
  }
  return true;
}

// Keys: down only shows the press, up acts ------------------------------------------------------

void VLRecorderWindowController::windowDidReceiveKeyDown(OVRecorderWindow*, std::uint16_t keyCode) {
  if (keyCode == kKeyR) {
    pressKey(keyCode, recButton_, true);
  } else if (keyCode == kKeyReturn) {
    pressKey(keyCode, prevButton_, false);
  } else if (keyCode == kKeySpace) {
    pressKey(keyCode, enabled(recButton_) && isRecording() ? recButton_ : playButton_, true);
  }
}

void VLRecorderWindowController::windowDidReceiveKeyUp(OVRecorderWindow*, std::uint16_t keyCode) {
  if (keyCode == kKeyR) {
    if (releaseKey(keyCode, recButton_, true)) {
      recMenu(recButton_);
    }
  } else if (keyCode == kKeyReturn) {
    if (releaseKey(keyCode, prevButton_, false)) {
      prevMenu(prevButton_);
    }
  } else if (keyCode == kKeySpace) {
    if (enabled(recButton_) && isRecording()) {
      releaseKey(keyCode, recButton_, true);
      recMenu(recButton_);
    } else if (releaseKey(keyCode, playButton_, true)) {
      playMenu(playButton_);
    }
  }
}

void VLRecorderWindowController::windowDidCancelKey(OVRecorderWindow*, std::uint16_t keyCode) {
  takeBackKey(keyCode);
}

void VLRecorderWindowController::pressKey(std::uint16_t keyCode, OVTransportButton* button,
                                          bool toggles) {
  if (!enabled(button) || button->isHighlighted()) {
    return;
  }
  takeBackKey(keyCode);  // a held Space becomes Play's when the recording ends by itself
  keyPresses_[keyCode] = {button, button->isOn()};
  if (toggles) {
    button->setIsOn(!button->isOn());
  }
  button->setIsHighlighted(true);
  setViewNeedsDisplay(QPointer<OVTransportButton>(button));
}

bool VLRecorderWindowController::releaseKey(std::uint16_t keyCode, OVTransportButton* button,
                                            bool toggles) {
  const bool released = enabled(button) && button->isHighlighted();
  if (released) {
    if (toggles) {
      button->setIsOn(!button->isOn());
    }
    button->setIsHighlighted(false);
    setViewNeedsDisplay(QPointer<OVTransportButton>(button));
  }
  takeBackKey(keyCode);  // where it went down on another button, or this one is disabled
  return released;
}

// Without the key's command; nothing is left to do where its button was released.
void VLRecorderWindowController::takeBackKey(std::uint16_t keyCode) {
  if (const auto press = keyPresses_.extract(keyCode)) {
    takeBackPress(press.mapped().button, press.mapped().wasOn);
  }
}

// A button that is to be disabled would not see the release, of a key as little as of the mouse.
void VLRecorderWindowController::takeBackPress(OVTransportButton* button, bool isOn) {
  if (button == nullptr || !button->isHighlighted()) {
    return;
  }
  button->setIsOn(isOn);
  button->setIsHighlighted(false);
  setViewNeedsDisplay(QPointer<OVTransportButton>(button));
}
