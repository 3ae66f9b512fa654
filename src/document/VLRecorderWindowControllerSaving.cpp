#include <filesystem>
#include <utility>

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>

#include "audio/AudioFileFailure.h"
#include "audio/OVAudioFileWriter.h"
#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "document/VLRecorderWindowControllerSaving.h"
#include "document/files/OVSaveJob.h"
#include "platform/base/ApplicationServices.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"

using platform::localized;
using platform::localizedUtf8;
using platform::textKey;

namespace {

constexpr std::int32_t kUsualType = 0;  // WAV

}  // namespace

std::string folderOf(const std::string& path) {
  return std::filesystem::path(path).parent_path().string();
}

QString sentenceWithName(platform::TextKey sentence, const std::string& path) {
  return localized(sentence).arg(QString::fromStdString(shownFileName(path)));
}

// Save ------------------------------------------------------------------------------------------

void VLRecorderWindowController::saveFile(QObject* sender) {
  if (isFileIOActive_ || isPanelShown_ || !buffer_) {
    return;
  }
  if (currentFilename_.empty() || fileKindOfType(currentFiletype_) == nullptr) {
    saveFileAs(sender);
  } else {
    saveFileNamed(currentFilename_, currentFiletype_);
  }
}

void VLRecorderWindowController::saveFileAs(QObject*) {
  if (isFileIOActive_ || isPanelShown_ || !buffer_) {
    return;
  }
  makeSaveAccessory(suggestedType());
  isPanelShown_ = true;
  platform::fileDialogs()->beginSavePanel(
      {.window = window_.data(),
       .title = localized("Save As"),
       .directory = folderOf(currentFilename_),
       .suggestedName = suggestedName(),
       .accessoryView = fileSaveAccessoryView_.data(),
       .acceptedSuffixes = [type = fileTypeButton_] { return suffixesOfType(chosenType(type)); }},
      [self = weak_from_this(), type = fileTypeButton_](const std::optional<std::string>& path) {
        if (const auto controller = self.lock()) {
          controller->isPanelShown_ = false;
          if (path) {
            controller->saveFileNamed(*path, chosenType(type));
          } else {
            controller->saveFailed();
          }
        }
      });
}

std::int32_t VLRecorderWindowController::chosenType(const QPointer<QComboBox>& fileTypeButton) {
  return fileTypeButton ? fileTypeButton->currentData().toInt() : kUsualType;
}

void VLRecorderWindowController::makeSaveAccessory(std::int32_t type) {
  fileSaveAccessoryView_ = new QWidget;
  fileSaveAccessoryView_->setObjectName("fileSaveAccessoryView");
  auto* const row = new QHBoxLayout(fileSaveAccessoryView_);
  row->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(localized("File &type:"));
  fileTypeButton_ = new QComboBox;
  fileTypeButton_->setObjectName("fileTypeButton");
  fileTypeButton_->setAccessibleName(localized("File type"));
  for (const OVFileKind& kind : writableFileKinds()) {
    fileTypeButton_->addItem(localized(kind.title), kind.type);
  }
  fileTypeButton_->setCurrentIndex(fileTypeButton_->findData(type));
  label->setBuddy(fileTypeButton_);
  row->addWidget(label);
  row->addWidget(fileTypeButton_);
  row->addStretch();
}

std::string VLRecorderWindowController::suggestedName() const {
  return currentFilename_.empty() ? localizedUtf8("Unnamed") : nameWithoutSuffix(currentFilename_);
}

// A file that was opened is offered in its own kind where we can write that.
std::int32_t VLRecorderWindowController::suggestedType() const {
  for (const std::int32_t type : {currentFiletype_, fileTypeOfPath(currentFilename_)}) {
    if (fileKindOfType(type) != nullptr) {
      return type;
    }
  }
  return kUsualType;
}

void VLRecorderWindowController::saveFileNamed(const std::string& path, std::int32_t withType) {
  if (isFileIOActive_ || !buffer_ || fileKindOfType(withType) == nullptr) {
    return;
  }
  if (isRecording()) {
    pauseButton(pauseButton_);  // what is recorded up to now is saved too
  }
  startSaving({.job = {.buffer = buffer_,
                       .fromFrame = 0,
                       .frameCount = bufferSizeInFrames(),
                       .path = path,
                       .outputFormat = static_cast<std::uint32_t>(withType)},
               .type = withType,
               .isExport = false});
}

// The job ---------------------------------------------------------------------------------------

void VLRecorderWindowController::startSaving(SavingRequest request) {
  if (const auto refusal = refusalOf(request)) {
    saveFailed();
    tellSaveFailed(request.job.path, *refusal);
    return;
  }
  beginFileIO(request.isExport ? textKey("Exporting") : textKey("Saving"));
  isSaving_ = true;
  isExport_ = request.isExport;
  platform::globalQueue().async([self = weak_from_this(), request = std::move(request)] {
    const auto outcome = OVSaveJob::run(request.job, [&self](double fraction) {
      platform::mainQueue().async([self, fraction] {
        if (const auto controller = self.lock()) {
          controller->setIndicatorValue(fraction);
        }
      });
    });
    platform::mainQueue().async([self, request, outcome] {
      if (const auto controller = self.lock()) {
        controller->savingEnded(request, outcome);
      }
    });
  });
}

// What can be known before anything is written.
std::optional<std::string> VLRecorderWindowController::refusalOf(const SavingRequest& request) {
  const auto most = OVAudioFileWriter::maximumFrames(request.job.outputFormat);
  if (most && request.job.frameCount > *most) {
    return localized("The recording is too long for a file of the type %1. Choose another type.")
        .arg(localized(fileKindOfType(request.type)->title))
        .toStdString();
  }
  if (request.type == kAacType && request.job.frameCount == 0) {
    return localizedUtf8("An AAC file cannot be empty. Record something first.");
  }
  return std::nullopt;
}

void VLRecorderWindowController::savingEnded(const SavingRequest& request,
                                             const OVSaveJob::Outcome& outcome) {
  isSaving_ = false;
  if (outcome.complete) {
    last_saved_file_path_ = request.job.path;
    if (!request.isExport) {
      takeFileName(request);
      prevSaveState_ = true;  // what undo or redo brings back differs from the file
    }
  }
  if (outcome.complete && outcome.unreadableFrames == 0) {
    fileSavingComplete();
    return;
  }
  endFileIO();
  saveFailed();
  if (outcome.error != 0) {
    tellSaveFailed(request.job.path, platform::failureReason(outcome.error));
  } else if (!outcome.told) {
    tellGaps(request.job.path, secondsOfFrames(outcome.unreadableFrames), outcome.complete);
  }
}

void VLRecorderWindowController::takeFileName(const SavingRequest& request) {
  currentFilename_ = request.job.path;
  currentFiletype_ = request.type;
  if (window_) {
    window_->setTitle(titleWithName(QString::fromStdString(lastPathComponent(currentFilename_))));
  }
}

// The document keeps counting as unsaved.
void VLRecorderWindowController::tellGaps(const std::string& path, double seconds, bool saved) {
  const QString gaps = localized("%1 seconds of the recording could not be read.")
                           .arg(QLocale().toString(seconds, 'f', 2));
  const QString outcome = localized(
      saved
          ? textKey("They are silent in the file.")
          : textKey("The file that was there was kept. Save under another name to get the rest."));
  ShowModalAlert(
      sentenceWithName(saved ? textKey("%1 was saved with gaps") : textKey("%1 could not be saved"),
                       path)
          .toStdString(),
      (gaps + QLatin1Char(' ') + outcome).toStdString());
}

void VLRecorderWindowController::fileSavingComplete() {
  setFileIOActive(false);
  const bool isExport = std::exchange(isExport_, false);
  if (!isExport) {
    setDocumentEdited(false);
    prevSaveState_ = true;  // what undo or redo brings back differs from the file
  }
  endFileIO();
  stopButton(stopButton_);
  if (std::exchange(shell_open_file_after_save_, false)) {
    const platform::PostedAlertsScope afterwards;  // no main loop runs before the window closes
    openSavedFile();
  }
  if (shouldCloseAfterSave_ && window_) {
    shouldCloseAfterSave_ = false;
    // An export has saved nothing of the document: the question is asked again.
    windowShouldCloseAfterSaveSheet_ = !isExport;
    window_->performClose();
  }
}

// The document stays as it is, and so does the program if it was about to quit.
void VLRecorderWindowController::saveFailed() {
  isExport_ = false;
  shouldCloseAfterSave_ = false;
  shell_open_file_after_save_ = false;
  platform::applicationServices()->cancelTermination();
}

void VLRecorderWindowController::tellSaveFailed(const std::string& path,
                                                const std::string& reason) {
  ShowModalAlert(sentenceWithName(textKey("%1 could not be saved"), path).toStdString(), reason);
}
