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
  bool opened = false;          // otherwise the reader has reported why not
  bool yieldedNothing = false;  // the reader failed before the first frame and has reported it
  std::uint64_t endOffset = 0;  // after the last byte stored
  int writeError = 0;           // errno of a failed write

  [[nodiscard]] bool failed() const { return !opened || yieldedNothing || writeError != 0; }
};

namespace {

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
  parts_.panels.open({.title = localized("Import"),
                      .acceptLabel = localized("Import"),
                      .allowsMultipleSelection = false,
                      .fileTypes = readableFileTypes()},
                     [this](const std::optional<std::string>& path) {
                       if (path) {
                         openForImport(*path);
                       }
                     });
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
  auto opened = parts_.life.guarded([this, path](const std::shared_ptr<OVAudioFileReader>& reader) {
    beginImport(path, reader);
  });
  platform::globalQueue().async([opened = std::move(opened), path, cancelled = cancelled_] {
    const auto reader = OVAudioFileReader::initWithFile(path, cancelled);
    platform::mainQueue().async([opened, reader] { opened(reader); });
  });
}

void OVFileLoading::beginImport(const std::string& path,
                                const std::shared_ptr<OVAudioFileReader>& reader) {
  if (isCancelled()) {
    return;
  }
  if (!reader) {
    parts_.displayLoop.endProgress();
    parts_.operation.end();
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
                                 ended = std::move(ended)] {
    platform::mainQueue().async([ended, outcome = read(path, opened, request)] { ended(outcome); });
  });
}

// Runs on a background queue, which must not see an exception.
OVFileLoading::Outcome OVFileLoading::read(const std::string& path,
                                           std::shared_ptr<OVAudioFileReader> opened,
                                           const LoadRequest& request) try {
  const auto reader =
      opened ? std::move(opened) : OVAudioFileReader::initWithFile(path, request.cancelled);
  if (!reader) {
    return {.endOffset = request.atByteOffset};
  }
  const LoadOutcome loaded = loadFile(*reader, request);
  return {.opened = true,
          .yieldedNothing = reader->failed() && loaded.endOffset == request.atByteOffset,
          .endOffset = loaded.endOffset,
          .writeError = loaded.writeError};
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
  if (outcome.writeError != 0) {
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
