#include "gallery/GalleryDialogs.h"

#include <fstream>
#include <memory>
#include <string>

#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QTreeView>

#include "app/OVDiagnosticsWindow.h"
#include "app/OVTranslations.h"
#include "gallery/GalleryScreen.h"
#include "platform/desktop/MessageBox.h"
#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/QtFileDialogs.h"
#include "platform/desktop/SavePanel.h"
#include "platform/mainloop/Localization.h"
#include "support/DarkPalette.h"
#include "support/MainLoop.h"
#include "support/TemporaryFolder.h"

namespace {

using platform::localized;
using Show = std::function<void(const QString&, QWidget&)>;

/// A folder of takes and other files.
void fillFolder(const support::TemporaryFolder& folder) {
  static_cast<void>(folder.makeFolder("Older takes"));
  for (const char* const name :
       {"Recording 2026-11-21 14.02.wav", "Recording 2026-11-21 15.40.wav", "Interview.m4a",
        "A song with a long name that says everything about it.mp3", "Notes.txt"}) {
    std::ofstream(folder.file(name)) << std::string(2'345'678, 'x');
  }
}

class Dialogs {
 public:
  Dialogs(double scale, QString suffix, const Show& show)
      : scale_(scale), suffix_(std::move(suffix)), show_(show) {
    fillFolder(folder_);
    window_.resize(640, 480);
    window_.show();
  }

  void showAll() {
    showAlert();
    showUnsaved();
    showOpenPanel();
    showSavePanel();
    showReplace();
  }

  void showDiagnostics() {
    OVDiagnosticsWindow empty;
    picture("diagnostics-empty", empty);
  }

  void showMenu() {
    QMenu menu;
    menu.addAction(localized("&New Recorder"))->setShortcut(QKeySequence::New);
    menu.addAction(localized("&Open…"))->setShortcut(QKeySequence::Open);
    menu.addMenu(localized("Open &Recent"));
    menu.addSeparator();
    QAction* const save = menu.addAction(localized("&Save"));
    menu.addAction(localized("Save &As…"))->setEnabled(false);
    menu.addSeparator();
    menu.addAction(localized("&Quit"));
    menu.setActiveAction(save);
    picture("menu", menu);
  }

 private:
  void picture(const char* name, QWidget& dialog) {
    static_cast<void>(showOnScreenOfScale(dialog, scale_));
    show_(QStringLiteral("dialog-") + QString::fromLatin1(name) + suffix_, dialog);
    dialog.close();
    static_cast<void>(drainMainQueue());
  }

  void showAlert() {
    QMessageBox alert;
    platform::fillMessageBox(
        alert, localized("%1 could not be saved").arg(localized("“%1”").arg("take.wav")),
        localized("You may not write in the folder %1. Choose another.")
            .arg(localized("“%1”").arg("music")));
    alert.addButton(localized("&OK"), QMessageBox::AcceptRole);
    picture("alert", alert);
  }

  void showUnsaved() {
    using Role = platform::SheetRequest::Button::Role;
    panels_.beginSheet(
        {.window = &window_,
         .title =
             localized("Do you want to save the changes made to “%1”?").arg(localized("Unnamed")),
         .message = localized("Your changes will be lost if you don’t save them."),
         .buttons = {{localized("&Save"), 1, Role::accept},
                     {localized("Do&n’t Save"), 0, Role::destructive},
                     {localized("&Cancel"), -1, Role::reject}}},
        [](int) {});
    picture("unsaved", *window_.findChild<QMessageBox*>("sheet"));
  }

  template <typename Panel>
  void awaitRows(Panel& panel, int count) {
    auto* const list = panel.template findChild<QTreeView*>("listView");
    static_cast<void>(runMainLoopUntil([&] {
      return list->model()->rowCount() == count &&
             !list->model()->index(count - 1, 2).data().toString().isEmpty();
    }));
  }

  void showOpenPanel() {
    panels_.beginOpenPanel({.window = &window_,
                            .title = localized("Open"),
                            .acceptLabel = localized("&Open"),
                            .directory = folder_.path(),
                            .allowsMultipleSelection = true,
                            .fileTypes = {"wav", "mp3", "m4a"}},
                           [](const auto&) {});
    auto* const panel = window_.findChild<platform::OpenPanel*>("openPanel");
    awaitRows(*panel, 5);
    picture("open", *panel);
  }

  platform::SavePanel* beginSave() {
    panels_.beginSavePanel(
        {.window = &window_,
         .title = localized("Save As"),
         .directory = folder_.path(),
         .suggestedName = localized("Recording %1").arg("2026-11-21 15.40").toStdString(),
         .fileTypes = {"wav", "mp3", "m4a"},
         .acceptedSuffixes = [] { return std::vector<std::string>{"wav"}; }},
        [](const auto&) {});
    auto* const panel = window_.findChild<platform::SavePanel*>("savePanel");
    awaitRows(*panel, 5);
    return panel;
  }

  void showSavePanel() { picture("save", *beginSave()); }

  void showReplace() {
    QMessageBox question;
    platform::fillMessageBox(question,
                             localized("“%1” already exists. Do you want to replace it?")
                                 .arg("Recording 2026-11-21 15.40.wav"),
                             {});
    question.addButton(localized("&Replace"), QMessageBox::DestructiveRole);
    question.setDefaultButton(question.addButton(localized("&Cancel"), QMessageBox::RejectRole));
    picture("replace", question);
  }

  const double scale_;
  const QString suffix_;
  const Show& show_;
  support::TemporaryFolder folder_;
  QWidget window_;
  platform::QtFileDialogs panels_;
};

}  // namespace

void forEachGalleryDialog(double scale, const Show& show) {
  for (const bool isDark : {false, true}) {
    const auto dark = isDark ? std::make_unique<support::DarkPalette>() : nullptr;
    Dialogs dialogs(scale, isDark ? QStringLiteral("-dark-desktop") : QString(), show);
    dialogs.showAll();
    dialogs.showDiagnostics();
    dialogs.showMenu();
  }
  const QLocale usual;
  for (const QString& language : OVTranslations::languages()) {
    const OVTranslations translations({language});
    QLocale::setDefault(QLocale(language));
    Dialogs(scale, QLatin1Char('-') + language, show).showAll();
  }
  QLocale::setDefault(usual);
}
