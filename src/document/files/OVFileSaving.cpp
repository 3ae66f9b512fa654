#include "document/files/OVFileSaving.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

#include <QLabel>
#include <QLocale>
#include <QUrl>

#include "audio/AudioFileFailure.h"
#include "audio/OVAudioFileWriter.h"
#include "audio/OVFileKinds.h"
#include "document/display/OVDisplayLoop.h"
#include "document/display/OVProgressDisplay.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVDocumentPanels.h"
#include "document/files/OVSaveAccessory.h"
#include "document/files/keptByKind.h"
#include "document/transport/OVTransport.h"
#include "platform/base/ApplicationServices.h"
#include "platform/desktop/DesktopServices.h"
#include "platform/desktop/FileUri.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/ShownName.h"

using platform::localized;
using platform::localizedUtf8;
using platform::textKey;
using State = OVFileOperation::State;

namespace {

constexpr std::int32_t kAacType = 3;  // the file writer's AAC kind
constexpr const char* kRingtoneSuffix = "m4r";
// A disk that has not said by then how much room it has is waited for by the job.
constexpr std::chrono::milliseconds kRoomPatience{250};
// Answers to the question whether to write in place.
constexpr int kOverwrite = 1;
constexpr int kKeepOldFile = 0;

// The document remains unsaved.
void tellGaps(const std::string& path, double seconds, bool saved) {
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
      platform::sentencesInARow({gaps, outcome}).toStdString());
}

std::string reasonOf(const OVSaveJob::Outcome& outcome) {
  std::string reason = outcome.closedFolder.empty() ? platform::failureReason(outcome.error)
                                                    : closedFolderReason(outcome.closedFolder);
  if (outcome.copyOfOldFile.empty()) {
    return reason;
  }
  const QString copy = localized("The file is damaged. What was in it is kept in %1.")
                           .arg(platform::shownName(outcome.copyOfOldFile));
  return platform::sentencesInARow({QString::fromStdString(reason), copy}).toStdString();
}

}  // namespace

OVFileSaving::OVFileSaving(const Parts& parts, std::function<void()> written,
                           std::function<void()> failed)
    : parts_(parts), written_(std::move(written)), failed_(std::move(failed)) {}

// Save ------------------------------------------------------------------------------------------

bool OVFileSaving::mayAsk() const {
  return !parts_.operation.isActive() && !parts_.panels.isShown() && parts_.audio.buffer();
}

bool OVFileSaving::save() {
  if (!parts_.file.canBeSaved()) {
    return saveAs();
  }
  if (mayAsk()) {
    saveNamed(parts_.file.name(), parts_.file.type());
    return true;
  }
  return false;
}

bool OVFileSaving::saveAs() {
  if (!mayAsk()) {
    return false;
  }
  const OVSaveAccessory accessory(parts_.file.suggestedType(), parts_.file.tags());
  parts_.panels.save(
      {.title = localized("Save As"),
       .directory = parts_.file.folder(),
       .suggestedName = parts_.file.suggestedName(),
       .fileTypes = readableFileTypes(),
       .accessoryView = accessory.view(),
       .acceptedSuffixes = [accessory] { return suffixesOfType(accessory.chosenType()); },
       .lossOfReplacing = lossOfReplacing},
      [this, accessory](const std::optional<std::string>& path) {
        if (path) {
          saveNamed(*path, accessory.chosenType());
        } else {
          failed_();
        }
      });
  return true;
}

void OVFileSaving::saveNamed(const std::string& path, std::int32_t withType) {
  if (parts_.operation.isActive() || !parts_.audio.buffer() ||
      fileKindOfType(withType) == nullptr) {
    return;
  }
  start({.job = {.buffer = parts_.audio.buffer(),
                 .path = path,
                 .outputFormat = static_cast<std::uint32_t>(withType),
                 .tags = parts_.file.tags()},
         .type = withType});
}

// Ringtone --------------------------------------------------------------------------------------

void OVFileSaving::exportRingtone() {
  if (!mayAsk()) {
    return;
  }
  auto* const rule = new QLabel(
      localized("A ringtone begins at the marker, or at the start when the marker is at the end, "
                "and lasts at most %1 seconds.")
          .arg(kRingtoneSeconds));
  rule->setWordWrap(true);
  parts_.panels.save({.title = localized("Export Ringtone"),
                      .directory = parts_.file.folder(),
                      .suggestedName = parts_.file.suggestedName(),
                      .fileTypes = readableFileTypes(),
                      .accessoryView = rule,
                      .acceptedSuffixes = [] { return std::vector<std::string>{kRingtoneSuffix}; },
                      .lossOfReplacing = lossOfReplacing},
                     [this](const std::optional<std::string>& path) {
                       if (path) {
                         exportRingtoneTo(*path);
                       }
                     });
}

void OVFileSaving::exportRingtoneTo(const std::string& path) {
  if (parts_.operation.isActive()) {
    return;
  }
  shell_open_file_after_save_ = true;
  start({.job = {.buffer = parts_.audio.buffer(),
                 .path = path,
                 .outputFormat = static_cast<std::uint32_t>(kAacType)},
         .type = kAacType,
         .isExport = true});
}

void OVFileSaving::openSavedFile() const {
  if (!platform::desktopServices()->open(QUrl::fromEncoded(
          QByteArray::fromStdString(platform::fileUriOf(last_saved_file_path_))))) {
    ShowModalAlert(
        localizedUtf8("The file was saved but could not be opened"),
        sentenceWithName(textKey("No program was found that opens %1."), last_saved_file_path_)
            .toStdString());
  }
}

// The job ---------------------------------------------------------------------------------------

void OVFileSaving::chooseStretch(Request& request) const {
  const std::uint64_t length = parts_.audio.sizeInFrames();
  request.job.fromFrame = 0;
  request.job.frameCount = length;
  if (request.isExport) {
    const std::uint64_t marker = parts_.positions.playback();
    const auto longest =
        static_cast<std::uint64_t>(kRingtoneSeconds * request.job.buffer->format().mSampleRate);
    request.job.fromFrame = marker < length ? marker : 0;
    request.job.frameCount = std::min(length - request.job.fromFrame, longest);
  }
}

void OVFileSaving::start(Request request) {
  chooseStretch(request);
  request.job.shortage = OVSaveJob::lookForRoom(request.job);
  if (const auto refusal = refusalOf(request)) {
    shell_open_file_after_save_ = false;
    failed_();
    tellSaveFailed(request.job.path, *refusal);
    return;
  }
  parts_.transport.pauseIfRunning();
  chooseStretch(request);  // includes the recording up to now
  parts_.progress.begin(request.isExport ? textKey("Exporting") : textKey("Saving"));
  parts_.operation.begin(request.isExport ? State::exporting : State::saving);
  auto show = parts_.life.guarded(
      [progress = &parts_.progress](double fraction) { progress->setValue(fraction); });
  auto done = parts_.life.guarded(
      [this, request](const OVSaveJob::Outcome& outcome) { ended(request, outcome); });
  platform::globalQueue().async(
      [job = request.job, show = std::move(show), done = std::move(done)] {
        const auto outcome = OVSaveJob::run(job, [&show](double fraction) {
          platform::mainQueue().async([show, fraction] { show(fraction); });
        });
        platform::mainQueue().async([done, outcome] { done(outcome); });
      });
}

// Failures that can be detected before writing.
std::optional<std::string> OVFileSaving::refusalOf(const Request& request) {
  const auto most =
      OVAudioFileWriter::maximumFrames(request.job.outputFormat, request.job.tags->byteCount());
  if (most && request.job.frameCount > *most) {
    return localized("The recording is too long for a file of the type %1. Choose another type.")
        .arg(localized(fileKindOfType(request.type)->title))
        .toStdString();
  }
  if (request.type == kAacType && request.job.frameCount == 0) {
    return localizedUtf8("An AAC file cannot be empty. Record something first.");
  }
  if (request.job.shortage.wait_for(kRoomPatience) == std::future_status::ready) {
    if (const auto shortage = request.job.shortage.get()) {
      return shortage->sentence().toStdString();
    }
  }
  return std::nullopt;
}

// The panel of an export may be open.
void OVFileSaving::askToWriteInPlace(const Request& request) {
  using Role = platform::SheetRequest::Button::Role;
  parts_.panels.ask(
      {.title = sentenceWithName(textKey("%1 can only be overwritten"), request.job.path),
       .message = localized("You may not make files in its folder. The old file is copied to the "
                            "temporary directory first. The copy is kept if writing fails."),
       .buttons = {{localized("&Cancel"), kKeepOldFile, Role::reject},
                   {localized("&Overwrite"), kOverwrite, Role::destructive}}},
      [this, request](int answer) {
        if (answer == kOverwrite && !parts_.operation.isActive()) {
          Request inPlace = request;
          inPlace.job.way = OVSaveJob::Request::Way::inPlace;
          start(inPlace);
        } else {
          shell_open_file_after_save_ = false;
          failed_();
        }
      });
}

void OVFileSaving::ended(const Request& request, const OVSaveJob::Outcome& outcome) {
  if (outcome.canBeInPlace && !parts_.panels.isShown()) {
    parts_.displayLoop.endProgress();
    parts_.operation.end();
    askToWriteInPlace(request);
    return;
  }
  if (outcome.complete) {
    last_saved_file_path_ = request.job.path;
    if (!request.isExport) {
      parts_.file.take(request.job.path, request.type);
      parts_.history.fileReplaced();
    }
    if (outcome.unreadableFrames == 0) {
      written_();
      return;
    }
  }
  shell_open_file_after_save_ = false;
  parts_.displayLoop.endProgress();
  parts_.operation.end();
  failed_();
  if (outcome.shortage) {
    tellSaveFailed(request.job.path, outcome.shortage->sentence().toStdString());
  } else if (outcome.error != 0) {
    tellSaveFailed(request.job.path, reasonOf(outcome));
  } else if (!outcome.told) {
    tellGaps(request.job.path, parts_.audio.secondsOfFrames(outcome.unreadableFrames),
             outcome.complete);
  }
}

void OVFileSaving::complete() {
  const bool isExport = parts_.operation.state() == State::exporting;
  if (!isExport) {
    parts_.history.saved();
  }
  parts_.displayLoop.endProgress();
  parts_.operation.end();
  if (!isExport) {
    parts_.transport.stop();
  }
  if (std::exchange(shell_open_file_after_save_, false)) {
    const platform::PostedAlertsScope afterwards;  // no main loop runs before the window closes
    openSavedFile();
  }
}

void tellSaveFailed(const std::string& path, const std::string& reason) {
  ShowModalAlert(sentenceWithName(textKey("%1 could not be saved"), path).toStdString(), reason);
}
