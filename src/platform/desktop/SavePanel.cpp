#include "platform/desktop/SavePanel.h"

#include <algorithm>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "platform/mainloop/Localization.h"

namespace platform {
namespace {

QString dottedSuffix(const std::string& suffix) {
  return QLatin1Char('.') + QString::fromStdString(suffix);
}

bool hasSuffix(const QString& name, const std::vector<std::string>& suffixes) {
  return std::any_of(suffixes.begin(), suffixes.end(), [&name](const std::string& suffix) {
    return name.endsWith(dottedSuffix(suffix), Qt::CaseInsensitive);
  });
}

}  // namespace

std::string withSuffix(const std::string& path, const std::vector<std::string>& suffixes) {
  if (suffixes.empty() || hasSuffix(QString::fromStdString(path), suffixes)) {
    return path;
  }
  return path + "." + suffixes.front();
}

SavePanel::SavePanel(const SavePanelRequest& request)
    : QFileDialog(request.window, request.title), acceptedSuffixes_(request.acceptedSuffixes) {
  // Only Qt's own dialog takes an accessory.
  setOption(QFileDialog::DontUseNativeDialog);
  setAcceptMode(QFileDialog::AcceptSave);
  setFileMode(QFileDialog::AnyFile);
  setWindowModality(Qt::WindowModal);
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("savePanel");
  setLabelText(QFileDialog::LookIn, localized("Save in:"));
  if (!request.directory.empty()) {
    setDirectory(QString::fromStdString(request.directory));
  }
  addAccessory(request.accessoryView);
  if (auto* const edit = findChild<QLineEdit*>("fileNameEdit")) {
    connect(edit, &QLineEdit::textChanged, this, &SavePanel::enableSaving);
  }
  if (acceptedSuffixes_) {
    suffixes_ = acceptedSuffixes_();
  }
  selectFile(QString::fromStdString(withSuffix(request.suggestedName, suffixes_)));
}

// Replaces the dialog's own filter choice, which has no effect here.
void SavePanel::addAccessory(QWidget* accessory) {
  auto* const filters = findChild<QWidget*>("fileTypeCombo");
  for (QWidget* const own : {findChild<QWidget*>("fileTypeLabel"), filters}) {
    if (own != nullptr) {
      own->hide();
    }
  }
  if (accessory == nullptr) {
    return;
  }
  if (auto* const grid = qobject_cast<QGridLayout*>(layout())) {
    int row = grid->rowCount();
    int column = 0;
    int rows = 1;
    int columns = 1;
    if (const int place = grid->indexOf(filters); place >= 0) {
      grid->getItemPosition(place, &row, &column, &rows, &columns);
    }
    grid->addWidget(accessory, row, 0, rows, column + columns);
  }
  accessory->setParent(this);
  accessory->show();
  for (QComboBox* const choice : accessory->findChildren<QComboBox*>()) {
    connect(choice, &QComboBox::currentIndexChanged, this, &SavePanel::takeOverSuffix);
  }
}

QString SavePanel::shownName() const {
  const auto* const edit = findChild<QLineEdit*>("fileNameEdit");
  return edit == nullptr ? QString() : edit->text();
}

// Clears the selection first: the dialog would prefer it to a name that was not typed.
void SavePanel::showName(const QString& name) {
  if (auto* const list = findChild<QAbstractItemView*>("listView")) {
    list->clearSelection();
  }
  if (auto* const edit = findChild<QLineEdit*>("fileNameEdit")) {
    edit->setText(name);
  }
}

void SavePanel::takeOverSuffix() {
  if (!acceptedSuffixes_) {
    return;
  }
  QString name = shownName();
  for (const std::string& suffix : suffixes_) {
    if (name.endsWith(dottedSuffix(suffix), Qt::CaseInsensitive)) {
      name.chop(dottedSuffix(suffix).size());
      break;
    }
  }
  suffixes_ = acceptedSuffixes_();
  if (!name.isEmpty()) {
    showName(QString::fromStdString(withSuffix(name.toStdString(), suffixes_)));
  }
}

// Enables Save for every name: the dialog itself rejects quotes and names that are too long.
void SavePanel::enableSaving() {
  if (auto* const buttons = findChild<QDialogButtonBox*>("buttonBox")) {
    if (auto* const save = buttons->button(QDialogButtonBox::Save)) {
      save->setEnabled(!shownName().isEmpty());
    }
  }
}

QString SavePanel::pathOf(const QString& name) const {
  if (name == QLatin1String("~") || name.startsWith(QLatin1String("~/"))) {
    return QDir::homePath() + name.mid(1);
  }
  return directory().absoluteFilePath(name);
}

void SavePanel::accept() {
  const QString name = shownName();
  if (name.isEmpty()) {
    return;
  }
  if (const QString folder = pathOf(name); QFileInfo(folder).isDir()) {
    openFolder(folder);
    return;
  }
  showName(QString::fromStdString(withSuffix(name.toStdString(), suffixes_)));
  path_ = pathOf(shownName()).toStdString();
  const QFileInfo there(QString::fromStdString(path_));
  if (there.exists() && !there.isDir()) {
    askToReplace();
  } else {
    finish();  // the caller reports a folder
  }
}

// Without the checks of the dialog between, which have been made here.
void SavePanel::finish() {
  QDialog::accept();  // NOLINT(bugprone-parent-virtual-call)
}

void SavePanel::openFolder(const QString& path) {
  setDirectory(path);
  showName({});
}

void SavePanel::askToReplace() {
  auto* const question =
      new QMessageBox(QMessageBox::Warning, windowTitle(),
                      localized("“%1” already exists. Do you want to replace it?")
                          .arg(QFileInfo(QString::fromStdString(path_)).fileName()),
                      QMessageBox::Yes | QMessageBox::No, this);
  question->setDefaultButton(QMessageBox::No);
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setWindowModality(Qt::WindowModal);
  for (QLabel* const label : question->findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);  // it contains a file name
  }
  connect(question, &QDialog::finished, this, [this](int answer) {
    if (answer == QMessageBox::Yes) {
      finish();
    }
  });
  question->open();
}

}  // namespace platform
