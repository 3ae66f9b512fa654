#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QAction>
#include <QApplication>

#include "app/VelmarAppDelegate.h"
#include "controls/OVRecorderWindow.h"
#include "document/VLRecorderWindowController.h"
#include "platform/desktop/RecentDocuments.h"
#include "platform/mainloop/MainQueue.h"
#include "support/MainLoop.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedFileDialogs.h"
#include "support/fakes/SteppedAudioQueues.h"

/// Recent documents of the test alone. Threads: any.
class KeptRecentDocuments : public platform::RecentDocuments {
 public:
  void noteNewRecentDocument(const std::string& path) override {
    const std::lock_guard lock(mutex_);
    noted_.insert(noted_.begin(), path);
  }
  [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t most) const override {
    const std::lock_guard lock(mutex_);
    return {noted_.begin(), noted_.begin() + static_cast<long>(std::min(most, noted_.size()))};
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> noted_;  // guarded by mutex_
  platform::Installed<platform::RecentDocuments>::Scope installation_{*this};
};

/// The application on sound queues that the test steps manually, with panels that it answers.
/// Questions about unsaved changes are answered with Don't Save by default.
class AppFixture : public testing::Test {
 protected:
  AppFixture() { answerQuestionsWith(VLRecorderWindowController::kDontSave); }
  ~AppFixture() override {
    answerQuestionsWith(VLRecorderWindowController::kDontSave);
    while (panels_->sheets() > 0) {
      panels_->answerSheet(VLRecorderWindowController::kDontSave);
    }
    for (OVRecorderWindow* const window : windows()) {
      window->performClose();
    }
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(runMainLoopUntil([&] { return windows().empty(); }));
  }

  void answerQuestionsWith(std::optional<int> code) { panels_->answerEverySheetWith(code); }

  static std::vector<OVRecorderWindow*> windows() {
    std::vector<OVRecorderWindow*> found;
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const window = qobject_cast<OVRecorderWindow*>(widget)) {
        found.push_back(window);
      }
    }
    return found;
  }

  OVRecorderWindow* spawn() {
    const auto before = windows();
    delegate_.spawnNewRecorderWindow(nullptr);
    return newcomer(before);
  }

  /// The window that did not exist before.
  static OVRecorderWindow* newcomer(const std::vector<OVRecorderWindow*>& before) {
    for (OVRecorderWindow* const window : windows()) {
      if (std::find(before.begin(), before.end(), window) == before.end()) {
        return window;
      }
    }
    return nullptr;
  }

  static std::shared_ptr<VLRecorderWindowController> documentOf(OVRecorderWindow* window) {
    return std::dynamic_pointer_cast<VLRecorderWindowController>(window->delegate());
  }

  static void awaitIdle(const VLRecorderWindowController& document) {
    EXPECT_TRUE(runMainLoopUntil([&] { return !document.isFileIOActive(); }));
  }

  static QAction* item(OVRecorderWindow* window, const char* name) {
    return window->findChild<QAction*>(QString::fromUtf8(name));
  }

  /// Recording services that pass on the cancelling of a quit.
  class Services : public support::RecordingServices {
   public:
    explicit Services(VelmarAppDelegate& delegate) : delegate_(delegate) {}
    void cancelTermination() override {
      RecordingServices::cancelTermination();
      delegate_.cancelTermination();
    }

   private:
    VelmarAppDelegate& delegate_;
  };

  int quits_ = 0;
  VelmarAppDelegate delegate_{[this] { ++quits_; }};
  std::shared_ptr<Services> services_ = std::make_shared<Services>(delegate_);
  platform::Installed<platform::ApplicationServices>::Scope servicesInstallation_{services_};
  support::InstalledSteppedQueues queues_;
  support::InstalledScriptedPanels panels_;
  support::RecordingDesktop desktop_;
  KeptRecentDocuments recent_;
};
