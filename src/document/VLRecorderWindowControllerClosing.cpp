#include <cstdio>
#include <cstdlib>

#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "platform/base/ApplicationServices.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/mainloop/Localization.h"

using platform::localized;

// Unsaved changes -------------------------------------------------------------------------------

bool VLRecorderWindowController::windowShouldClose(OVRecorderWindow*) {
  if (isRecording()) {
    pauseButton(pauseButton_);
  }
  if (windowShouldCloseAfterSaveSheet_) {
    return true;
  }
  if (isSaving_) {
    shouldCloseAfterSave_ = true;  // the window goes when the file is complete
    return false;
  }
  if (!isDocumentEdited()) {
    return true;
  }
  bringToFront();
  if (isPanelShown_ && !isQuestionShown_) {
    // The panel has to be answered first, and the quit to be asked for again.
    platform::applicationServices()->cancelTermination();
  } else if (!isQuestionShown_) {
    askToSave();
  }
  return false;
}

// What the window asks has to be seen: a quit waits for the answer.
void VLRecorderWindowController::bringToFront() {
  if (window_) {
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->raise();
    window_->activateWindow();
  }
}

void VLRecorderWindowController::askToSave() {
  using Role = platform::SheetRequest::Button::Role;
  const QString name = currentFilename_.empty()
                           ? localized("Unnamed")
                           : QString::fromStdString(lastPathComponent(currentFilename_));
  isPanelShown_ = isQuestionShown_ = true;
  platform::fileDialogs()->beginSheet(
      {.window = window_.data(),
       .title = localized("Do you want to save the changes made to “%1”?").arg(name),
       .message = localized("Your changes will be lost if you don't save them."),
       .buttons = {{localized("Save"), kSave, Role::accept},
                   {localized("Don't Save"), kDontSave, Role::destructive},
                   {localized("Cancel"), kCancelClosing, Role::reject}}},
      [self = weak_from_this()](int returnCode) {
        if (const auto controller = self.lock()) {
          controller->isPanelShown_ = controller->isQuestionShown_ = false;
          controller->alertDidEnd(returnCode);
        }
      });
}

void VLRecorderWindowController::alertDidEnd(int returnCode) {
  switch (returnCode) {
    case kCancelClosing:
      platform::applicationServices()->cancelTermination();
      return;
    case kDontSave:
      windowShouldCloseAfterSaveSheet_ = true;
      if (window_) {
        window_->performClose();
      }
      return;
    case kSave:
      shouldCloseAfterSave_ = true;
      saveFile(nullptr);
      return;
    default:
      std::fprintf(stderr, "Unknown button return: %i\n", returnCode);
      std::abort();
  }
}
