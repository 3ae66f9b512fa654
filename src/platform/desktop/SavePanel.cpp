#include "platform/desktop/SavePanel.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include <QDialogButtonBox>
#include <QInputDialog>
#include <QPushButton>
#include <QStyle>

#include "platform/desktop/MessageBox.h"
#include "platform/mainloop/FailureReason.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"
#include "platform/mainloop/WaitingWork.h"

namespace platform {
namespace {

constexpr int kFolderNameWidth = 320;  // points

}  // namespace

std::string withSuffix(const std::string& path, const std::vector<std::string>& suffixes) {
  if (suffixes.empty() || hasSuffix(QString::fromStdString(path), suffixes)) {
    return path;
  }
  return path + "." + suffixes.front();
}

/// What accept() looks for.
struct SavePanel::Found {
  PathKind typed = PathKind::missing;   // at the name as it was typed
  PathKind target = PathKind::missing;  // with its suffix
  QString loss;
};

SavePanel::SavePanel(const SavePanelRequest& request)
    : FilePanel(request.window, request.title, localized("Save &in:"), Selection::one),
      acceptedSuffixes_(request.acceptedSuffixes),
      lossOfReplacing_(request.lossOfReplacing) {
  setObjectName("savePanel");
  addNewFolderButton();
  addAccessory(request.accessoryView);
  buttons()->addButton(localized("&Save"), QDialogButtonBox::AcceptRole)->setDefault(true);
  buttons()->addButton(localized("&Cancel"), QDialogButtonBox::RejectRole);
  if (acceptedSuffixes_) {
    suffixes_ = acceptedSuffixes_();
  }
  listedTypes_ = request.fileTypes;
  list();
  setName(withSuffix(request.suggestedName, suffixes_));
}

void SavePanel::addAccessory(QWidget* accessory) {
  if (accessory == nullptr) {
    return;
  }
  grid()->addWidget(accessory, kTypeRow, 0, 1, kNameColumns);
  alignWithNames(accessory->findChild<QLabel*>());
  for (QComboBox* const choice : accessory->findChildren<QComboBox*>()) {
    connect(choice, &QComboBox::currentIndexChanged, this, &SavePanel::takeOverSuffix);
  }
}

// What the accessory's first label names begins where the name and the folder do.
void SavePanel::alignWithNames(QLabel* label) {
  if (label == nullptr || label->buddy() == nullptr) {
    return;
  }
  int width = label->sizeHint().width();
  for (const int row : {0, kTypeRow - 1}) {
    width = std::max(width, grid()->itemAtPosition(row, 0)->sizeHint().width());
  }
  grid()->setColumnMinimumWidth(0, width);
  label->setMinimumWidth(width);
}

void SavePanel::list() {
  model()->setSuffixes(listedTypes_.empty() ? suffixes_ : listedTypes_);
}

void SavePanel::takeOverSuffix() {
  if (!acceptedSuffixes_) {
    return;
  }
  std::string name = names().empty() ? std::string() : names().front();
  for (const std::string& suffix : suffixes_) {
    if (hasSuffix(QString::fromStdString(name), {suffix})) {
      name.resize(name.size() - suffix.size() - 1);
      break;
    }
  }
  suffixes_ = acceptedSuffixes_();
  list();
  if (!name.empty()) {
    setName(withSuffix(name, suffixes_));
  }
}

void SavePanel::accept() {
  if (names().empty()) {
    return;
  }
  const std::string name = names().front();
  const auto found = std::make_shared<Found>();
  look(
      [found, typed = pathOf(name), target = pathOf(withSuffix(name, suffixes_)),
       lossOfReplacing = lossOfReplacing_] {
        found->typed = kindOfPath(typed);
        found->target = kindOfPath(target);
        if (found->target == PathKind::file && lossOfReplacing) {
          found->loss = lossOfReplacing(target);
        }
      },
      [this, name, found] { take(name, *found); });
}

void SavePanel::take(const std::string& name, const Found& found) {
  if (found.typed == PathKind::folder) {
    showFolder(pathOf(name));
    setName({});
    return;
  }
  setName(withSuffix(name, suffixes_));
  path_ = pathOf(withSuffix(name, suffixes_));
  if (found.target == PathKind::file) {
    askToReplace(found.loss);
  } else {
    QDialog::accept();  // the caller reports a folder
  }
}

void SavePanel::askToReplace(const QString& loss) {
  const std::string name = std::filesystem::path(path_).filename().string();
  auto* const question = new QMessageBox(this);
  question->setObjectName("replaceQuestion");
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setWindowModality(Qt::WindowModal);
  fillMessageBox(*question,
                 localized("“%1” already exists. Do you want to replace it?").arg(shownName(name)),
                 loss);
  question->setWindowTitle(windowTitle());
  const QPushButton* const replace =
      question->addButton(localized("&Replace"), QMessageBox::DestructiveRole);
  QPushButton* const cancel = question->addButton(localized("&Cancel"), QMessageBox::RejectRole);
  question->setDefaultButton(cancel);
  question->setEscapeButton(cancel);
  connect(question, &QDialog::finished, this, [this, question, replace] {
    if (question->clickedButton() == replace) {
      QDialog::accept();
    }
  });
  question->open();
}

// New folders -----------------------------------------------------------------------------------

void SavePanel::addNewFolderButton() {
  auto* const button = new QToolButton;
  button->setObjectName("newFolderButton");
  button->setIcon(style()->standardIcon(QStyle::SP_FileDialogNewFolder));
  button->setToolTip(localized("New Folder"));
  button->setAccessibleName(localized("New Folder"));
  connect(button, &QToolButton::clicked, this, &SavePanel::askForNewFolder);
  addFolderButton(button);
}

void SavePanel::askForNewFolder() {
  auto* const question = new QInputDialog(this);
  question->setObjectName("newFolderQuestion");
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setWindowModality(Qt::WindowModal);
  question->setWindowTitle(localized("New Folder"));
  question->setLabelText(localized("Name of the new folder:"));
  question->setOkButtonText(localized("&OK"));
  question->setCancelButtonText(localized("&Cancel"));
  connect(question, &QInputDialog::textValueSelected, this, [this](const QString& name) {
    if (!name.isEmpty()) {
      makeNewFolder(name.toStdString());
    }
  });
  question->open();  // makes what is in it
  const auto enableOk = [question](const QString& name) {
    question->findChild<QDialogButtonBox*>()
        ->button(QDialogButtonBox::Ok)
        ->setEnabled(!name.isEmpty());
  };
  connect(question, &QInputDialog::textValueChanged, question, enableOk);
  enableOk(question->textValue());
  for (QLineEdit* const edit : question->findChildren<QLineEdit*>()) {
    edit->setMinimumWidth(kFolderNameWidth);
  }
  for (QPushButton* const button : question->findChildren<QPushButton*>()) {
    button->setIcon({});  // no button has one
  }
}

void SavePanel::makeNewFolder(const std::string& name) {
  const std::string path = pathOf(name);
  const bool begun = beginWaitingWork(
      this, [path] { return makeFolder(path); },
      [this, path](int error) {
        if (error == 0) {
          showFolder(path);
        } else {
          say(QString::fromStdString(failureReason(error)));
        }
      });
  if (!begun) {
    say(QString::fromStdString(failureReason(EAGAIN)));
  }
}

}  // namespace platform
