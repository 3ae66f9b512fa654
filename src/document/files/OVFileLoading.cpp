#include "document/files/OVFileLoading.h"

#include <cerrno>
#include <new>
#include <utility>

#include "audio/AudioFileFailure.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVFileKinds.h"
#include "document/display/OVDisplayLoop.h"
#include "document/display/OVMarkerAndTime.h"
#include "document/display/OVProgressDisplay.h"
#include "document/editing/OVDocumentAudio.h"
#include "document/editing/OVDocumentLife.h"
#include "document/editing/OVEditHistory.h"
#include "document/editing/OVFileOperation.h"
#include "document/editing/OVFramePositions.h"
#include "document/files/OVDocumentFile.h"
#include "document/files/OVDocumentPanels.h"
#include "document/files/OVImportPlaceLabel.h"
#include "document/files/loadFile.h"
#include "document/summaries/OVDocumentSummaries.h"
#include "document/transport/OVTransport.h"
#include "platform/base/ApplicationServices.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

using platform::localized;
using platform::textKey;
using State = OVFileOperation::State;

/// Result of read().
struct OVFileLoading::Outcome {
  bool opened = false;                          // otherwise the reader has reported why not, or:
  std::optional<OVDiskShortage> shortage = {};  // there is no room for the whole file
  bool yieldedNothing = false;  // the reader failed before the first frame and has reported it
  std::uint64_t endOffset = 0;  // after the last byte stored
  int writeError = 0;           // errno of a failed write
  std::shared_ptr<const platform::AudioFileTags> tags = {};

  [[nodiscard]] bool failed() const { return !opened || yieldedNothing || writeError != 0; }
};

namespace {

constexpr std::uint64_t kRecordingLag = 8192;  // frames: two buffers

void tellDoesNotFit(const std::string& path, const OVDiskShortage& shortage) {
  ShowModalAlert(sentenceWithName(textKey("%1 does not fit on the disk"), path).toStdString(),
                 shortage.sentence().toStdString());
}

void tellNotStored(const std::string& path, int error, bool imported) {
  const QString name = QString::fromStdString(shownFileName(path));
  const QString kept = localized(imported ? textKey("Nothing was imported.")
                                          : textKey("Everything loaded before is kept."));
  const QString cause =
      error == ENOMEM
          ? QString::fromStdString(openingFailureReason(platform::kOutOfMemoryStatus, path)) +
                "\n\n" + kept
          : localized("The audio could not be written to the temporary file. %1\n\n%2")
                .arg(QString::fromStdString(platform::failureReason(error)), kept);
  ShowModalAlert(localized("%1 could not be loaded whole").arg(name).toStdString(),
                 cause.toStdString());
}

}  // namespace

OVFileLoading::OVFileLoading(const Parts& parts, Callbacks callbacks)
    : parts_(parts), callbacks_(std::move(callbacks)) {}

// Import ----------------------------------------------------------------------------------------

void OVFileLoading::chooseImport() {
  if (parts_.operation.isActive() || parts_.panels.isShown() || !parts_.audio.buffer()) {
    return;
  }
  // The panel may outlive the document for a moment.
  auto* const label = new OVImportPlaceLabel([this, document = parts_.life.document()] {
    return document.lock() ? importPlace() : OVImportPlace();
  });
  parts_.panels.open({.title = localized("Import"),
                      .acceptLabel = localized("&Import"),
                      .directory = parts_.file.folder(),
                      .allowsMultipleSelection = false,
                      .fileTypes = readableFileTypes(),
                      .accessoryView = label,
                      .selectionChanged =
                          [label = QPointer(label)](const std::string& path) {
                            if (label) {
                              label->choose(path);
                            }
                          }},
                     [this](const std::optional<std::string>& path) {
                       if (path) {
                         openForImport(*path);
                       }
                     });
}

// A running playback or recording is paused before the import, which then goes where it was.
OVImportPlace OVFileLoading::importPlace() const {
  const std::uint64_t end = parts_.audio.sizeInFrames();
  std::uint64_t frames =
      parts_.transport.isPlaying() ? parts_.positions.playback() : parts_.positions.recording();
  // A recording at the end lengthens the audio a moment before it moves its position.
  if (parts_.transport.isRecording() && frames + kRecordingLag >= end) {
    frames = end;
  }
  return {.atSecond = parts_.audio.secondsOfFrames(frames),
          .endSecond = parts_.audio.secondsOfFrames(end)};
}

// Opening may take a while, on a slow medium or with a damaged file: the document is in a file
// operation from here on, and back in its former state if opening fails. Recording and playback are
// paused first, so audio captured so far is not part of the undoable step.
void OVFileLoading::openForImport(const std::string& path) {
  if (parts_.operation.isActive()) {
    return;
  }
  parts_.transport.pauseIfRunning();
  parts_.progress.begin(textKey("Importing"), true);
  parts_.operation.begin(State::openingImport);
  auto opened = parts_.life.guarded([this, path](const std::shared_ptr<OVAudioFileReader>& reader,
                                                 const std::optional<OVDiskShortage>& shortage) {
    beginImport(path, reader, shortage);
  });
  platform::globalQueue().async([opened = std::move(opened), path, cancelled = cancelled_,
                                 folder = parts_.audio.storageFolder()] {
    const auto reader = OVAudioFileReader::initWithFile(path, cancelled);
    const auto shortage = reader ? shortageOfLoading(*reader, path, folder) : std::nullopt;
    platform::mainQueue().async([opened, reader, shortage] { opened(reader, shortage); });
  });
}

void OVFileLoading::beginImport(const std::string& path,
                                const std::shared_ptr<OVAudioFileReader>& reader,
                                const std::optional<OVDiskShortage>& shortage) {
  if (isCancelled()) {
    return;
  }
  if (!reader || shortage) {
    parts_.displayLoop.endProgress();
    parts_.operation.end();
    if (shortage) {
      tellDoesNotFit(path, *shortage);
    }
    callbacks_.ended();
    return;
  }
  parts_.transport.bringRecordingPositionInside();
  parts_.history.beginStep(textKey("Import File"));
  parts_.progress.begin(textKey("Importing"));
  parts_.operation.begin(State::importing);
  load(path, reader);
}

// Open ------------------------------------------------------------------------------------------

void OVFileLoading::open(const std::string& path) {
  if (parts_.operation.isActive() || !parts_.audio.buffer()) {
    return;
  }
  parts_.transport.pauseIfRunning();
  parts_.progress.begin(textKey("Loading"));
  parts_.operation.begin(State::opening);
  load(path, nullptr);
}

// Reading ---------------------------------------------------------------------------------------

// For an import, the reader is already open.
void OVFileLoading::load(const std::string& path, std::shared_ptr<OVAudioFileReader> reader) {
  parts_.summaries.abandonWork();
  const auto failures = parts_.transport.writeFailures();
  failures->loadingBegins();
  auto ended =
      parts_.life.guarded([this, path](const Outcome& outcome) { loadingEnded(path, outcome); });
  const LoadRequest request{
      .buffer = parts_.audio.buffer(),
      .atByteOffset = parts_.positions.recording() * parts_.audio.bytesPerFrame(),
      .cancelled = cancelled_,
      .takeWriteError = [failures] { return failures->takeLoadingError(); },
      .progress = progressReport()};
  platform::globalQueue().async([path, opened = std::move(reader), request,
                                 ended = std::move(ended), folder = parts_.audio.storageFolder()] {
    platform::mainQueue().async(
        [ended, outcome = read(path, opened, request, folder)] { ended(outcome); });
  });
}

// Runs on a background queue, which must not see an exception. A reader that was opened before has
// been found to fit.
OVFileLoading::Outcome OVFileLoading::read(const std::string& path,
                                           std::shared_ptr<OVAudioFileReader> opened,
                                           const LoadRequest& request,
                                           const std::string& folder) try {
  const bool isNew = !opened;
  const auto reader =
      isNew ? OVAudioFileReader::initWithFile(path, request.cancelled) : std::move(opened);
  if (!reader) {
    return {.endOffset = request.atByteOffset};
  }
  if (auto shortage = isNew ? shortageOfLoading(*reader, path, folder) : std::nullopt) {
    return {.shortage = std::move(shortage), .endOffset = request.atByteOffset};
  }
  auto tags = reader->tags();
  const LoadOutcome loaded = loadFile(*reader, request);
  return {.opened = true,
          .yieldedNothing = reader->failed() && loaded.endOffset == request.atByteOffset,
          .endOffset = loaded.endOffset,
          .writeError = loaded.writeError,
          .tags = std::move(tags)};
} catch (const std::bad_alloc&) {
  return {.opened = true, .endOffset = request.atByteOffset, .writeError = ENOMEM};
}

std::function<void(std::uint64_t, double)> OVFileLoading::progressReport() const {
  auto show = parts_.life.guarded([parts = &parts_](std::uint64_t byteOffset, double step) {
    parts->progress.advance(step);
    parts->markerAndTime.showDuration(byteOffset / parts->audio.bytesPerFrame());
  });
  return [show = std::move(show)](std::uint64_t byteOffset, double step) {
    platform::mainQueue().async([show, byteOffset, step] { show(byteOffset, step); });
  };
}

void OVFileLoading::loadingEnded(const std::string& path, const Outcome& outcome) {
  parts_.transport.writeFailures()->loadingEnded();
  if (isCancelled()) {
    return;
  }
  const bool imported = parts_.operation.state() == State::importing;
  rolledBack_ = imported && outcome.failed();
  if (rolledBack_) {
    parts_.history.rollBackStep();
  } else if (outcome.failed()) {
    // The chunk that could not be stored is the last one.
    parts_.audio.buffer()->cutoffBufferAfterPosition(outcome.endOffset /
                                                     parts_.audio.bytesPerFrame());
    parts_.file.forget();
  }
  openedNothing_ = !imported && outcome.failed() && parts_.audio.sizeInFrames() == 0;
  if (!imported && !openedNothing_ && outcome.tags) {
    parts_.file.setTags(outcome.tags);
  }
  if (outcome.shortage) {
    afterLoading_ = [path, shortage = *outcome.shortage] { tellDoesNotFit(path, shortage); };
  } else if (outcome.writeError != 0) {
    afterLoading_ = [path, error = outcome.writeError, imported] {
      tellNotStored(path, error, imported);
    };
  }
  callbacks_.loaded();
}

// Waveform and end ------------------------------------------------------------------------------

void OVFileLoading::drawWaveform() {
  parts_.displayLoop.setIsRenderingWaveform(true);
  parts_.progress.setValue(0.0);
  parts_.progress.setActivity(textKey("Drawing the waveform"));
  parts_.summaries.refresh(true, parts_.life.guarded([this] {
    parts_.displayLoop.setIsRenderingWaveform(false);
    callbacks_.drawn();
  }));
}

void OVFileLoading::complete() {
  if (isCancelled()) {
    return;
  }
  const bool opened = parts_.operation.state() == State::opening;
  if (opened) {
    parts_.transport.moveTo(0);
  } else if (!std::exchange(rolledBack_, false)) {
    parts_.history.setEdited(true);
  }
  parts_.markerAndTime.setLastPlaybackPosition(opened ? 1 : 0);  // 1 differs: the marker is drawn
  parts_.markerAndTime.showTime(parts_.positions.playback(), true);
  parts_.summaries.show();
  parts_.displayLoop.endProgress();
  const auto alert = std::exchange(afterLoading_, nullptr);
  parts_.operation.end();
  if (alert) {
    alert();
  }
  callbacks_.ended();
}
