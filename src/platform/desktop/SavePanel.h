#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QFileDialog>

#include "platform/desktop/FileDialogs.h"

namespace platform {

/// `path` with the first of `suffixes` appended, unless it ends in one of them already, in capitals
/// or not.
[[nodiscard]] std::string withSuffix(const std::string& path,
                                     const std::vector<std::string>& suffixes);

/// The panel that chooses where to save: a file dialog whose name always has a suffix that fits the
/// kind chosen in its accessory, before the question whether an existing file is to be replaced.
///
/// Qt's dialog would take quotes in a name for signs between several names, and do nothing at all
/// for a name that is too long.
///
/// Threads: main. Real-time: not safe.
class SavePanel : public QFileDialog {
 public:
  explicit SavePanel(const SavePanelRequest& request);

  /// Gives the name its suffix, asks before replacing, then closes. A folder's name opens the
  /// folder.
  void accept() override;

  /// The path that was accepted: the name letter by letter as it was typed, whatever the file
  /// system will say to it.
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  void addAccessory(QWidget* accessory);
  void takeOverSuffix();
  void enableSaving();
  [[nodiscard]] QString shownName() const;
  void showName(const QString& name);
  [[nodiscard]] QString pathOf(const QString& name) const;
  void openFolder(const QString& path);
  void askToReplace();

  std::string path_;
  const std::function<std::vector<std::string>()> acceptedSuffixes_;
  std::vector<std::string> suffixes_;  // as the accessory stood last
};

}  // namespace platform
