#pragma once

#include <chrono>
#include <string>

#include "platform/desktop/DesktopBuses.h"
#include "platform/desktop/FileDialogs.h"
#include "platform/desktop/PortalOpenDialog.h"

namespace platform {

/// Panels that wait for no disk, and sheets made of Qt's message boxes. Files to open are chosen in
/// the desktop's own dialog if its portal has one, otherwise, or with an accessory view, in a panel
/// of our own; Qt's dialogs would write a settings file. A panel begins in the folder that is asked
/// for, otherwise in that of the last panel, before the first in the user's music folder, or the
/// home folder if there is none. A program that has hardly any descriptors left shows an alert
/// instead of a panel.
///
/// Threads: main. Real-time: not safe.
class QtFileDialogs : public FileDialogs {
 public:
  /// `session` connects to the bus on which the desktop's portal is; with null, every panel is
  /// ours.
  explicit QtFileDialogs(DesktopBuses::Bus session = nullptr,
                         std::chrono::milliseconds portalPatience = PortalOpenDialog::kPatience);

  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override;
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override;
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override;

 private:
  [[nodiscard]] std::string firstFolder(const std::string& wanted) const;
  void beginOwnOpenPanel(const OpenPanelRequest& request, OpenAnswer answer);
  void beginPortalDialog(const OpenPanelRequest& request, OpenAnswer answer);

  const DesktopBuses::Bus session_;
  const std::chrono::milliseconds portalPatience_;
  std::string lastFolder_;  // empty before the first panel
};

}  // namespace platform
