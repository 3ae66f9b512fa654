#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/FileDialogs.h"
#include "platform/desktop/FilePanel.h"

namespace platform {

/// The open panel: files of the given types, or all. The accessory is below the choice of types.
///
/// Threads: main. Real-time: not safe.
class OpenPanel : public FilePanel {
  Q_OBJECT

 public:
  explicit OpenPanel(const OpenPanelRequest& request);

  /// Closes if the files exist. A folder's name opens the folder.
  void accept() override;

  /// The accepted paths.
  [[nodiscard]] const std::vector<std::string>& paths() const { return paths_; }

 private:
  void take(const std::vector<std::string>& paths, const std::vector<PathKind>& kinds);

  void tellSelection() const;

  std::vector<std::string> paths_;
  const std::function<void(const std::string& path)> selectionChanged_;
};

}  // namespace platform
