#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "controls/buttons/OVTransportButton.h"
#include "document/VLRecorderWindowController.h"
#include "gallery/GalleryAlerts.h"
#include "support/MainLoop.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedFileDialogs.h"
#include "support/fakes/ScriptedFreeSpace.h"
#include "support/fakes/SteppedAudioQueues.h"

/// Temporary files as the scene tells them to fail, in a folder that may exist.
class SceneFiles : public support::FailingTemporaryFiles {
 public:
  explicit SceneFiles(std::string folder) : folder_(std::move(folder)) {}
  [[nodiscard]] std::string directory() const override { return folder_; }

 private:
  const std::string folder_;
};

/// A world in which a failure is brought about, to see how the program tells it.
///
/// Threads: main.
class AlertScene {
 public:
  explicit AlertScene(std::string temporaryFolder = "/var/tmp/")
      : files_(std::move(temporaryFolder)) {}
  ~AlertScene() {
    if (document_) {
      settle();
      document_->windowWillClose(nullptr);
      document_.reset();
    }
    settle();
  }
  AlertScene(const AlertScene&) = delete;
  AlertScene& operator=(const AlertScene&) = delete;

  /// A document without a window, made at the first call.
  VLRecorderWindowController& document() {
    if (!document_) {
      document_ = VLRecorderWindowController::initWithWindow(nullptr);
      document_->windowDidLoad();
      settle();
    }
    return *document_;
  }

  void record(int chunks) {
    button_.setIsOn(true);
    document().recButton(&button_);
    for (int i = 0; i < chunks; ++i) {
      captured_ += kChunkFrames;
      queues_.input().deliver(std::vector<float>(2 * kChunkFrames, 0.25F), captured_);
      queues_->capturedFrames = captured_;
    }
    document().pauseButton(nullptr);
    settle();
  }

  void play() {
    button_.setIsOn(true);
    document().playButton(&button_);
    settle();
  }

  /// Waits for the end of a load, a save or an export.
  void finish() {
    static_cast<void>(runMainLoopUntil([this] { return !document().isFileIOActive(); }));
    settle();
  }

  static void settle() {
    static_cast<void>(awaitGlobalQueue());
    static_cast<void>(drainMainQueue());
    static_cast<void>(awaitGlobalQueue());
    static_cast<void>(drainMainQueue());
  }

  support::RecordingServices& services() { return *services_; }
  support::InstalledSteppedQueues& queues() { return queues_; }
  SceneFiles& files() { return files_; }
  support::ScriptedFreeSpace& freeSpace() { return *freeSpace_.operator->(); }
  support::ScriptedFileDialogs& panels() { return *panels_.operator->(); }
  support::RecordingDesktop& desktop() { return desktop_; }

  /// Every alert, those that were posted last.
  [[nodiscard]] std::vector<support::RecordedAlert> alerts() {
    settle();
    std::vector<support::RecordedAlert> all = services_->alerts();
    for (const support::RecordedAlert& posted : services_->postedAlerts()) {
      all.push_back(posted);
    }
    return all;
  }

 private:
  static constexpr std::uint32_t kChunkFrames = 4096;

  support::InstalledRecordingServices services_;
  support::InstalledSteppedQueues queues_;
  support::InstalledScriptedPanels panels_;
  support::InstalledFreeSpace freeSpace_;
  support::RecordingDesktop desktop_;
  SceneFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  std::shared_ptr<VLRecorderWindowController> document_;
  OVTransportButton button_;
  std::uint64_t captured_ = 0;
};

/// The alerts of a part of the program, which scenes bring about one after the other.
class AlertCollection {
 public:
  explicit AlertCollection(const char* subject) : part_{QString::fromLatin1(subject), {}} {}

  /// Runs a scene, and takes its alerts.
  template <typename Run>
  void add(AlertScene& scene, Run run) {
    run(scene);
    for (support::RecordedAlert& alert : scene.alerts()) {
      part_.alerts.push_back(std::move(alert));
    }
  }
  template <typename Run>
  void add(Run run) {
    AlertScene scene;
    add(scene, std::move(run));
  }

  [[nodiscard]] GalleryAlerts take() { return std::move(part_); }

 private:
  GalleryAlerts part_;
};
