#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QDialog>

#include "document/files/recoveredFiles.h"

class QDialogButtonBox;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

/// The recovered recordings with their start, length and state, each with a check box, and Open,
/// Later and Delete for those that are checked, at first all. It blocks no window.
///
/// Threads: main. Real-time: not safe.
class OVRecoveredPanel : public QDialog {
  Q_OBJECT

 public:
  /// Why it is shown.
  enum class Occasion {
    unexpectedEnd,  ///< as a question, because there is something new
    command,        ///< the user asked for it
  };

  using Paths = std::vector<std::string>;

  /// What its buttons do with the paths that are checked.
  struct Commands {
    std::function<void(const Paths& paths)> open;
    std::function<void(const Paths& paths)> remove;
  };

  OVRecoveredPanel(Occasion occasion, Commands commands);

  /// Shows these files. Those shown before keep their check marks.
  void setFiles(const std::vector<OVRecoveredFile>& files);

  [[nodiscard]] Occasion occasion() const { return occasion_; }
  /// The paths that are checked, in the order shown.
  [[nodiscard]] Paths chosen() const;

 private:
  [[nodiscard]] QLayout* makeHeading();
  void makeList();
  void makeButtons();
  void addRow(const OVRecoveredFile& file, const Paths& unchecked);
  [[nodiscard]] Paths pathsThatAre(Qt::CheckState state) const;
  void showHeading();
  void enableButtons();

  const Occasion occasion_;
  const Commands commands_;
  QLabel* const title_;
  QLabel* const heading_;
  QTreeWidget* const list_;
  QDialogButtonBox* const buttons_;
  QPushButton* open_ = nullptr;
  QPushButton* later_ = nullptr;
  QPushButton* delete_ = nullptr;
};

/// A length for people: "12 min 31 s", "2 h 5 min", "8 s". Truncated to the last unit.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] QString recoveredLengthText(std::uint64_t frames);
