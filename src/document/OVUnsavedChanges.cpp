#include "document/OVUnsavedChanges.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "controls/OVRecorderWindow.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVDocumentPanels.h"
#include "document/files/OVRecoveredOrigin.h"
#include "document/transport/OVTransport.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

OVUnsavedChanges::OVUnsavedChanges(const Parts& parts, std::function<bool()> save,
                                   std::function<void(int)> answered)
    : parts_(parts), save_(std::move(save)), answered_(std::move(answered)) {}

void OVUnsavedChanges::setWindow(OVRecorderWindow* window) {
  window_ = window;
}

bool OVUnsavedChanges::mayClose() {
  if (state_ == State::idle && parts_.operation.isWriting()) {
    state_ = State::savePending;
  }
  if (state_ == State::confirmed || (state_ == State::idle && !parts_.history.isEdited())) {
    return true;
  }
  if (state_ != State::savePending || !parts_.operation.isActive()) {  // there is an answer to give
    bringToFront();
  }
  if (state_ == State::idle && !parts_.panels.isShown()) {
    ask();
  }
  return false;
}

// A panel or question must be visible: a quit waits for the answer.
void OVUnsavedChanges::bringToFront() {
  if (window_) {
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->raise();
    window_->activateWindow();
  }
}

bool OVUnsavedChanges::refusesQuit() {
  if (state_ != State::idle || parts_.operation.isWriting() || !parts_.history.isEdited() ||
      !parts_.panels.isShown()) {
    return false;
  }
  bringToFront();
  platform::applicationServices()->postModalAlert(
      platform::localizedUtf8("Quitting was cancelled"),
      localized("A panel of “%1” is open. Answer it first, then quit again.")
          .arg(parts_.file.shownName())
          .toStdString());
  return true;
}

void OVUnsavedChanges::ask() {
  using Role = platform::SheetRequest::Button::Role;
  QStringList message{localized("Your changes will be lost if you don’t save them.")};
  if (parts_.transport.isRecording()) {
    message << localized("The recording was paused.");
  }
  state_ = State::asking;
  parts_.panels.ask(
      {.title =
           localized("Do you want to save the changes made to “%1”?").arg(parts_.file.shownName()),
       .message = platform::sentencesInARow(message),
       .buttons = {{localized("&Save"), kSave, Role::accept},
                   {localized("Do&n’t Save"), kDontSave, Role::destructive},
                   {localized("&Cancel"), kCancelClosing, Role::reject}}},
      answered_);
  if (parts_.transport.isRecording()) {
    parts_.transport.pause();
  }
}

void OVUnsavedChanges::answer(int returnCode) {
  switch (returnCode) {
    case kCancelClosing:
      state_ = State::idle;
      platform::applicationServices()->cancelTermination();
      return;
    case kDontSave:
      parts_.recovered.discarded();
      state_ = State::confirmed;
      closeWindow();
      return;
    case kSave:
      state_ = State::savePending;
      save();
      return;
    default:
      std::fprintf(stderr, "Unknown button return: %i\n", returnCode);
      std::abort();
  }
}

void OVUnsavedChanges::loadEnded() {
  if (state_ == State::savePending) {
    save();
  }
}

// A save that a running load prevents begins when the load has ended.
void OVUnsavedChanges::save() {
  if (!save_() && !parts_.operation.isActive()) {
    saveFailed();
  }
}

void OVUnsavedChanges::written(bool saved) {
  if (saved) {
    parts_.recovered.saved();
  }
  if (state_ == State::savePending) {
    state_ = saved ? State::confirmed : State::idle;
    closeWindow();
  }
}

void OVUnsavedChanges::cancelClosing() {
  if (state_ == State::savePending) {
    state_ = State::idle;
  }
}

void OVUnsavedChanges::saveFailed() {
  cancelClosing();
  platform::applicationServices()->cancelTermination();
}

void OVUnsavedChanges::closeWindow() {
  if (window_) {
    window_->performClose();
  }
}
