#include "gallery/GalleryAlerts.h"

#include <cerrno>
#include <filesystem>
#include <string_view>

#include <QApplication>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTranslator>

#include "app/OVRecoveredRecordings.h"
#include "app/VelmarAppDelegate.h"
#include "audio/CheckAudioStatus.h"
#include "audio/DeviceFailure.h"
#include "audio/OVAQRecorder.h"
#include "controls/OVRecorderWindow.h"
#include "gallery/AlertScene.h"
#include "platform/desktop/QtFileDialogs.h"
#include "support/FewDescriptors.h"
#include "support/RecoveredFolder.h"
#include "support/fakes/MemoryTestBuffer.h"

namespace {

void noInput(AlertScene& scene, platform::AudioStatus status) {
  scene.queues()->fail("newInput", status);
  static_cast<void>(OVAQRecorder::initWithBuffer(std::make_shared<MemoryTestBuffer>()));
}

void noOutput(AlertScene& scene, platform::AudioStatus status) {
  scene.record(1);
  scene.document().prevButton(nullptr);
  scene.queues()->fail("newOutput", status);
  scene.play();
}

void noQueue(AlertScene&) {
  const auto recorder = OVAQRecorder::initWithBuffer(std::make_shared<MemoryTestBuffer>());
  recorder->destroyAudioQueue();
  recorder->record();
  recorder->prepareForDestruction();
}

void addLosses(AlertCollection& sound) {
  using platform::kDeviceLostStatus;
  using platform::kDeviceStalledStatus;
  for (const char* const input : {"Built-in Microphone", ""}) {
    for (const auto interrupted : {OVInterrupted::recording, OVInterrupted::nothing}) {
      for (const auto status : {kDeviceLostStatus, kDeviceStalledStatus}) {
        if (isLossTold(interrupted, status)) {
          sound.add([&](AlertScene&) {
            ShowAudioStatusAlert(status, "AudioQueueStart failed",
                                 deviceLossReason(interrupted, status, input));
          });
        }
      }
    }
  }
  for (const auto status : {kDeviceLostStatus, kDeviceStalledStatus}) {
    sound.add([status](AlertScene&) {
      ShowAudioStatusAlert(status, "AudioQueueStart failed",
                           deviceLossReason(OVInterrupted::playback, status, {}));
    });
  }
}

// Windows and pages -----------------------------------------------------------------------------

/// An application of its own, whose windows are closed in the end.
class SceneApplication {
 public:
  ~SceneApplication() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<OVRecorderWindow*>(widget)) {
        window->setDocumentEdited(false);
        window->performClose();
      }
    }
    AlertScene::settle();
  }
  VelmarAppDelegate* operator->() { return &delegate_; }

 private:
  VelmarAppDelegate delegate_{[] {}};
};

OVRecorderWindow* firstWindow() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    auto* const window = qobject_cast<OVRecorderWindow*>(widget);
    if (window != nullptr && window->isVisible()) {
      return window;
    }
  }
  return nullptr;
}

void noRoomForAWindow(AlertScene&) {
  SceneApplication application;
  application->spawnNewRecorderWindow(nullptr);
  AlertScene::settle();
  const support::FewDescriptors few(20);
  application->spawnNewRecorderWindow(nullptr);
}

void noRoomForAPanel(AlertScene&) {
  const support::FewDescriptors few(4);
  platform::QtFileDialogs().beginSavePanel({}, [](const auto&) {});
}

void quitWithAPanel(AlertScene& scene) {
  SceneApplication application;
  application->spawnNewRecorderWindow(nullptr);
  AlertScene::settle();
  OVRecorderWindow* const window = firstWindow();
  const auto document = std::dynamic_pointer_cast<VLRecorderWindowController>(window->delegate());
  document->setDocumentEdited(true);
  document->saveFileAs(nullptr);
  application->terminate();
  scene.panels().answerSave(std::nullopt);
}

void noProgramForAPage(AlertScene& scene) {
  scene.desktop().knowsPrograms = false;
  SceneApplication()->openWebsite(nullptr);
}

void noPage(AlertScene& scene) {
  scene.desktop().knowsPrograms = false;
  SceneApplication()->openDocumentation(nullptr);
}

/// A language whose help page is not installed.
class NoHelpPage : public QTranslator {
 public:
  [[nodiscard]] QString translate(const char*, const char* text, const char*, int) const override {
    return text == std::string_view("en/index.html") ? QStringLiteral("en/none.html") : QString();
  }
  [[nodiscard]] bool isEmpty() const override { return false; }
};

void missingPage(AlertScene&) {
  NoHelpPage none;
  QCoreApplication::installTranslator(&none);
  SceneApplication()->openDocumentation(nullptr);
}

// Another file takes the name while the question is shown.
void notDeleted(AlertScene& scene) {
  constexpr int kDelete = 1;
  const QTemporaryDir data;
  const support::RecoveredFolder folder(data.path().toStdString());
  const std::string name = "Orvo recording 2026-11-21 14.02.31.caf";
  const std::string path = folder.add(name, {0.5F, 0.5F});
  OVRecoveredRecordings recordings(folder.path(),
                                   {.open = [](const auto&) {}, .mayAsk = [] { return true; }});
  recordings.show();
  static_cast<void>(runMainLoopUntil([&] { return recordings.panel() != nullptr; }));
  recordings.panel()->findChild<QPushButton*>("deleteRecovered")->click();
  std::filesystem::remove(path);
  folder.add(name, {0.5F, 0.5F});
  scene.panels().answerSheet(kDelete);
  static_cast<void>(runMainLoopUntil([&] { return !scene.services().postedAlerts().empty(); }));
}

}  // namespace

GalleryAlerts soundAlerts() {
  AlertCollection sound("sound");
  for (const auto status : {platform::kDeviceUnavailableStatus, platform::kNoThreadStatus,
                            platform::kInvalidParameterStatus}) {
    sound.add([status](AlertScene& scene) { noInput(scene, status); });
    sound.add([status](AlertScene& scene) { noOutput(scene, status); });
  }
  addLosses(sound);
  sound.add(noQueue);
  return sound.take();
}

GalleryAlerts storageAlerts() {
  AlertCollection storage("storage");
  for (const int error : {ENOENT, ENOTDIR, EACCES, EROFS, ENOSPC}) {
    storage.add([error](AlertScene& scene) {
      scene.files().failCreation(error);
      scene.document();
    });
  }
  for (const int error : {ENOSPC, EDQUOT, EIO}) {
    storage.add([error](AlertScene& scene) {
      scene.record(1);
      scene.files().fillUpAfter(0, error);
      scene.record(1);
    });
  }
  storage.add([](AlertScene& scene) {
    scene.record(4);
    scene.document().prevButton(nullptr);
    scene.play();
    scene.queues().output().changeRunning(1);
    scene.files().failReads(EIO);
    while (!scene.queues().output().playOne().empty()) {
    }
    scene.queues().output().changeRunning(0);
  });
  return storage.take();
}

GalleryAlerts applicationAlerts() {
  AlertCollection application("application");
  for (const auto scene : {noRoomForAWindow, noRoomForAPanel, quitWithAPanel, noProgramForAPage,
                           noPage, missingPage, notDeleted}) {
    application.add(scene);
  }
  return application.take();
}

std::vector<GalleryAlerts> galleryAlerts(const GalleryHome& home) {
  return {soundAlerts(),       storageAlerts(),     applicationAlerts(), openingAlerts(),
          readingAlerts(home), loadingAlerts(home), writingAlerts(),     savingAlerts(home)};
}
