#pragma once

#include <memory>
#include <string>

#include <QWidget>

#include "app/OVApplicationServices.h"
#include "app/VelmarAppDelegate.h"
#include "controls/OVRecorderWindow.h"
#include "document/VLRecorderWindowController.h"
#include "platform/desktop/FilePanel.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/desktop/RecentDocuments.h"
#include "support/fakes/RecordingDesktop.h"
#include "support/fakes/SteppedAudioQueues.h"

/// The application with its own panels, alerts and menus, on sound queues that are stepped. Windows
/// appear on the screen of a scale factor, and are closed without a question in the end.
///
/// Threads: main.
class GalleryApplication {
 public:
  explicit GalleryApplication(double scale);
  ~GalleryApplication();
  GalleryApplication(const GalleryApplication&) = delete;
  GalleryApplication& operator=(const GalleryApplication&) = delete;

  [[nodiscard]] VelmarAppDelegate& delegate() { return delegate_; }

  OVRecorderWindow& newWindow();
  /// A window with the content of a file.
  OVRecorderWindow& openedWindow(const std::string& path);
  [[nodiscard]] static VLRecorderWindowController& documentOf(const OVRecorderWindow& window);
  /// Delivers a second of sound to the recorder that was made last.
  void capture();

  /// Runs a command of the window's menus by its English name.
  static void choose(const OVRecorderWindow& window, const char* command);
  /// The visible window of this object name, once there is one; null if none appears.
  [[nodiscard]] static QWidget* awaitWindow(const char* name);
  /// The panel that a command opens, once it has listed so many rows with their dates; null if that
  /// does not happen.
  [[nodiscard]] static platform::FilePanel* panelOf(const OVRecorderWindow& window,
                                                    const char* command, int rows);

 private:
  /// Two recent files.
  class Documents : public platform::RecentDocuments {
   public:
    void noteNewRecentDocument(const std::string&) override {}
    [[nodiscard]] std::vector<std::string> recentDocuments(std::size_t) const override {
      return {"/music/Interview.m4a", "/music/Recording 2026-11-21 14.02.wav"};
    }
  };

  OVRecorderWindow& shownWindow() const;

  const double scale_;
  Documents documents_;
  platform::Installed<platform::RecentDocuments>::Scope documentsInstallation_{documents_};
  support::RecordingDesktop desktop_;
  support::InstalledSteppedQueues queues_;
  platform::QtFileDialogs dialogs_;
  platform::Installed<platform::FileDialogs>::Scope dialogsInstallation_{dialogs_};
  VelmarAppDelegate delegate_{[] {}};
  platform::Installed<platform::ApplicationServices>::Scope servicesInstallation_;
  std::uint64_t captured_ = 0;
};
