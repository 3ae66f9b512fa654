#pragma once

#include "platform/Panels.h"

namespace platform {

/// The panels and sheets as Qt's dialogs.
///
/// Threads: main. Real-time: not safe.
class QtPanels : public Panels {
 public:
  void beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) override;
  void beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) override;
  void beginSheet(const SheetRequest& request, SheetAnswer answer) override;
};

}  // namespace platform
