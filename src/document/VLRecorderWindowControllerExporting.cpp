#include <algorithm>
#include <cerrno>
#include <new>

#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QUrl>

#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "document/VLRecorderWindowControllerSaving.h"
#include "platform/base/ApplicationServices.h"
#include "platform/desktop/DesktopServices.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/files/ReplacementFile.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "waveform/views/OVWaveFormView.h"

using platform::localized;
using platform::localizedUtf8;
using platform::textKey;

namespace {

constexpr const char* kRingtoneSuffix = "m4r";
constexpr const char* kPictureSuffix = "png";

// On a background queue, which lets no exception out. 0, or the errno of the failure.
int writePicture(const QImage& picture, const std::string& path) try {
  QByteArray encoded;
  QBuffer target(&encoded);
  if (!target.open(QIODevice::WriteOnly) || !picture.save(&target, "PNG")) {
    return ENOMEM;
  }
  const auto replacement = platform::ReplacementFile::beside(path);
  if (!replacement) {
    return replacement.error();
  }
  const int error =
      replacement->write(encoded.constData(), static_cast<std::uint64_t>(encoded.size()));
  return error != 0 ? error : replacement->commit();
} catch (const std::bad_alloc&) {
  return ENOMEM;
}

}  // namespace

// Ringtone --------------------------------------------------------------------------------------

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
  platform::fileDialogs()->beginSavePanel(
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

void VLRecorderWindowController::openSavedFile() {
  if (!platform::desktopServices()->open(
          QUrl::fromLocalFile(QString::fromStdString(last_saved_file_path_)))) {
    ShowModalAlert(
        localizedUtf8("The file was saved but could not be opened"),
        sentenceWithName(textKey("No program was found that opens %1."), last_saved_file_path_)
            .toStdString());
  }
}

// Picture ---------------------------------------------------------------------------------------

void VLRecorderWindowController::dumpWaveform(QObject*) {
  if (!wfView_ || isPanelShown_) {
    return;
  }
  isPanelShown_ = true;
  platform::fileDialogs()->beginSavePanel(
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
