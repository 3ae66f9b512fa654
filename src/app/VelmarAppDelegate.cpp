#include "app/VelmarAppDelegate.h"

#include <cstdio>
#include <utility>

#include <QApplication>
#include <QMessageBox>

#include "app/OVDiagnosticsWindow.h"
#include "controls/OVRecorderWindow.h"
#include "document/VLRecorderWindowController.h"
#include "platform/Localization.h"

namespace {

constexpr double kTerminationInterval = 1.0 / 30.0;  // seconds
constexpr std::size_t kTempfilesCapacity = 10;

}  // namespace

VelmarAppDelegate::VelmarAppDelegate(std::function<void()> quit)
    : quit_(std::move(quit)), debugWindow_(std::make_unique<OVDiagnosticsWindow>()) {}

VelmarAppDelegate::~VelmarAppDelegate() = default;

// Launch ----------------------------------------------------------------------------------------

void VelmarAppDelegate::applicationWillFinishLaunching() {
  const std::lock_guard lock(tempfilesMutex_);
  tempfiles_.clear();
  tempfiles_.reserve(kTempfilesCapacity);
  spawn_rec_ = true;
}

void VelmarAppDelegate::applicationDidFinishLaunching() {
  if (spawn_rec_) {
    spawnNewRecorderWindow(nullptr);
  }
}

void VelmarAppDelegate::spawnNewRecorderWindow(QObject*) {
  const auto controller = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
  new OVMainMenu(controller, commands());  // belongs to the window
  controller->showWindow();
}

OVMainMenu::ApplicationCommands VelmarAppDelegate::commands() {
  return {
      .spawnNewRecorderWindow = [this] { spawnNewRecorderWindow(nullptr); },
      .terminate = [this] { terminate(); },
      .showDiagnostics = [this] { showDiagnostics(); },
      .showAbout = [this] { showAbout(); },
  };
}

// Quit ------------------------------------------------------------------------------------------

std::vector<QPointer<OVRecorderWindow>> VelmarAppDelegate::recorderWindows() {
  std::vector<QPointer<OVRecorderWindow>> windows;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (auto* const window = qobject_cast<OVRecorderWindow*>(widget);
        window != nullptr && window->isVisible()) {
      windows.push_back(window);
    }
  }
  return windows;
}

VelmarAppDelegate::TerminateReply VelmarAppDelegate::applicationShouldTerminate() {
  bool edited = false;
  for (const auto& window : recorderWindows()) {
    if (window && window->isDocumentEdited()) {
      edited = true;
      window->performClose();
    }
  }
  if (!edited) {
    return TerminateReply::now;
  }
  if (!terminationTimer_) {
    terminationTimer_ =
        std::make_unique<platform::Timer>(kTerminationInterval, [this] { checkTermination(); });
  }
  return TerminateReply::cancel;
}

void VelmarAppDelegate::checkTermination() {
  if (terminationCanceled_) {
    terminationCanceled_ = false;
    return;
  }
  for (const auto& window : recorderWindows()) {
    if (window && window->isDocumentEdited()) {
      return;
    }
  }
  terminate();
}

void VelmarAppDelegate::cancelTermination() {
  terminationCanceled_ = true;
  terminationTimer_.reset();
  terminationCanceled_ = false;
}

void VelmarAppDelegate::terminate() {
  if (applicationShouldTerminate() == TerminateReply::now) {
    terminationTimer_.reset();
    for (const auto& window : recorderWindows()) {
      if (window) {
        window->performClose();
      }
    }
    quit_();
  }
}

void VelmarAppDelegate::applicationWillTerminate() {
  for (const std::string& path : tempfiles()) {
    std::remove(path.c_str());
  }
}

// Temporary files -------------------------------------------------------------------------------

void VelmarAppDelegate::registerTempFile(const std::string& path) {
  const std::lock_guard lock(tempfilesMutex_);
  tempfiles_.push_back(path);
}

std::vector<std::string> VelmarAppDelegate::tempfiles() const {
  const std::lock_guard lock(tempfilesMutex_);
  return tempfiles_;
}

// Diagnostics and About -------------------------------------------------------------------------

void VelmarAppDelegate::logToConsole(const std::string& text) {
  debugWindow_->appendLine(text);
}

void VelmarAppDelegate::showDiagnostics() {
  debugWindow_->show();
  debugWindow_->raise();
}

void VelmarAppDelegate::showAbout() {
  QMessageBox::about(QApplication::activeWindow(), platform::localized("About Orvo"),
                     platform::localized("Orvo %1\n\nAn audio recorder and simple editor.")
                         .arg(QCoreApplication::applicationVersion()));
}
