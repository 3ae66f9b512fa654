#include "platform/desktop/QtFileDialogs.h"

#include <utility>

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "platform/base/MainThread.h"
#include "platform/desktop/OpenPanelAccessory.h"
#include "platform/desktop/SavePanel.h"
#include "platform/mainloop/Localization.h"

namespace platform {
namespace {

QString nameFilter(const std::vector<std::string>& fileTypes) {
  QStringList patterns;
  for (const std::string& type : fileTypes) {
    const QString suffix = QString::fromStdString(type);
    patterns << QStringLiteral("*.") + suffix << QStringLiteral("*.") + suffix.toUpper();
  }
  return localized("Audio Files") + QStringLiteral(" (%1)").arg(patterns.join(QLatin1Char(' ')));
}

std::vector<std::string> toPaths(const QStringList& files) {
  std::vector<std::string> paths;
  for (const QString& file : files) {
    paths.push_back(file.toStdString());
  }
  return paths;
}

QMessageBox::ButtonRole roleOf(SheetRequest::Button::Role role) {
  switch (role) {
    case SheetRequest::Button::Role::accept:
      return QMessageBox::AcceptRole;
    case SheetRequest::Button::Role::destructive:
      return QMessageBox::DestructiveRole;
    case SheetRequest::Button::Role::reject:
      return QMessageBox::RejectRole;
  }
  return QMessageBox::RejectRole;
}

}  // namespace

void QtFileDialogs::beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) {
  assertMainThread();
  auto* const panel = new QFileDialog(request.window, request.title);
  addAccessory(*panel, request);
  panel->setObjectName("openPanel");
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setWindowModality(request.window ? Qt::WindowModal : Qt::ApplicationModal);
  panel->setAcceptMode(QFileDialog::AcceptOpen);
  panel->setFileMode(request.allowsMultipleSelection ? QFileDialog::ExistingFiles
                                                     : QFileDialog::ExistingFile);
  panel->setOption(QFileDialog::HideNameFilterDetails);  // a list of 18 patterns
  panel->setNameFilters({nameFilter(request.fileTypes), localized("All Files") + " (*)"});
  panel->setLabelText(QFileDialog::Accept, request.acceptLabel);
  QObject::connect(
      panel, &QDialog::finished, panel, [panel, answer = std::move(answer)](int result) {
        const bool accepted = result == QDialog::Accepted;
        answer(accepted ? toPaths(panel->selectedFiles()) : std::vector<std::string>());
      });
  panel->open();
}

void QtFileDialogs::beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) {
  assertMainThread();
  auto* const panel = new SavePanel(request);
  QObject::connect(panel, &QDialog::finished, panel,
                   [panel, answer = std::move(answer)](int result) {
                     const bool accepted = result == QDialog::Accepted;
                     answer(accepted ? std::optional(panel->path()) : std::nullopt);
                   });
  panel->open();
}

void QtFileDialogs::beginSheet(const SheetRequest& request, SheetAnswer answer) {
  assertMainThread();
  auto* const sheet = new QMessageBox(request.window);
  sheet->setObjectName("sheet");
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->setWindowModality(Qt::WindowModal);
  sheet->setIcon(QMessageBox::Warning);
  sheet->setWindowTitle(localized("Orvo"));
  sheet->setText(request.title);
  sheet->setInformativeText(request.message);
  for (QLabel* const label : sheet->findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);  // it contains file names
  }
  for (const auto& button : request.buttons) {
    QPushButton* const added = sheet->addButton(button.title, roleOf(button.role));
    added->setProperty("returnCode", button.returnCode);
    if (&button == &request.buttons.front()) {
      sheet->setDefaultButton(added);
    }
    if (button.role == SheetRequest::Button::Role::reject) {
      sheet->setEscapeButton(added);
    }
  }
  QObject::connect(sheet, &QDialog::finished, sheet, [sheet, answer = std::move(answer)](int) {
    const QAbstractButton* const clicked = sheet->clickedButton();
    answer(clicked == nullptr ? kNoAnswer : clicked->property("returnCode").toInt());
  });
  sheet->open();
}

}  // namespace platform
