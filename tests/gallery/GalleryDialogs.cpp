#include "gallery/GalleryDialogs.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <limits>
#include <optional>

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QToolButton>

#include "document/files/OVImportPlaceLabel.h"
#include "gallery/GalleryApplication.h"
#include "gallery/GalleryHome.h"
#include "gallery/GalleryScreen.h"
#include "support/ClosedFolder.h"
#include "support/MainLoop.h"

namespace {

using platform::FilePanel;

constexpr int kRows = GalleryHome::kRows;

/// The application and what it works on, for one dialog.
struct Stage {
  GalleryApplication& application;
  const GalleryHome& home;
};

struct Dialog {
  const char* name;
  QWidget* (*show)(const Stage&);
};

FilePanel* savePanel(const Stage& stage) {
  return GalleryApplication::panelOf(stage.application.newWindow(), "Save As…", kRows);
}

FilePanel* savePanelOfTagged(const Stage& stage) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.tagged());
  return GalleryApplication::panelOf(window, "Save As…", kRows);
}

template <typename View>
View* partOf(const QWidget* window, const char* name) {
  return window == nullptr ? nullptr : window->findChild<View*>(QString::fromLatin1(name));
}

/// The list that a choice opens.
QWidget* listOf(const QWidget* panel, const char* choice) {
  auto* const box = partOf<QComboBox>(panel, choice);
  if (box == nullptr) {
    return nullptr;
  }
  box->showPopup();
  return box->view()->window();
}

void type(const QWidget* panel, const std::string& name) {
  if (auto* const edit = partOf<QLineEdit>(panel, "fileNameEdit")) {
    edit->setText(QString::fromStdString(name));
  }
}

// Saving ----------------------------------------------------------------------------------------

QWidget* saveAsWithoutCover(const Stage& stage) {
  FilePanel* const panel = savePanelOfTagged(stage);
  if (auto* const kinds = partOf<QComboBox>(panel, "fileTypeButton")) {
    kinds->setCurrentIndex(0);
  }
  return panel;
}

QWidget* replaceQuestion(const Stage& stage, const std::string& path) {
  FilePanel* const panel = savePanel(stage);
  type(panel, path);
  if (panel == nullptr) {
    return nullptr;
  }
  panel->accept();
  return GalleryApplication::awaitWindow("replaceQuestion");
}

QWidget* newFolder(const Stage& stage) {
  FilePanel* const panel = savePanel(stage);
  auto* const button = partOf<QToolButton>(panel, "newFolderButton");
  if (button == nullptr) {
    return nullptr;
  }
  button->click();
  return GalleryApplication::awaitWindow("newFolderQuestion");
}

/// A file of the user's in a folder in which the user may make none.
class ReadOnlyPlace {
 public:
  explicit ReadOnlyPlace(const std::string& file) {
    std::filesystem::copy_file(file, path());
    if (::geteuid() == 0) {
      constexpr uid_t kNobody = 65534;
      static_cast<void>(::chown(path().c_str(), kNobody, kNobody));
    }
    static_cast<void>(::chmod(folder_.path().c_str(), 0555));
    closed_.emplace(folder_.path());
  }
  [[nodiscard]] std::string path() const { return folder_.file("Recording.wav"); }

 private:
  support::TemporaryFolder folder_;
  std::optional<support::ClosedFolder> closed_;  // opened before the folder is deleted
};

QWidget* inPlaceQuestion(const Stage& stage) {
  const ReadOnlyPlace place(stage.home.take());
  OVRecorderWindow& window = stage.application.openedWindow(place.path());
  GalleryApplication::documentOf(window).saveFileNamed(place.path(), 0);
  return GalleryApplication::awaitWindow("sheet");
}

QWidget* exportPanel(const Stage& stage, const char* command, int rows) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.take());
  return GalleryApplication::panelOf(window, command, rows);
}

// Opening ---------------------------------------------------------------------------------------

QWidget* importPanel(const Stage& stage, double place, const std::string& chosen) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.take());
  GalleryApplication::documentOf(window).waveFormViewReceivedClick(nullptr, {}, place);
  FilePanel* const panel = GalleryApplication::panelOf(window, "Import…", kRows);
  auto* const label = panel == nullptr ? nullptr : panel->findChild<OVImportPlaceLabel*>();
  if (label == nullptr) {
    return nullptr;
  }
  const QString before = label->text();
  type(panel, chosen);
  // The line changes once the chosen file's length is known.
  return chosen.empty() || runMainLoopUntil([&] { return label->text() != before; }) ? panel
                                                                                     : nullptr;
}

QWidget* openPanel(const Stage& stage, const std::string& typed) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.take());
  FilePanel* const panel = GalleryApplication::panelOf(window, "Open…", kRows);
  if (panel == nullptr || typed.empty()) {
    return panel;
  }
  type(panel, typed);
  panel->accept();
  const auto* const status = partOf<QWidget>(panel, "statusLabel");
  return runMainLoopUntil([&] { return status->isVisible(); }) ? panel : nullptr;
}

// Closing ---------------------------------------------------------------------------------------

QWidget* unsavedQuestion(const Stage& stage, bool isRecording) {
  OVRecorderWindow& window = stage.application.newWindow();
  if (isRecording) {
    GalleryApplication::choose(window, "Record");
    stage.application.capture();
  }
  GalleryApplication::documentOf(window).setDocumentEdited(true);
  window.performClose();
  return GalleryApplication::awaitWindow("sheet");
}

// Menus and other windows -----------------------------------------------------------------------

QMenu* openedMenu(const Stage& stage, qsizetype index) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.take());
  GalleryApplication::documentOf(window).reverseBuffer(nullptr);  // something to undo
  static_cast<void>(drainMainQueue());
  QMenu* const menu = window.menuBar()->actions().at(index)->menu();
  menu->popup(window.mapToGlobal(QPoint(0, 0)));
  menu->setActiveAction(menu->actions().value(1));
  return menu;
}

QWidget* recentMenu(const Stage& stage) {
  OVRecorderWindow& window = stage.application.openedWindow(stage.home.take());
  auto* const menu = window.findChild<QMenu*>("Open Recent");
  // The list is read in the background and shown at the next time.
  const bool isFilled = runMainLoopUntil([&] {
    Q_EMIT qobject_cast<QMenu*>(menu->parent())->aboutToShow();
    return !menu->isEmpty();
  });
  menu->popup(window.mapToGlobal(QPoint(0, 0)));
  return isFilled ? menu : nullptr;
}

QWidget* about(const Stage& stage) {
  stage.application.newWindow();
  stage.application.delegate().showAbout();
  return GalleryApplication::awaitWindow("about");
}

QWidget* diagnostics(const Stage& stage, bool hasLines) {
  OVRecorderWindow& window = stage.application.newWindow();
  if (hasLines) {  // a write that is refused leaves a line
    GalleryApplication::documentOf(window).buffer()->writeData(
        "", std::numeric_limits<std::uint64_t>::max(), 8);
  }
  GalleryApplication::choose(window, "Diagnostics");
  return GalleryApplication::awaitWindow("diagnosticsWindow");
}

constexpr Dialog kDialogs[] = {
    {"save-as", [](const Stage& stage) -> QWidget* { return savePanel(stage); }},
    {"save-as-with-tags", [](const Stage& stage) -> QWidget* { return savePanelOfTagged(stage); }},
    {"save-as-without-cover", saveAsWithoutCover},
    {"save-as-kinds",
     [](const Stage& stage) { return listOf(savePanel(stage), "fileTypeButton"); }},
    {"save-as-folders", [](const Stage& stage) { return listOf(savePanel(stage), "lookInCombo"); }},
    {"new-folder", newFolder},
    {"replace", [](const Stage& stage) { return replaceQuestion(stage, stage.home.take()); }},
    {"replace-with-loss",
     [](const Stage& stage) { return replaceQuestion(stage, stage.home.finerTake()); }},
    {"overwrite-in-place", inPlaceQuestion},
    {"export-ringtone",
     [](const Stage& stage) { return exportPanel(stage, "Export Ringtone…", kRows); }},
    {"export-picture",
     [](const Stage& stage) {
       return exportPanel(stage, "Export Waveform Picture…", GalleryHome::kPictureRows);
     }},
    {"import", [](const Stage& stage) { return importPanel(stage, 1.0, {}); }},
    {"import-replacing",
     [](const Stage& stage) { return importPanel(stage, 0.25, stage.home.tagged()); }},
    {"open", [](const Stage& stage) { return openPanel(stage, {}); }},
    {"open-missing", [](const Stage& stage) { return openPanel(stage, "Evening.wav"); }},
    {"unsaved", [](const Stage& stage) { return unsavedQuestion(stage, false); }},
    {"unsaved-while-recording", [](const Stage& stage) { return unsavedQuestion(stage, true); }},
    {"about", about},
    {"diagnostics-empty", [](const Stage& stage) { return diagnostics(stage, false); }},
    {"diagnostics", [](const Stage& stage) { return diagnostics(stage, true); }},
    {"menu-file", [](const Stage& stage) -> QWidget* { return openedMenu(stage, 0); }},
    {"menu-edit", [](const Stage& stage) -> QWidget* { return openedMenu(stage, 1); }},
    {"menu-transport", [](const Stage& stage) -> QWidget* { return openedMenu(stage, 2); }},
    {"menu-view", [](const Stage& stage) -> QWidget* { return openedMenu(stage, 3); }},
    {"menu-help", [](const Stage& stage) -> QWidget* { return openedMenu(stage, 4); }},
    {"menu-recent", recentMenu},
};

}  // namespace

bool forEachGalleryDialog(double scale, const GalleryHome& home,
                          const std::function<void(const QString&, QWidget&)>& show) {
  for (const Dialog& dialog : kDialogs) {
    GalleryApplication application(scale);
    QWidget* const shown = dialog.show({application, home});
    if (shown == nullptr || !showOnScreenOfScale(*shown, scale)) {
      std::fprintf(stderr, "the dialog \"%s\" was not shown\n", dialog.name);
      return false;
    }
    show(QString::fromLatin1(dialog.name), *shown);
    shown->close();
    static_cast<void>(drainMainQueue());
  }
  return true;
}
