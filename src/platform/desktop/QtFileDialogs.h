#pragma once

#include <string>

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// Panels of our own, which wait for no disk, and sheets made of Qt's message boxes. A panel begins
/// in the folder of the last one, before the first in the working folder; a program that has
/// hardly any descriptors left shows an alert instead of it.
///
/// Threads: main. Real-time: not safe.
class QtFileDialogs : public FileDialogs {
 public:
  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override;
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override;
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override;

 private:
  [[nodiscard]] const std::string& lastFolder();

  std::string lastFolder_;  // empty before the first panel
};

}  // namespace platform
