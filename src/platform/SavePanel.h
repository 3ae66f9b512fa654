#pragma once

#include <QFileDialog>

#include "platform/Panels.h"

class QLineEdit;

namespace platform {

/// The panel that chooses where to save: a file dialog whose name always has a suffix that fits the
/// kind chosen in its accessory, before the question whether an existing file is to be replaced.
///
/// Threads: main. Real-time: not safe.
class SavePanel : public QFileDialog {
 public:
  explicit SavePanel(const SavePanelRequest& request);

  /// Gives the name its suffix, asks before replacing, then closes.
  void accept() override;

 private:
  void addAccessory(QWidget* accessory);
  void takeOverSuffix();
  [[nodiscard]] QString shownName() const;
  void showName(const QString& name);

  const std::function<std::vector<std::string>()> acceptedSuffixes_;
  std::vector<std::string> suffixes_;  // as the accessory stood last
};

}  // namespace platform
