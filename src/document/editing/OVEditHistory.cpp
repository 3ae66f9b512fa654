#include "document/editing/OVEditHistory.h"

#include <utility>

#include "controls/OVRecorderWindow.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/summaries/OVDocumentSummaries.h"

OVEditHistory::OVEditHistory(OVDocumentAudio& audio, OVDocumentSummaries& summaries)
    : audio_(audio), summaries_(summaries) {}

void OVEditHistory::open(std::weak_ptr<void> target, std::function<void()> undo,
                         std::function<void()> redo) {
  target_ = std::move(target);
  undo_ = std::move(undo);
  redo_ = std::move(redo);
  undoManager_ = std::make_shared<platform::UndoManager>();
  undoManager_->setLevelsOfUndo(1);
}

void OVEditHistory::close() {
  undoManager_.reset();
  kept_.close();
}

// Edited flag -----------------------------------------------------------------------------------

void OVEditHistory::setWindow(OVRecorderWindow* window) {
  window_ = window;
}

bool OVEditHistory::isEdited() const {
  return window_ ? window_->isDocumentEdited() : documentEdited_;
}

void OVEditHistory::setEdited(bool edited) {
  documentEdited_ = edited;
  if (window_) {
    window_->setDocumentEdited(edited);
  }
  kept_.setEdited(edited);
}

void OVEditHistory::saved() {
  setEdited(false);
  fileReplaced();
}

// Steps -----------------------------------------------------------------------------------------

void OVEditHistory::beginStep(platform::TextKey name) {
  kept_.setEdited(true);  // from here on the audio differs from any file
  audio_.buffer()->setWaypoint();
  summaries_.keep();
  formerPrevSaveState_ = std::exchange(prevSaveState_, isEdited());
  if (undoManager_) {
    formerSides_ = undoManager_->sides();
  }
  registerInverse(undo_, name);
}

void OVEditHistory::rollBackStep() {
  audio_.buffer()->rollBack();
  summaries_.forgetKept();
  setEdited(std::exchange(prevSaveState_, formerPrevSaveState_));
  if (undoManager_) {
    undoManager_->setSides(std::exchange(formerSides_, Sides()));
  }
  ++revision_;
}

void OVEditHistory::registerInverse(const std::function<void()>& operation,
                                    platform::TextKey name) {
  ++revision_;
  registerOperation(operation);
  if (undoManager_) {
    undoManager_->setActionName(platform::localizedUtf8(name));
  }
}

void OVEditHistory::registerOperation(const Operation& operation) {
  if (undoManager_) {
    undoManager_->registerUndo(target_, operation);
  }
}

// Undo and redo ---------------------------------------------------------------------------------

bool OVEditHistory::undo() {
  return exchange(redo_, &OVEditHistory::restoreWaypoint);
}

bool OVEditHistory::redo() {
  return exchange(undo_, &OVEditHistory::restoreRedo);
}

bool OVEditHistory::exchange(const Operation& inverse, void (OVEditHistory::*restore)()) {
  registerOperation(inverse);
  summaries_.willExchange();
  const bool edited = isEdited();
  kept_.setEdited(true);  // from here on the audio differs from what is said to be saved
  (this->*restore)();
  ++revision_;
  setEdited(std::exchange(prevSaveState_, edited));
  return summaries_.exchange();
}

void OVEditHistory::restoreWaypoint() {
  audio_.buffer()->undo();
}

void OVEditHistory::restoreRedo() {
  audio_.buffer()->redo();
}
