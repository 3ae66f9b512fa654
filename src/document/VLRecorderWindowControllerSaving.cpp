#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include <QBuffer>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QUrl>

#include "audio/AudioFileFailure.h"
#include "audio/OVAudioFileWriter.h"
#include "controls/OVRecorderWindow.h"
#include "controls/OVTransportButton.h"
#include "document/OVFileKinds.h"
#include "document/OVSaveJob.h"
#include "document/VLRecorderWindowController.h"
#include "platform/ApplicationServices.h"
#include "platform/DesktopServices.h"
#include "platform/FailureReason.h"
#include "platform/Localization.h"
#include "platform/Panels.h"
#include "platform/ReplacementFile.h"
#include "waveform/OVWaveFormView.h"

using platform::localized;
using platform::localizedUtf8;
using platform::textKey;

namespace {

constexpr std::int32_t kUsualType = 0;  // WAV
constexpr std::int32_t kAacType = 3;
constexpr const char* kRingtoneSuffix = "m4r";
constexpr const char* kPictureSuffix = "png";

QString fileName(const std::string& path) {
  return QString::fromStdString(lastPathComponent(path));
}

QUrl fileAddress(const std::string& path) {
  return QUrl::fromLocalFile(QString::fromStdString(path));
}

std::string folderOf(const std::string& path) {
  return std::filesystem::path(path).parent_path().string();
}

QString sentenceWithName(platform::TextKey sentence, const std::string& path) {
  return localized(sentence).arg(QString::fromStdString(shownFileName(path)));
}

// On a background queue. 0, or the errno of the failure.
int writePicture(const QImage& picture, const std::string& path) {
  QByteArray encoded;
  QBuffer target(&encoded);
  if (!target.open(QIODevice::WriteOnly) || !picture.save(&target, "PNG")) {
    return ENOMEM;
  }
  const auto replacement = platform::ReplacementFile::beside(path);
  if (!replacement.file) {
    return replacement.error;
  }
  const int error =
      replacement.file->write(encoded.constData(), static_cast<std::uint64_t>(encoded.size()));
  return error != 0 ? error : replacement.file->commit();
}

}  // namespace

/// What a save or an export writes, and what becomes of the document afterwards.
struct VLRecorderWindowController::SavingRequest {
  OVSaveJob::Request job;
  std::int32_t type = -1;
  bool isExport = false;
};

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
  platform::panels().beginSavePanel(
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
    }
  }
  if (outcome.complete && outcome.unreadableFrames == 0) {
    fileSavingComplete();
    return;
  }
  endFileIO();
  saveFailed();
  if (outcome.unreadableFrames > 0) {
    tellGaps(request.job.path, secondsOfFrames(outcome.unreadableFrames), outcome.complete);
  } else if (!outcome.told) {
    tellSaveFailed(request.job.path, platform::failureReason(outcome.error));
  }
}

void VLRecorderWindowController::takeFileName(const SavingRequest& request) {
  currentFilename_ = request.job.path;
  currentFiletype_ = request.type;
  if (window_) {
    window_->setTitle(titleWithName(fileName(currentFilename_)));
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

void VLRecorderWindowController::openSavedFile() {
  if (!platform::desktopServices().open(fileAddress(last_saved_file_path_))) {
    ShowModalAlert(
        localizedUtf8("The file was saved but could not be opened"),
        sentenceWithName(textKey("No program was found that opens %1."), last_saved_file_path_)
            .toStdString());
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

// Exports ---------------------------------------------------------------------------------------

void VLRecorderWindowController::exportRingtone(QObject*) {
  if (isFileIOActive_ || isPanelShown_ || !buffer_) {
    return;
  }
  auto* const rule = new QLabel(
      localized("A ringtone begins at the marker, or at the start when the marker is at the end, "
                "and lasts at most %1 seconds.")
          .arg(kRingtoneSeconds));
  rule->setWordWrap(true);
  isPanelShown_ = true;
  platform::panels().beginSavePanel(
      {.window = window_.data(),
       .title = localized("Export Ringtone"),
       .directory = folderOf(currentFilename_),
       .suggestedName = suggestedName(),
       .accessoryView = rule,
       .acceptedSuffixes = [] { return std::vector<std::string>{kRingtoneSuffix}; }},
      [self = weak_from_this()](const std::optional<std::string>& path) {
        if (const auto controller = self.lock()) {
          controller->isPanelShown_ = false;
          if (path) {
            controller->exportRingtoneTo(*path);
          }
        }
      });
}

void VLRecorderWindowController::exportRingtoneTo(const std::string& path) {
  if (isFileIOActive_) {
    return;
  }
  if (isRecording()) {
    pauseButton(pauseButton_);
  }
  const std::uint64_t length = bufferSizeInFrames();
  const std::uint64_t marker = playbackPosition();
  const std::uint64_t from = marker < length ? marker : 0;
  const auto most = static_cast<std::uint64_t>(kRingtoneSeconds * buffer_->format().mSampleRate);
  shell_open_file_after_save_ = true;
  startSaving({.job = {.buffer = buffer_,
                       .fromFrame = from,
                       .frameCount = std::min(length - from, most),
                       .path = path,
                       .outputFormat = static_cast<std::uint32_t>(kAacType)},
               .type = kAacType,
               .isExport = true});
}

void VLRecorderWindowController::dumpWaveform(QObject*) {
  if (!wfView_ || isPanelShown_) {
    return;
  }
  isPanelShown_ = true;
  platform::panels().beginSavePanel(
      {.window = window_.data(),
       .title = localized("Export Waveform Picture"),
       .directory = folderOf(currentFilename_),
       .suggestedName = suggestedName(),
       .acceptedSuffixes = [] { return std::vector<std::string>{kPictureSuffix}; }},
      [self = weak_from_this()](const std::optional<std::string>& path) {
        if (const auto controller = self.lock()) {
          controller->isPanelShown_ = false;
          if (path) {
            controller->writeWaveformPicture(*path);
          }
        }
      });
}

void VLRecorderWindowController::writeWaveformPicture(const std::string& path) {
  if (!wfView_) {
    return;
  }
  QImage picture = wfView_->image();
  if (picture.isNull()) {
    picture = wfView_->grab().toImage();  // never painted so far
  }
  platform::globalQueue().async([picture, path] {
    const int error = writePicture(picture, path);
    if (error != 0) {
      platform::mainQueue().async(
          [path, error] { tellSaveFailed(path, platform::failureReason(error)); });
    }
  });
}

void VLRecorderWindowController::revealTempFile(QObject*) {}

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
  if (isPanelShown_ && !isQuestionShown_) {
    // The panel has to be answered first, and the quit to be asked for again.
    platform::applicationServices()->cancelTermination();
    window_->raise();
    window_->activateWindow();
  } else if (!isQuestionShown_) {
    askToSave();
  }
  return false;
}

void VLRecorderWindowController::askToSave() {
  using Role = platform::SheetRequest::Button::Role;
  const QString name = currentFilename_.empty() ? localized("Unnamed") : fileName(currentFilename_);
  isPanelShown_ = isQuestionShown_ = true;
  platform::panels().beginSheet(
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
