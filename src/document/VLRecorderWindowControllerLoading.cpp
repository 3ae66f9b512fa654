#include <array>
#include <mutex>
#include <utility>

#include "audio/AudioFileFailure.h"
#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVFileKinds.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "displays/OVCircularVUView.h"
#include "displays/OVTimeView.h"
#include "document/VLRecorderWindowController.h"
#include "document/files/OVLoadJob.h"
#include "platform/base/ApplicationServices.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "waveform/OVWaveformSummary.h"
#include "waveform/views/OVWaveFormView.h"

/// What the loading job takes along.
struct VLRecorderWindowController::LoadingRequest {
  std::string path;
  std::shared_ptr<OVAudioFileReader> reader;  // opened already for an import
  std::weak_ptr<VLRecorderWindowController> controller;
  std::shared_ptr<OVAudioBufferInterface> buffer;
  std::uint64_t atByteOffset = 0;
  std::shared_ptr<std::atomic<bool>> cancelled;
};

/// What came of it.
struct VLRecorderWindowController::LoadingOutcome {
  bool opened = false;          // otherwise the reader has told why not
  bool yieldedNothing = false;  // opened, but it broke off before the first frame; told, too
  std::uint64_t endOffset = 0;  // behind the last byte that is stored
  int writeError = 0;           // errno of a write that storage did not take
};

// Open ------------------------------------------------------------------------------------------

void VLRecorderWindowController::openFileNamed(const std::string& path) {
  if (!isFileIOActive_ && buffer_) {
    startLoading(path, nullptr);
  }
}

void VLRecorderWindowController::startLoading(const std::string& path,
                                              std::shared_ptr<OVAudioFileReader> reader) {
  beginFileIO(isImport_ ? platform::textKey("Importing") : platform::textKey("Loading"));
  summaries_->abandonWork();
  if (wfView_) {
    wfView_->setWaveForm(nullptr);
    wfView_->setOverrideRegenerationCheck(true);
  }
  if (vuView_) {
    vuView_->setDatasource({});
  }
  writeFailures_.loadingBegins();
  platform::globalQueue().async(
      [request = LoadingRequest{.path = path,
                                .reader = std::move(reader),
                                .controller = weak_from_this(),
                                .buffer = buffer_,
                                .atByteOffset = recordingPosition() * bytesPerFrame(),
                                .cancelled = fileJobCancelled_}] { load(request); });
}

// On a background queue. A controller that goes meanwhile has set `cancelled`.
void VLRecorderWindowController::load(const LoadingRequest& request) {
  const auto reader = request.reader
                          ? request.reader
                          : OVAudioFileReader::initWithFile(request.path, request.cancelled);
  const auto controller = request.controller;
  LoadingOutcome outcome{.opened = reader != nullptr, .endOffset = request.atByteOffset};
  if (reader) {
    const auto loaded = OVLoadJob::run(
        *reader, {.buffer = request.buffer,
                  .atByteOffset = request.atByteOffset,
                  .cancelled = request.cancelled,
                  .takeWriteError =
                      [&controller] {
                        const auto document = controller.lock();
                        return document ? document->writeFailures_.takeLoadingError() : 0;
                      },
                  .progress =
                      [&controller](std::uint64_t byteOffset, double step) {
                        platform::mainQueue().async([controller, byteOffset, step] {
                          if (const auto document = controller.lock()) {
                            document->loadedChunk(byteOffset, step);
                          }
                        });
                      }});
    outcome.endOffset = loaded.endOffset;
    outcome.writeError = loaded.writeError;
    outcome.yieldedNothing = reader->failed() && loaded.endOffset == request.atByteOffset;
  }
  platform::mainQueue().async([request, outcome] {
    if (const auto document = request.controller.lock()) {
      document->loadingEnded(request, outcome);
    }
  });
}

void VLRecorderWindowController::loadedChunk(std::uint64_t byteOffset, double step) {
  advanceIndicator(step);
  if (timeView_) {
    timeView_->setDurationInSeconds(secondsOfFrames(byteOffset / bytesPerFrame()));
    setViewNeedsDisplay(timeView_);
  }
}

void VLRecorderWindowController::loadingEnded(const LoadingRequest& request,
                                              const LoadingOutcome& outcome) {
  writeFailures_.loadingEnded();
  if (*fileJobCancelled_) {
    return;  // the window has closed
  }
  const bool failed = !outcome.opened || outcome.yieldedNothing || outcome.writeError != 0;
  if (failed && isImport_) {
    takeImportBack();
  } else if (failed) {
    keepWhatWasLoaded(outcome.endOffset);
    forgetFileName();
  }
  if (outcome.writeError != 0) {
    afterLoading_ = [path = request.path, error = outcome.writeError, imported = isImport_] {
      tellNotStored(path, error, imported);
    };
  }
  fileLoadingComplete();
}

void VLRecorderWindowController::tellNotStored(const std::string& path, int error, bool imported) {
  const QString name = QString::fromStdString(shownFileName(path));
  const QString kept =
      platform::localized(imported ? platform::textKey("Nothing was imported.")
                                   : platform::textKey("Everything loaded before is kept."));
  ShowModalAlert(
      platform::localized("%1 could not be loaded whole").arg(name).toStdString(),
      platform::localized("The audio could not be written to the temporary file. %1\n\n%2")
          .arg(QString::fromStdString(platform::failureReason(error)), kept)
          .toStdString());
}

// The document is not what the file is.
void VLRecorderWindowController::forgetFileName() {
  currentFilename_.clear();
  if (window_) {
    window_->setTitle(titleWithName(platform::localized("Unnamed")));
  }
}

// The chunk that storage did not take is behind everything else.
void VLRecorderWindowController::keepWhatWasLoaded(std::uint64_t endOffset) {
  buffer_->cutoffBufferAfterPosition(endOffset / bytesPerFrame());
}

// The step before it cannot be undone any more: there is room for one.
void VLRecorderWindowController::takeImportBack() {
  buffer_->undo();
  if (undoManager_) {
    undoManager_->discardLastUndo();
  }
  summaries_->takeBack();
  importTakenBack_ = true;
}

// Import ----------------------------------------------------------------------------------------

void VLRecorderWindowController::importFile(QObject*) {
  if (isFileIOActive_ || isPanelShown_ || !buffer_) {
    return;
  }
  isPanelShown_ = true;
  platform::fileDialogs()->beginOpenPanel({.window = window_.data(),
                                           .title = platform::localized("Import"),
                                           .acceptLabel = platform::localized("Import"),
                                           .allowsMultipleSelection = false,
                                           .fileTypes = readableFileTypes()},
                                          [self = weak_from_this()](const auto& paths) {
                                            if (const auto controller = self.lock()) {
                                              controller->isPanelShown_ = false;
                                              if (!paths.empty()) {
                                                controller->openForImport(paths.front());
                                              }
                                            }
                                          });
}

// Opening may take a while, on a slow medium or with a damaged file: the document is in a file
// operation from here on, and as it was again when it fails. What recorded or played is paused
// first, so what was captured by now is not part of the undoable step.
void VLRecorderWindowController::openForImport(const std::string& path) {
  if (isFileIOActive_) {
    return;
  }
  beginFileIO(platform::textKey("Importing"), true);
  isOpeningImport_ = true;
  platform::globalQueue().async([self = weak_from_this(), path, cancelled = fileJobCancelled_] {
    const auto reader = OVAudioFileReader::initWithFile(path, cancelled);
    platform::mainQueue().async([self, path, reader] {
      if (const auto controller = self.lock()) {
        controller->beginImport(path, reader);
      }
    });
  });
}

void VLRecorderWindowController::beginImport(const std::string& path,
                                             const std::shared_ptr<OVAudioFileReader>& reader) {
  if (*fileJobCancelled_) {
    return;  // the window has closed
  }
  isOpeningImport_ = false;
  if (!reader) {
    endFileIO();
    saveIfClosing();
    return;
  }
  bringRecordingPositionInside();
  isImport_ = true;
  registerUndo(&VLRecorderWindowController::undo, platform::textKey("Import File"));
  buffer_->setWaypoint();
  keepHistory();
  startLoading(path, reader);
}

// Completion ------------------------------------------------------------------------------------

void VLRecorderWindowController::fileLoadingComplete() {
  const auto cancelled = fileJobCancelled_;
  platform::globalQueue().async([self = weak_from_this(), summary = waveForm(), cancelled] {
    if (const auto controller = self.lock()) {
      controller->setIsRenderingWaveform(true);
    }
    platform::mainQueue().async([self] {
      if (const auto controller = self.lock()) {
        controller->setIndicatorValue(0.0);
        controller->tellActivity(platform::textKey("Drawing the waveform"));
      }
    });
    {
      const std::lock_guard generation(*summary);  // the refresh of an edit may still hold it
      summary->setShouldRegenerateWaveform(true);
      summary->generateNoLock(cancelled.get());
    }
    if (const auto controller = self.lock()) {
      controller->setIsRenderingWaveform(false);
    }
    platform::mainQueue().async([self] {
      if (const auto controller = self.lock()) {
        controller->fileLoadingReallyComplete();
      }
    });
  });
}

void VLRecorderWindowController::fileLoadingReallyComplete() {
  if (*fileJobCancelled_) {
    return;  // the window has closed
  }
  lastPlaybackPosition_ = 0;
  if (!isImport_) {
    setPlaybackPosition(0);
    setRecordingPosition(0);
    setWritingPosition(0);
    lastPlaybackPosition_ = 1;  // differs, so the next tick draws the marker
  } else if (!importTakenBack_) {
    setDocumentEdited(true);
  }
  isImport_ = false;
  importTakenBack_ = false;
  if (vuView_) {
    vuView_->setDatasource(weak_from_this());
  }
  if (wfView_) {
    wfView_->setOverrideRegenerationCheck(false);
  }
  summaries_->show();
  endFileIO();
  if (timeView_) {
    timeView_->setDurationInSeconds(secondsOfFrames(bufferSizeInFrames()));
    setViewNeedsDisplay(timeView_);
  }
  if (const auto tell = std::exchange(afterLoading_, nullptr)) {
    tell();
  }
  saveIfClosing();
}

// The question about unsaved changes may have been answered while the file was loaded.
void VLRecorderWindowController::saveIfClosing() {
  if (shouldCloseAfterSave_) {
    saveFile(nullptr);
  }
}

// The state of a load or save --------------------------------------------------------------------

void VLRecorderWindowController::beginFileIO(platform::TextKey activity, bool indeterminate) {
  if (isRecording() || isPlaying()) {
    pauseButton(pauseButton_);
  }
  setFileIOActive(true);
  focusKeeper_.takeFrom(window_, transportControls());
  setTransportEnabled(false);
  recreateIndicator(indeterminate, activity);
  showIndicator(true);
}

void VLRecorderWindowController::endFileIO() {
  setFileIOActive(false);
  setIndicatorValue(0.0);
  showIndicator(false);
  if (summaries_->isRefreshing()) {
    // Of an edit before a save that was the quicker of the two.
    recreateIndicator(true, platform::textKey("Drawing the waveform"));
    showIndicator(true);
  }
  setTransportEnabled(true);
  focusKeeper_.giveBack(window_);
}

void VLRecorderWindowController::setFileIOActive(bool active) {
  isFileIOActive_ = active;
  if (commandsChanged_) {
    commandsChanged_();
  }
}

std::array<QWidget*, 7> VLRecorderWindowController::transportControls() const {
  return {recButton_, playButton_, prevButton_, nextButton_, stopButton_, pauseButton_, wfView_};
}

void VLRecorderWindowController::setTransportEnabled(bool enabled) {
  for (QWidget* const control : transportControls()) {
    if (control == nullptr) {
      continue;
    }
    if (!enabled) {
      takeBackPress(qobject_cast<OVTransportButton*>(control));
    }
    control->setEnabled(enabled);
  }
}
