#pragma once

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// File dialogs and sheets made of Qt's dialogs.
///
/// Threads: main. Real-time: not safe.
class QtFileDialogs : public FileDialogs {
 public:
  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override;
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override;
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override;
};

}  // namespace platform
