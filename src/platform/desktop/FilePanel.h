#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include "platform/desktop/FolderModel.h"

namespace platform {

/// A view of entries in which Return activates an entry and does nothing else.
class EntryView : public QTreeView {
  Q_OBJECT

 public:
  using QTreeView::QTreeView;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

/// What the panels for opening and for saving share: a folder's content, the way to other folders
/// and an edit for names.
///
/// Everything that asks a disk runs on a thread of its own, so that a disk that does not answer
/// holds nothing but the content of the list. Names and folders are kept byte for byte. Nothing is
/// remembered on disk.
///
/// Threads: main. Real-time: not safe.
class FilePanel : public QDialog {
  Q_OBJECT

 public:
  ~FilePanel() override;

  /// Path of the folder that is shown; it may not exist.
  [[nodiscard]] const std::string& folder() const { return folder_; }
  /// Shows a folder; `otherwise`, unless it is empty, if that does not exist.
  void showFolder(const std::string& path, const std::string& otherwise = {});

  /// The names in the edit: several if they are in quotes and several may be chosen.
  [[nodiscard]] std::vector<std::string> names() const;

  /// The names or the folder have changed.
  Q_SIGNAL void namesChanged();

 protected:
  enum class Selection { one, several };

  FilePanel(QWidget* window, const QString& title, const QString& lookIn, Selection selection);

  [[nodiscard]] QGridLayout* grid() const { return grid_; }
  [[nodiscard]] QDialogButtonBox* buttons() const { return buttons_; }
  [[nodiscard]] FolderModel* model() const { return model_; }
  /// Row of grid() for the choice of a type or an accessory, left of the buttons.
  static constexpr int kTypeRow = 4;
  static constexpr int kNameColumns = 3;  ///< columns left of the buttons

  /// A button right of the folders.
  void addFolderButton(QToolButton* button);
  void setName(const std::string& name);
  /// Shows a sentence below the list, also to screen readers; empty for none.
  void say(const QString& sentence);
  /// The path that a typed name means: in the folder, absolute, or in the home folder ("~/").
  [[nodiscard]] std::string pathOf(const std::string& name) const;

  /// Looks what is at each path, then calls `done`, unless the names or the folder have changed by
  /// then. Nothing can be accepted meanwhile.
  void look(const std::vector<std::string>& paths,
            std::function<void(const std::vector<PathKind>&)> done);
  /// The same for any work, which runs on a thread of its own.
  void look(std::function<void()> work, std::function<void()> done);

 private:
  void makeFolderRow(const QString& lookIn);
  void makeList(Selection selection);
  void makeNameRow();
  void fillFolders();
  void read();
  void showRows(std::vector<FolderRow> rows);
  void listed(int error);
  void takeSelection();
  void activate(const QModelIndex& index);
  void wait();
  void endWaiting();
  void cancelLook();
  void updateAccept();

  const Selection selection_;
  QGridLayout* const grid_;
  QComboBox* folders_ = nullptr;
  EntryView* list_ = nullptr;
  FolderModel* model_ = nullptr;
  QLabel* status_ = nullptr;
  QLineEdit* edit_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
  QTimer waitTimer_;  // until it is said that a folder lets us wait

  std::string folder_;
  std::string otherwise_;            // shown if folder_ does not exist; empty for none
  std::vector<std::string> chosen_;  // names of which `chosenText_` is shown
  QString chosenText_;
  std::shared_ptr<std::atomic<bool>> cancelled_;  // the reading of the folder; null for none
  int lookNumber_ = 0;                            // of the last look()
  bool isLooking_ = false;
  bool isWaitingSaid_ = false;  // the sentence shown is the one of waitTimer_
  bool isShowingRows_ = false;
};

}  // namespace platform
