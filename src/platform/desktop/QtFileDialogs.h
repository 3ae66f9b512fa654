#pragma once

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// The file dialogs and sheets as Qt's dialogs.
///
/// Threads: main. Real-time: not safe.
class QtFileDialogs : public FileDialogs {
 public:
  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override;
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override;
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override;
};

}  // namespace platform
