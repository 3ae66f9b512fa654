#include "platform/desktop/QtFileDialogs.h"

#include <filesystem>
#include <utility>

#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include "platform/base/ApplicationServices.h"
#include "platform/base/MainThread.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/SavePanel.h"
#include "platform/files/Descriptors.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

namespace platform {
namespace {

// What a panel opens while it is used: folders, pictures of its icons.
constexpr std::size_t kDescriptorsOfAPanel = 16;

// Whether a panel can be shown. Otherwise an alert says why not, and `cancel` runs from the main
// loop unless the window has gone by then.
bool hasRoomForAPanel(const QPointer<QWidget>& window, std::function<void()> cancel) {
  if (hasFreeDescriptors(kDescriptorsOfAPanel)) {
    return true;
  }
  applicationServices()->postModalAlert(
      localizedUtf8("The files cannot be shown"),
      localizedUtf8("Too many files are open. Close some windows, then try again."));
  mainQueue().async([window, isFree = window.isNull(), cancel = std::move(cancel)] {
    if (isFree || window) {
      cancel();
    }
  });
  return false;
}

std::string homeFolder() {
  return QFile::encodeName(QDir::homePath()).toStdString();
}

std::string musicFolder() {
  return QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::MusicLocation))
      .toStdString();
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

QtFileDialogs::QtFileDialogs(DesktopBuses::Bus session, std::chrono::milliseconds portalPatience)
    : session_(std::move(session)), portalPatience_(portalPatience) {}

std::string QtFileDialogs::firstFolder(const std::string& wanted) const {
  if (!wanted.empty()) {
    return wanted;
  }
  return lastFolder_.empty() ? musicFolder() : lastFolder_;
}

void QtFileDialogs::beginOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) {
  assertMainThread();
  if (!hasRoomForAPanel(request.window, [answer] { answer({}); })) {
    delete request.accessoryView;
  } else if (session_ && request.accessoryView == nullptr) {
    beginPortalDialog(request, std::move(answer));
  } else {
    beginOwnOpenPanel(request, std::move(answer));
  }
}

void QtFileDialogs::beginPortalDialog(const OpenPanelRequest& request, OpenAnswer answer) {
  using End = PortalOpenDialog::End;
  OpenPanelRequest asked = request;
  asked.directory = firstFolder(request.directory);
  auto* const dialog = new PortalOpenDialog(
      asked,
      [this, request, answer = std::move(answer)](End end, const std::vector<std::string>& paths) {
        if (end == End::unavailable) {
          beginOwnOpenPanel(request, answer);
          return;
        }
        if (!paths.empty()) {
          lastFolder_ = std::filesystem::path(paths.front()).parent_path().string();
        }
        answer(paths);
      });
  dialog->begin(session_, portalPatience_);
}

void QtFileDialogs::beginOwnOpenPanel(const OpenPanelRequest& request, OpenAnswer answer) {
  auto* const panel = new OpenPanel(request);
  panel->showFolder(firstFolder(request.directory), homeFolder());
  QObject::connect(panel, &QDialog::finished, panel,
                   [this, panel, answer = std::move(answer)](int result) {
                     const bool accepted = result == QDialog::Accepted;
                     lastFolder_ = accepted ? panel->folder() : lastFolder_;
                     answer(accepted ? panel->paths() : std::vector<std::string>());
                   });
  panel->open();
}

void QtFileDialogs::beginSavePanel(const SavePanelRequest& request, SaveAnswer answer) {
  assertMainThread();
  if (!hasRoomForAPanel(request.window, [answer] { answer(std::nullopt); })) {
    delete request.accessoryView;
    return;
  }
  auto* const panel = new SavePanel(request);
  panel->showFolder(firstFolder(request.directory), homeFolder());
  QObject::connect(panel, &QDialog::finished, panel,
                   [this, panel, answer = std::move(answer)](int result) {
                     const bool accepted = result == QDialog::Accepted;
                     lastFolder_ = accepted ? panel->folder() : lastFolder_;
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
  fillMessageBox(*sheet, request.title, request.message);
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
