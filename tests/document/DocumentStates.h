#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "audio/OVAQPlayer.h"
#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileWriter.h"
#include "controls/OVRecorderWindow.h"
#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "platform/mainloop/MainQueue.h"
#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/ScriptedFileDialogs.h"
#include "support/fakes/SteppedAudioQueues.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

/// Everything that a document may be doing when a command arrives.
enum class State {
  idle,
  recording,
  playing,
  loading,
  openingImport,  // the chosen file is being opened; the document's audio is untouched
  importing,
  saving,
  exporting,
  savePending,           // closing, Save was answered, and an import has to end first
  asking,                // about unsaved changes
  askingAfterRecording,  // the same question; a recording was paused for it
  savePanel,
  savePanelWhileRecording,
  importPanel,
  importPanelWhileRecording,
};

inline constexpr auto kStates = std::to_array<State>(
    {State::idle, State::recording, State::playing, State::loading, State::openingImport,
     State::importing, State::saving, State::exporting, State::savePending, State::asking,
     State::askingAfterRecording, State::savePanel, State::savePanelWhileRecording,
     State::importPanel, State::importPanelWhileRecording});

[[nodiscard]] inline std::string nameOf(State state) {
  static constexpr std::array<const char*, kStates.size()> kNames = {"Idle",
                                                                     "Recording",
                                                                     "Playing",
                                                                     "Loading",
                                                                     "OpeningImport",
                                                                     "Importing",
                                                                     "Saving",
                                                                     "Exporting",
                                                                     "SavePending",
                                                                     "Asking",
                                                                     "AskingAfterRecording",
                                                                     "SavePanel",
                                                                     "SavePanelWhileRecording",
                                                                     "ImportPanel",
                                                                     "ImportPanelWhileRecording"};
  return kNames.at(static_cast<std::size_t>(state));
}

inline void PrintTo(State state, std::ostream* out) {
  *out << nameOf(state);
}

[[nodiscard]] inline bool isFileOperation(State state) {
  return state >= State::loading && state <= State::savePending;
}
[[nodiscard]] inline bool isRecording(State state) {
  return state == State::recording || state == State::savePanelWhileRecording ||
         state == State::importPanelWhileRecording;
}

struct SlowMedium {
  support::TestUserAudioFiles storage;
  platform::Installed<platform::UserAudioFiles>::Scope installation{storage};
};

/// Brings a document into a state and holds it there: file operations wait at a gate, panels and
/// questions wait for an answer, sound advances only when the test steps it.
///
/// Create it before the document, whose temporary file it provides, and destroy it after the
/// document. Threads: main.
class StateKeeper {
 public:
  static constexpr std::uint64_t kChunkFrames = 4096;
  static constexpr std::uint64_t kFrameBytes = 8;
  static constexpr std::uint64_t kFirstTakeFrames = 3 * kChunkFrames;
  static constexpr std::uint64_t kBothTakesFrames = 4 * kChunkFrames;
  static constexpr std::uint64_t kMarker = 1024;
  static constexpr std::uint64_t kRecordAt = 2048;
  static constexpr std::uint64_t kPrimedFrames = 3 * 1024;  // read ahead when playback begins
  static constexpr std::uint64_t kFileFrames = 20'000;

  StateKeeper(support::InstalledScriptedPanels& panels, support::InstalledSteppedQueues& queues)
      : panels_(panels), queues_(queues) {
    const auto writer = OVAudioFileWriter::initWithFile(otherFile(), OVAudioFileWriter::kWave);
    const std::vector<float> samples(2 * kFileFrames, 0.5F);
    EXPECT_EQ(writer->sinkData(samples.data(), kFileFrames * kFrameBytes),
              kFileFrames * kFrameBytes);
    EXPECT_TRUE(writer->close());
  }
  ~StateKeeper() {
    gate_.open();
    EXPECT_TRUE(platform::globalQueue().waitUntilIdle(20));
    temporaryFiles_.beforeWrites(nullptr);  // a document that is left keeps its file
    temporaryFiles_.beforeReads(nullptr);
  }
  StateKeeper(const StateKeeper&) = delete;
  StateKeeper& operator=(const StateKeeper&) = delete;

  /// A file of kFileFrames that is not the document's.
  [[nodiscard]] std::string otherFile() const { return folder_.file("other.wav"); }
  [[nodiscard]] std::string ownFile() const { return folder_.file("take.wav"); }

  /// Records two takes and treats the document as saved to ownFile(). Marker and recording position
  /// differ from each other and from both ends.
  void fill(const std::shared_ptr<VLRecorderWindowController>& document) {
    document_ = document;
    record(3);
    document->stopButton(nullptr);
    record(1);
    document->setCurrentFilename(ownFile());
    document->setCurrentFiletype(0);
    document->setDocumentEdited(false);
    settle();
    document->setPlaybackPosition(kMarker);
    document->setRecordingPosition(kRecordAt);
    document->recorder()->setWritingPosition(kRecordAt * kFrameBytes);
    document->updatePlaybackMarkerView();
  }

  void enter(State state) {
    switch (state) {
      case State::idle:
        break;
      case State::recording:
        press("recButton", &VLRecorderWindowController::recButton);
        capture();
        break;
      case State::playing:
        press("playButton", &VLRecorderWindowController::playButton);
        queues_.output().changeRunning(1);
        break;
      case State::loading:
        holdWrites();
        document_->openFileNamed(otherFile());
        ASSERT_TRUE(gate_.awaitArrival());
        break;
      case State::openingImport:
        holdOpening();
        chooseImport();
        ASSERT_TRUE(gate_.awaitArrival());
        break;
      case State::importing:
        holdWrites();
        chooseImport();
        ASSERT_TRUE(runMainLoopUntil([this] { return document_->isImport(); }));
        ASSERT_TRUE(gate_.awaitArrival());
        break;
      case State::saving:
        holdReads();
        document_->saveFileNamed(ownFile(), 0);
        ASSERT_TRUE(gate_.awaitArrival());
        break;
      case State::exporting:
        holdReads();
        document_->exportRingtone(nullptr);
        panels_->answerSave(folder_.file("tone.m4r"));
        ASSERT_TRUE(gate_.awaitArrival());
        break;
      case State::savePending:
        document_->setDocumentEdited(true);
        enter(State::importing);
        close();
        panels_->answerSheet(VLRecorderWindowController::kSave);
        break;
      case State::asking:
        document_->setDocumentEdited(true);
        close();
        break;
      case State::askingAfterRecording:
        enter(State::recording);
        close();
        break;
      case State::savePanelWhileRecording:
        enter(State::recording);
        [[fallthrough]];
      case State::savePanel:
        document_->saveFileAs(nullptr);
        break;
      case State::importPanelWhileRecording:
        enter(State::recording);
        [[fallthrough]];
      case State::importPanel:
        document_->importFile(nullptr);
        break;
    }
    document_->updatePlaybackMarkerView();
  }

  /// Ends the state: it ends by itself, its panel or question is cancelled, or its recording or
  /// playback is paused. Waits for a file operation that then runs.
  void leave(State state) {
    gate_.open();
    switch (state) {
      case State::recording:
      case State::playing:
        if (recording() || playing()) {
          document_->pauseButton(nullptr);
        }
        break;
      case State::asking:
      case State::askingAfterRecording:
        panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
        break;
      case State::savePanel:
      case State::savePanelWhileRecording:
        panels_->answerSave(std::nullopt);
        break;
      case State::importPanel:
      case State::importPanelWhileRecording:
        panels_->answerOpen({});
        break;
      default:
        break;
    }
    EXPECT_TRUE(runMainLoopUntil([this] { return closed() || !document_->isFileIOActive(); }));
    settle();
    if (!closed()) {
      document_->updatePlaybackMarkerView();
    }
  }

  /// A click on a transport button, even on a disabled one: a command that comes too late.
  void press(const char* name, void (VLRecorderWindowController::*action)(OVTransportButton*)) {
    auto* const button = document_->window()->findChild<OVTransportButton*>(name);
    if (button->isSwitch()) {
      button->setIsOn(!button->isOn());
    }
    ((*document_).*action)(button);
  }

  void close() { document_->window()->performClose(); }

  [[nodiscard]] bool closed() const { return !document_->isDisplayTimerRunning(); }
  [[nodiscard]] bool recording() const {
    return document_->recorder() && document_->recorder()->isRecording();
  }
  [[nodiscard]] bool playing() const {
    return document_->player() && document_->player()->isPlaying();
  }

  /// Runs what the queues hold; not while a file operation waits at the gate.
  static void settle() {
    for (int i = 0; i < 2; ++i) {
      EXPECT_TRUE(platform::globalQueue().waitUntilIdle(20));
      EXPECT_TRUE(drainMainQueue());
    }
  }

 private:
  void record(int chunks) {
    press("recButton", &VLRecorderWindowController::recButton);
    for (int i = 0; i < chunks; ++i) {
      capture();
    }
    document_->pauseButton(nullptr);
  }

  void capture() {
    captured_ += kChunkFrames;
    const std::vector<float> samples(2 * kChunkFrames, 0.25F);
    EXPECT_TRUE(queues_.input().deliver(samples, captured_));
    queues_->capturedFrames = captured_;
  }

  void chooseImport() {
    document_->importFile(nullptr);
    panels_->answerOpen({otherFile()});
  }

  // The main thread passes every gate, since the test runs on it.
  void passInBackground() {
    if (!platform::isMainThread()) {
      gate_.pass();
    }
  }
  void holdWrites() {
    temporaryFiles_.beforeWrites([this] { passInBackground(); });
  }
  void holdReads() {
    temporaryFiles_.beforeReads([this] { passInBackground(); });
  }
  void holdOpening() {
    medium_.emplace();
    medium_->storage.setBytes(support::wavBytes(44100, 2, 16, std::string(4 * kFileFrames, 'x')));
    medium_->storage.beforeReads([this](std::uint64_t) { passInBackground(); });
  }

  support::InstalledScriptedPanels& panels_;
  support::InstalledSteppedQueues& queues_;
  support::TemporaryFolder folder_;
  support::Gate gate_;
  support::FailingTemporaryFiles temporaryFiles_;
  platform::Installed<platform::TemporaryFiles>::Scope temporaryFilesInstallation_{temporaryFiles_};
  std::optional<SlowMedium> medium_;
  std::shared_ptr<VLRecorderWindowController> document_;
  std::uint64_t captured_ = 0;
};
