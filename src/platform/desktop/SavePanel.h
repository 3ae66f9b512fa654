#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/FileDialogs.h"
#include "platform/desktop/FilePanel.h"

namespace platform {

/// `path` with the first of `suffixes` appended, unless it ends in one of them, ignoring case.
[[nodiscard]] std::string withSuffix(const std::string& path,
                                     const std::vector<std::string>& suffixes);

/// The save panel: gives the name a suffix matching the kind chosen in its accessory before it asks
/// whether to replace an existing file, and says what gets lost by that. Quotes in a name are part
/// of it.
///
/// Threads: main. Real-time: not safe.
class SavePanel : public FilePanel {
  Q_OBJECT

 public:
  explicit SavePanel(const SavePanelRequest& request);

  /// Adds the suffix, asks before replacing, then closes. A folder's name opens the folder.
  void accept() override;

  /// The accepted path, with the name exactly as typed even if the file system will reject it.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  void addAccessory(QWidget* accessory);
  void alignWithNames(QLabel* label);
  void addNewFolderButton();
  void list();
  void takeOverSuffix();
  struct Found;
  void take(const std::string& name, const Found& found);
  void askToReplace(const QString& loss);
  void askForNewFolder();
  void makeNewFolder(const std::string& name);

  std::string path_;
  const std::function<std::vector<std::string>()> acceptedSuffixes_;
  const std::function<QString(const std::string&)> lossOfReplacing_;
  std::vector<std::string> suffixes_;     // for the accessory's last known choice
  std::vector<std::string> listedTypes_;  // empty: suffixes_
};

}  // namespace platform
