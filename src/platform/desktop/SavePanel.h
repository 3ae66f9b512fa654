#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QFileDialog>

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// `path` with the first of `suffixes` appended, unless it ends in one of them, ignoring case.
[[nodiscard]] std::string withSuffix(const std::string& path,
                                     const std::vector<std::string>& suffixes);

/// The save panel: a file dialog that gives the name a suffix matching the kind chosen in its
/// accessory before it asks whether to replace an existing file.
///
/// Qt's own dialog treats quotes in a name as separators between names, and ignores a name that is
/// too long.
///
/// Threads: main. Real-time: not safe.
class SavePanel : public QFileDialog {
 public:
  explicit SavePanel(const SavePanelRequest& request);

  /// Adds the suffix, asks before replacing, then closes. A folder's name opens the folder.
  void accept() override;

  /// The accepted path, with the name exactly as typed even if the file system will reject it.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  void addAccessory(QWidget* accessory);
  void takeOverSuffix();
  void enableSaving();
  [[nodiscard]] QString shownName() const;
  void showName(const QString& name);
  [[nodiscard]] QString pathOf(const QString& name) const;
  void openFolder(const QString& path);
  void finish();
  void askToReplace();

  std::string path_;
  const std::function<std::vector<std::string>()> acceptedSuffixes_;
  std::vector<std::string> suffixes_;  // for the accessory's last known choice
};

}  // namespace platform
