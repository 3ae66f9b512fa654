#include "platform/desktop/FilePanel.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <set>
#include <utility>

#include <QAccessible>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QStandardPaths>
#include <QStyle>
#include <QStyledItemDelegate>

#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"
#include "platform/mainloop/ShownName.h"
#include "platform/mainloop/WaitingWork.h"

namespace platform {
namespace {

constexpr std::chrono::milliseconds kShortWait{400};
constexpr QSize kMinimumSize(760, 480);  // wide enough for whole names, sizes and dates

QString shown(const std::string& path) {
  return QString::fromStdString(path);
}

std::string homeFolder() {
  return QFile::encodeName(QDir::homePath()).toStdString();
}

std::string parentOf(const std::string& folder) {
  return std::filesystem::path(folder).parent_path().string();
}

std::string normal(const std::string& path) {
  std::string folder = std::filesystem::path(path).lexically_normal().string();
  while (folder.size() > 1 && folder.back() == '/') {
    folder.pop_back();
  }
  return folder;
}

// The names in a text of the form "one" "two"; the text itself if it has another.
std::vector<std::string> namesIn(const QString& text, bool several) {
  const QStringList parts = text.trimmed().split(QLatin1Char('"'));
  // Quotes enclose every second part, and only blanks are between them.
  bool quoted = several && parts.size() >= 3 && parts.size() % 2 == 1;
  for (qsizetype i = 0; quoted && i < parts.size(); i += 2) {
    quoted = parts[i].trimmed().isEmpty();
  }
  if (!quoted) {
    return text.isEmpty() ? std::vector<std::string>() : std::vector{text.toStdString()};
  }
  std::vector<std::string> names;
  for (qsizetype i = 1; i < parts.size(); i += 2) {
    if (!parts[i].isEmpty()) {
      names.push_back(parts[i].toStdString());
    }
  }
  return names;
}

// A blank on either side, since a column that ends at the right would touch the next.
class SpacedText : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  [[nodiscard]] QString displayText(const QVariant& value, const QLocale&) const override {
    return FolderModel::spaced(value.toString());
  }
};

}  // namespace

void EntryView::keyPressEvent(QKeyEvent* event) {
  QTreeView::keyPressEvent(event);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    event->accept();  // the dialog would press its default button too
  }
}

FilePanel::FilePanel(QWidget* window, const QString& title, const QString& lookIn,
                     Selection selection)
    : QDialog(window), selection_(selection), grid_(new QGridLayout(this)) {
  setWindowTitle(title);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
  setSizeGripEnabled(true);
  makeFolderRow(lookIn);
  makeList(selection);
  makeNameRow();
  setMinimumSize(kMinimumSize);
  resize(kMinimumSize);
  waitTimer_.setSingleShot(true);
  waitTimer_.setInterval(kShortWait);
  connect(&waitTimer_, &QTimer::timeout, this, [this] {
    say(localized("Waiting for the folder to answer…"));
    isWaitingSaid_ = true;
  });
}

FilePanel::~FilePanel() {
  if (cancelled_) {
    *cancelled_ = true;
  }
}

void FilePanel::makeFolderRow(const QString& lookIn) {
  auto* const label = new QLabel(lookIn);
  folders_ = new QComboBox;
  folders_->setObjectName("lookInCombo");
  folders_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  folders_->setMinimumContentsLength(20);
  label->setBuddy(folders_);
  grid_->addWidget(label, 0, 0);
  grid_->addWidget(folders_, 0, 1);
  grid_->setColumnStretch(1, 1);
  connect(folders_, &QComboBox::activated, this,
          [this](int index) { showFolder(folders_->itemData(index).toByteArray().toStdString()); });
  auto* const up = new QToolButton;
  up->setObjectName("toParentButton");
  up->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
  up->setShortcut(Qt::ALT | Qt::Key_Up);
  up->setToolTip(localized("Parent Folder"));
  up->setAccessibleName(localized("Parent Folder"));
  connect(up, &QToolButton::clicked, this, [this] { showFolder(parentOf(folder_)); });
  addFolderButton(up);
}

void FilePanel::addFolderButton(QToolButton* button) {
  auto* row = qobject_cast<QHBoxLayout*>(
      grid_->itemAtPosition(0, 2) != nullptr ? grid_->itemAtPosition(0, 2)->layout() : nullptr);
  if (row == nullptr) {
    row = new QHBoxLayout;
    grid_->addLayout(row, 0, 2, 1, 2, Qt::AlignLeft);
  }
  button->setAutoRaise(true);
  row->addWidget(button);
}

void FilePanel::makeList(Selection selection) {
  model_ = new FolderModel(style()->standardIcon(QStyle::SP_DirIcon),
                           style()->standardIcon(QStyle::SP_FileIcon), this);
  list_ = new EntryView;
  list_->setObjectName("listView");
  list_->setAccessibleName(localized("Files"));
  list_->setModel(model_);
  list_->setRootIsDecorated(false);
  list_->setItemsExpandable(false);
  list_->setUniformRowHeights(true);
  auto* const spaced = new SpacedText(list_);
  list_->setItemDelegateForColumn(FolderModel::kSize, spaced);
  list_->setItemDelegateForColumn(FolderModel::kModified, spaced);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(selection == Selection::several ? QAbstractItemView::ExtendedSelection
                                                          : QAbstractItemView::SingleSelection);
  list_->setSortingEnabled(true);
  list_->sortByColumn(FolderModel::kName, Qt::AscendingOrder);
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(FolderModel::kName, QHeaderView::Stretch);
  list_->header()->setSectionResizeMode(FolderModel::kSize, QHeaderView::ResizeToContents);
  list_->header()->setSectionResizeMode(FolderModel::kModified, QHeaderView::ResizeToContents);
  grid_->addWidget(list_, 1, 0, 1, 4);
  grid_->setRowStretch(1, 1);
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &FilePanel::takeSelection);
  connect(list_, &QAbstractItemView::activated, this, &FilePanel::activate);
  status_ = new QLabel;
  status_->setObjectName("statusLabel");
  status_->setTextFormat(Qt::PlainText);  // it contains file names
  status_->setWordWrap(true);
  status_->hide();
  grid_->addWidget(status_, 2, 0, 1, 4);
}

void FilePanel::makeNameRow() {
  auto* const label = new QLabel(localized("File &name:"));
  edit_ = new QLineEdit;
  edit_->setObjectName("fileNameEdit");
  label->setBuddy(edit_);
  grid_->addWidget(label, 3, 0);
  grid_->addWidget(edit_, 3, 1, 1, 2);
  buttons_ = new QDialogButtonBox(Qt::Vertical);
  buttons_->setObjectName("buttonBox");
  grid_->addWidget(buttons_, 3, kNameColumns, 2, 1);
  connect(buttons_, &QDialogButtonBox::accepted, this, [this] { accept(); });
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(edit_, &QLineEdit::textChanged, this, [this] {
    cancelLook();
    say({});
    Q_EMIT namesChanged();
  });
  edit_->setFocus();
}

// Folders ---------------------------------------------------------------------------------------

void FilePanel::showFolder(const std::string& path, const std::string& otherwise) {
  otherwise_ = otherwise;
  folder_ = path.empty() ? "/" : normal(path);
  cancelLook();
  fillFolders();
  read();
  Q_EMIT namesChanged();
}

// The folder, those above it, and the user's own.
void FilePanel::fillFolders() {
  std::vector<std::string> folders{folder_};
  while (parentOf(folders.back()) != folders.back()) {
    folders.push_back(parentOf(folders.back()));
  }
  folders.push_back(homeFolder());
  for (const auto place : {QStandardPaths::MusicLocation, QStandardPaths::DocumentsLocation,
                           QStandardPaths::DownloadLocation, QStandardPaths::DesktopLocation}) {
    folders.push_back(QFile::encodeName(QStandardPaths::writableLocation(place)).toStdString());
  }
  std::set<std::string> seen;
  folders_->clear();
  for (const std::string& folder : folders) {
    if (!folder.empty() && seen.insert(folder).second) {
      folders_->addItem(style()->standardIcon(QStyle::SP_DirIcon), shownName(folder),
                        QByteArray::fromStdString(folder));
    }
  }
}

void FilePanel::read() {
  if (cancelled_) {
    *cancelled_ = true;
  }
  cancelled_ = std::make_shared<std::atomic<bool>>(false);
  showRows({});
  wait();
  const bool begun =
      beginWaitingWork([guard = QPointer<FilePanel>(this), path = folder_, cancelled = cancelled_] {
        const auto found = [&guard, &cancelled](const std::vector<FolderEntry>& entries) {
          mainQueue().async([guard, cancelled, rows = folderRows(entries)] {
            if (guard && !*cancelled) {
              guard->showRows(rows);
            }
          });
        };
        const int error = listFolder(path, found, *cancelled);
        mainQueue().async([guard, cancelled, error] {
          if (guard && !*cancelled) {
            guard->listed(error);
          }
        });
      });
  if (!begun) {
    listed(EAGAIN);
  }
}

// The selection and what can be seen stay: sizes and dates come after the names.
void FilePanel::showRows(std::vector<FolderRow> rows) {
  isShowingRows_ = true;
  std::set<std::string> selected;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows()) {
    selected.insert(model_->entryAt(index.row()).name);
  }
  const int position = list_->verticalScrollBar()->value();
  model_->setRows(std::move(rows));
  for (const std::string& name : selected) {
    if (const int row = model_->rowOf(name); row >= 0) {
      list_->selectionModel()->select(model_->index(row, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
  }
  list_->verticalScrollBar()->setValue(position);
  isShowingRows_ = false;
}

void FilePanel::listed(int error) {
  if ((error == ENOENT || error == ENOTDIR) && !otherwise_.empty()) {
    const bool wasAccepted = isLooking_;
    showFolder(std::exchange(otherwise_, {}));
    if (wasAccepted) {
      accept();  // again, now in this folder
    }
    return;
  }
  if (!isLooking_) {
    endWaiting();
  }
  if (error != 0) {
    say(shown(failureReason(error)));
  }
}

void FilePanel::takeSelection() {
  std::vector<std::string> names;
  QStringList texts;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows()) {
    if (!model_->entryAt(index.row()).isFolder) {
      names.push_back(model_->entryAt(index.row()).name);
      texts << model_->nameAt(index.row());
    }
  }
  if (isShowingRows_ || names.empty()) {
    return;
  }
  chosen_ = std::move(names);
  chosenText_ = texts.size() == 1 ? texts.front() : '"' + texts.join("\" \"") + '"';
  edit_->setText(chosenText_);
}

void FilePanel::activate(const QModelIndex& index) {
  const FolderEntry entry = model_->entryAt(index.row());
  if (entry.isFolder) {
    showFolder(pathOf(entry.name));
  } else {
    setName(entry.name);
    accept();
  }
}

// Names -----------------------------------------------------------------------------------------

void FilePanel::setName(const std::string& name) {
  chosen_ = {name};
  chosenText_ = shown(name);
  edit_->setText(chosenText_);
}

std::vector<std::string> FilePanel::names() const {
  if (edit_->text().isEmpty()) {
    return {};
  }
  return edit_->text() == chosenText_ ? chosen_
                                      : namesIn(edit_->text(), selection_ == Selection::several);
}

std::string FilePanel::pathOf(const std::string& name) const {
  if (name.starts_with('/')) {
    return name;
  }
  if (name == "~" || name.starts_with("~/")) {
    return homeFolder() + name.substr(1);
  }
  return folder_ + (folder_.ends_with('/') ? "" : "/") + name;
}

void FilePanel::look(const std::vector<std::string>& paths,
                     std::function<void(const std::vector<PathKind>&)> done) {
  const auto kinds = std::make_shared<std::vector<PathKind>>(paths.size());
  look([paths, kinds] { std::transform(paths.begin(), paths.end(), kinds->begin(), kindOfPath); },
       [kinds, done = std::move(done)] { done(*kinds); });
}

void FilePanel::look(std::function<void()> work, std::function<void()> done) {
  isLooking_ = true;
  wait();
  updateAccept();
  const auto report = [work = std::move(work)] {
    work();
    return true;
  };
  const bool begun =
      beginWaitingWork(this, report, [this, number = ++lookNumber_, done = std::move(done)](bool) {
        if (number == lookNumber_) {
          cancelLook();
          done();
        }
      });
  if (!begun) {
    cancelLook();
    say(shown(failureReason(EAGAIN)));
  }
}

void FilePanel::cancelLook() {
  ++lookNumber_;
  isLooking_ = false;
  endWaiting();
  updateAccept();
}

void FilePanel::updateAccept() {
  for (QAbstractButton* const button : buttons_->buttons()) {
    if (buttons_->buttonRole(button) == QDialogButtonBox::AcceptRole) {
      button->setEnabled(!isLooking_ && !edit_->text().isEmpty());
    }
  }
}

// Words -----------------------------------------------------------------------------------------

void FilePanel::wait() {
  say({});
  waitTimer_.start();
}

// Another sentence stays: a look may have ended while the folder was still being read.
void FilePanel::endWaiting() {
  waitTimer_.stop();
  if (isWaitingSaid_) {
    say({});
  }
}

void FilePanel::say(const QString& sentence) {
  waitTimer_.stop();
  isWaitingSaid_ = false;
  status_->setText(sentence);
  status_->setVisible(!sentence.isEmpty());
  if (!sentence.isEmpty()) {
    QAccessibleEvent event(status_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
  }
}

}  // namespace platform
