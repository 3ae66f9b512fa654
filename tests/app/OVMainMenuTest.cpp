#include "app/OVMainMenu.h"

#include <gmock/gmock.h>
#include <cerrno>
#include <string>
#include <vector>

#include <QMenuBar>
#include <QTest>

#include "app/AppFixture.h"
#include "platform/files/File.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The menus of a window without an application: calls of its commands are recorded.
class OVMainMenuTest : public AppFixture {
 protected:
  OVRecorderWindow* window() {
    if (!window_) {
      const auto controller = VLRecorderWindowController::initWithWindowNibName("VNRecorderWindow");
      window_ = controller->window();
      new OVMainMenu(controller, commands());  // belongs to the window
      controller->showWindow();
    }
    return window_;
  }

  OVMainMenu::ApplicationCommands commands() {
    const auto record = [this](const char* name) {
      return [this, name] { called_.emplace_back(name); };
    };
    return {
        .spawnNewRecorderWindow = record("new"),
        .openFile = [this](QWidget*) { called_.emplace_back("open"); },
        .recentFiles = [this] { return recentPaths_; },
        .openRecentFile = [this](const std::string& path) { called_.push_back(path); },
        .terminate = record("quit"),
        .openDocumentation = record("documentation"),
        .showRecovered = record("recovered"),
        .showDiagnostics = record("diagnostics"),
        .showAbout = record("about"),
    };
  }

  QMenu* menu(const QString& title) {
    for (const QAction* const action : window()->menuBar()->actions()) {
      if (action->text() == title) {
        return action->menu();
      }
    }
    return nullptr;
  }

  /// The items of a menu as shown; a separator is "-".
  std::vector<std::string> itemsOf(const QString& title) {
    std::vector<std::string> items;
    for (const QAction* const action : menu(title)->actions()) {
      items.push_back(action->isSeparator() ? "-" : action->text().toStdString());
    }
    return items;
  }

  bool isEnabled(const char* name) { return item(window(), name)->isEnabled(); }

  QMenu* openRecentMenu() {
    Q_EMIT menu("&File")->aboutToShow();
    return window()->findChild<QMenu*>("Open Recent");
  }

  QPointer<OVRecorderWindow> window_;
  std::vector<std::string> called_;
  std::vector<std::string> recentPaths_;
};

TEST_F(OVMainMenuTest, MenusStandInTheUsualOrder) {
  std::vector<std::string> titles;
  for (const QAction* const action : window()->menuBar()->actions()) {
    titles.push_back(action->text().toStdString());
  }
  EXPECT_THAT(titles, ElementsAre("&File", "&Edit", "&Transport", "&View", "&Help"));
}

TEST_F(OVMainMenuTest, ItemsStandInGroups) {
  EXPECT_THAT(itemsOf("&File"), ElementsAre("&New Recorder", "&Open…", "Open &Recent", "&Import…",
                                            "-", "&Save", "Save &As…", "-", "Export Rin&gtone…",
                                            "Export &Waveform Picture…", "-", "&Close", "&Quit"));
  EXPECT_THAT(itemsOf("&Edit"), ElementsAre("&Undo", "&Redo", "-", "Remove &After Marker",
                                            "Remove &Before Marker", "Re&verse Audio"));
  EXPECT_THAT(itemsOf("&Transport"), ElementsAre("&Record\tR", "&Play\tSpace", "&Stop", "-",
                                                 "&To Start\tReturn", "To &End"));
  EXPECT_THAT(itemsOf("&View"), ElementsAre("&Spectrum"));
  EXPECT_THAT(itemsOf("&Help"), ElementsAre("&Documentation", "-", "&Recovered Recordings…",
                                            "D&iagnostics", "&About Orvo"));
}

TEST_F(OVMainMenuTest, ItemsHaveTheUsualKeys) {
  const std::vector<std::pair<const char*, QKeySequence>> keys{
      {"New Recorder", QKeySequence::New},
      {"Open…", QKeySequence::Open},
      {"Import…", QKeySequence("Ctrl+I")},
      {"Save", QKeySequence::Save},
      {"Save As…", QKeySequence("Ctrl+Shift+S")},
      {"Close", QKeySequence("Ctrl+W")},
      {"Quit", QKeySequence("Ctrl+Q")},
      {"Undo", QKeySequence::Undo},
      {"Redo", QKeySequence::Redo},
      {"Documentation", QKeySequence::HelpContents}};
  std::size_t found = 0;
  for (const QAction* const action : window()->findChildren<QAction*>()) {
    found += action->shortcut().isEmpty() ? 0 : 1;
  }
  EXPECT_EQ(found, keys.size()) << "R, Return and Space are the window's own keys";
  for (const auto& [name, key] : keys) {
    EXPECT_EQ(item(window(), name)->shortcut(), key) << name;
  }
}

TEST_F(OVMainMenuTest, EmptyDocumentHasNothingToUndoNorToReverse) {
  for (const char* name : {"Undo", "Redo", "Reverse Audio", "Open Recent"}) {
    const auto* const menu = window()->findChild<QMenu*>(name);
    EXPECT_FALSE(menu != nullptr ? menu->isEnabled() : isEnabled(name)) << name;
  }
  for (const char* name : {"New Recorder", "Open…", "Import…", "Save", "Save As…",
                           "Export Ringtone…", "Export Waveform Picture…", "Close", "Quit",
                           "Remove After Marker", "Remove Before Marker", "Record", "Play", "Stop",
                           "To Start", "To End", "Spectrum", "Documentation", "Diagnostics"}) {
    EXPECT_TRUE(isEnabled(name)) << name;
  }
}

TEST_F(OVMainMenuTest, FileOperationLeavesTheApplicationsItems) {
  const support::TemporaryFolder folder;
  const auto document = documentOf(window());
  recentPaths_ = {"/a.wav"};
  EXPECT_TRUE(openRecentMenu()->isEnabled());
  document->saveFileNamed(folder.file("take.wav"), 0);
  for (const char* name :
       {"Open…", "Import…", "Save", "Save As…", "Export Ringtone…", "Export Waveform Picture…",
        "Undo", "Redo", "Remove After Marker", "Remove Before Marker", "Reverse Audio", "Record",
        "Play", "Stop", "To Start", "To End"}) {
    EXPECT_FALSE(isEnabled(name)) << name;
  }
  EXPECT_FALSE(openRecentMenu()->isEnabled());
  for (const char* name : {"New Recorder", "Close", "Quit", "Spectrum", "Documentation"}) {
    EXPECT_TRUE(isEnabled(name)) << name;
  }
  awaitIdle(*document);
  EXPECT_TRUE(isEnabled("Save"));
  EXPECT_TRUE(openRecentMenu()->isEnabled());
}

TEST_F(OVMainMenuTest, DocumentWithoutStorageOffersWhatNeedsNone) {
  support::FailingTemporaryFiles files;
  files.failCreation(ENOSPC);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  for (const char* name : {"Import…", "Save", "Save As…", "Export Ringtone…",
                           "Export Waveform Picture…", "Remove After Marker", "Reverse Audio"}) {
    EXPECT_FALSE(isEnabled(name)) << name;
  }
  for (const char* name : {"New Recorder", "Open…", "Close", "Quit"}) {
    EXPECT_TRUE(isEnabled(name)) << name;
  }
}

TEST_F(OVMainMenuTest, ApplicationItemsCallTheirCommands) {
  for (const char* name : {"New Recorder", "Open…", "Quit", "Documentation",
                           "Recovered Recordings…", "Diagnostics", "About Orvo"}) {
    item(window(), name)->trigger();
  }
  EXPECT_THAT(called_, ElementsAre("new", "open", "quit", "documentation", "recovered",
                                   "diagnostics", "about"));
}

TEST_F(OVMainMenuTest, OpenRecentShowsNamesAndOpensPaths) {
  recentPaths_ = {"/music/salt & pepper.wav", "/b/<i>.wav"};
  const QMenu* const recent = openRecentMenu();
  ASSERT_EQ(recent->actions().size(), 2);
  EXPECT_EQ(recent->actions().at(0)->text(), "&1 salt && pepper.wav");
  EXPECT_EQ(recent->actions().at(1)->toolTip(), "/b/&lt;i&gt;.wav");
  recent->actions().at(1)->trigger();
  EXPECT_THAT(called_, ElementsAre("/b/<i>.wav"));
  recentPaths_.clear();
  EXPECT_THAT(openRecentMenu()->actions(), IsEmpty());
  EXPECT_FALSE(recent->isEnabled());
}

TEST_F(OVMainMenuTest, RecentFilesHaveTheKeysOneToNineAndZeroInTheirOrder) {
  for (int i = 1; i <= 11; ++i) {
    recentPaths_.push_back("/music/" + std::to_string(i) + ". take.wav");
  }
  QMenu* const recent = openRecentMenu();
  QStringList texts;
  for (const QAction* const action : recent->actions()) {
    texts << action->text();
  }
  ASSERT_EQ(texts.size(), 11);
  EXPECT_EQ(texts.at(0), "&1 1. take.wav");
  EXPECT_EQ(texts.at(8), "&9 9. take.wav");
  EXPECT_EQ(texts.at(9), "&0 10. take.wav");
  EXPECT_EQ(texts.at(10), "11. take.wav");
  for (const Qt::Key key : {Qt::Key_0, Qt::Key_2}) {
    recent->popup({});
    QTest::keyClick(recent, key);
    EXPECT_FALSE(recent->isVisible());
  }
  EXPECT_THAT(called_, ElementsAre("/music/10. take.wav", "/music/2. take.wav"));
}

TEST_F(OVMainMenuTest, CloseClosesItsWindow) {
  const QPointer<OVRecorderWindow> closed = window();
  item(closed, "Close")->trigger();
  EXPECT_TRUE(runMainLoopUntil([&] { return closed.isNull(); }));
  EXPECT_THAT(called_, IsEmpty());
}

}  // namespace
