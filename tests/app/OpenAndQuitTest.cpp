
#include <gmock/gmock.h>
#include <QDropEvent>
#include <QFileOpenEvent>
#include <QMenu>
#include <QMimeData>
#include <QTranslator>
#include <QUrl>
#include <filesystem>
#include <fstream>

#include "app/AppFixture.h"
#include "app/OVApplicationEvents.h"
#include "audio/OVAQRecorder.h"
#include "audio/OVAudioFileReader.h"
#include "audio/OVAudioFileWriter.h"
#include "platform/desktop/FileUri.h"
#include "platform/files/TemporaryFiles.h"
#include "support/Gate.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Reply = VelmarAppDelegate::TerminateReply;

class OpenAndQuitTest : public AppFixture {
 protected:
  std::string at(const std::string& name) const { return folder_.file(name); }

  std::string writeFile(const std::string& name, std::uint64_t frames = 1000) {
    const std::vector<float> samples(2 * frames, 0.25F);
    const auto writer = OVAudioFileWriter::initWithFile(at(name), OVAudioFileWriter::kWave);
    EXPECT_EQ(writer->sinkData(samples.data(), samples.size() * sizeof(float)), frames * 8);
    EXPECT_TRUE(writer->close());
    return at(name);
  }

  static std::vector<std::string> titles() {
    std::vector<std::string> titles;
    for (const OVRecorderWindow* const window : windows()) {
      titles.push_back(window->title().toStdString());
    }
    return titles;
  }

  static void awaitAllIdle() {
    std::vector<std::shared_ptr<VLRecorderWindowController>> documents;  // windows may close
    for (OVRecorderWindow* const window : windows()) {
      documents.push_back(documentOf(window));
    }
    for (const auto& document : documents) {
      awaitIdle(*document);
    }
  }

  /// A window with unsaved audio.
  OVRecorderWindow* spawnEdited() {
    OVRecorderWindow* const window = spawn();
    const std::vector<float> samples(2000, 0.5F);
    documentOf(window)->buffer()->writeData(samples.data(), 0, 8000);
    window->setDocumentEdited(true);
    return window;
  }

  static void settleQueues() {
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
  }

  bool awaitQuit() {
    return runMainLoopUntil([&] { return quits_ == 1; });
  }

  support::TemporaryFolder folder_;
};

// Open ------------------------------------------------------------------------------------------

TEST_F(OpenAndQuitTest, LaunchingByOpeningTwoFilesShowsTwoWindowsAndNoEmptyOne) {
  delegate_.applicationWillFinishLaunching();
  EXPECT_TRUE(delegate_.applicationOpenFiles({writeFile("one.wav"), writeFile("two.wav")}));
  delegate_.applicationDidFinishLaunching();
  EXPECT_THAT(titles(), UnorderedElementsAre("Orvo - one.wav", "Orvo - two.wav"));
  awaitAllIdle();
}

TEST_F(OpenAndQuitTest, AFileIsOpenedInAWindowOfItsOwnUnedited) {
  OVRecorderWindow* const empty = spawn();
  const auto before = windows();
  EXPECT_TRUE(delegate_.applicationOpenFile(writeFile("take.wav")));
  OVRecorderWindow* const window = newcomer(before);
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  const auto document = documentOf(window);
  awaitIdle(*document);
  EXPECT_EQ(document->buffer()->bufferSizeInFrames(), 1000U);
  EXPECT_EQ(document->currentFilename(), at("take.wav"));
  EXPECT_EQ(document->currentFiletype(), -1);
  EXPECT_FALSE(window->isDocumentEdited());
  EXPECT_EQ(documentOf(empty)->buffer()->bufferSizeInFrames(), 0U);
}

TEST_F(OpenAndQuitTest, ARelativePathCountsFromTheWorkingFolder) {
  writeFile("take.wav");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  delegate_.applicationOpenFile("take.wav");
  std::filesystem::current_path(before);
  awaitAllIdle();
  EXPECT_EQ(documentOf(windows().at(0))->buffer()->bufferSizeInFrames(), 1000U);
  EXPECT_TRUE(runMainLoopUntil([&] { return !recent_.recentDocuments(1).empty(); }));
  EXPECT_THAT(recent_.recentDocuments(9), ElementsAre(at("take.wav")));
}

TEST_F(OpenAndQuitTest, TheOpenPanelOpensEachChosenFile) {
  OVRecorderWindow* const window = spawn();
  item(window, "Open…")->trigger();
  ASSERT_EQ(panels_->openPanels(), 1U);
  EXPECT_EQ(panels_->openPanel().title, "Open");
  EXPECT_TRUE(panels_->openPanel().allowsMultipleSelection);
  EXPECT_THAT(panels_->openPanel().fileTypes,
              ElementsAre("caf", "aif", "aiff", "wav", "mp3", "mp4", "m4a", "m4r", "aac"));
  panels_->answerOpen({writeFile("one.wav"), writeFile("two.wav")});
  EXPECT_EQ(windows().size(), 3U);
  item(window, "Open…")->trigger();
  panels_->answerOpen({});
  EXPECT_EQ(windows().size(), 3U);
  awaitAllIdle();
}

TEST_F(OpenAndQuitTest, TheOpenPanelBeginsInTheFolderOfTheWindowsFile) {
  item(spawn(), "Open…")->trigger();
  EXPECT_EQ(panels_->openPanel().directory, "") << "that of the last panel";
  panels_->answerOpen({});
  const auto before = windows();
  delegate_.applicationOpenFile(writeFile("take.wav"));
  OVRecorderWindow* const window = newcomer(before);
  ASSERT_NE(window, nullptr);
  awaitIdle(*documentOf(window));
  item(window, "Open…")->trigger();
  EXPECT_EQ(panels_->openPanel().directory, folder_.path());
  panels_->answerOpen({});
}

TEST_F(OpenAndQuitTest, DroppedFilesAreOpenedEachInAWindowOfItsOwn) {
  OVRecorderWindow* const window = spawn();
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(writeFile("one.wav"))),
                QUrl("https://orvo.example/"),
                QUrl::fromLocalFile(QString::fromStdString(writeFile("two.wav")))});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window, &drop);
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 3; }));
  awaitAllIdle();
}

TEST_F(OpenAndQuitTest, ADroppedFileIsOpenedByTheBytesOfItsName) {
  OVRecorderWindow* const window = spawn();
  const std::string name = "caf\xE9 100%41 \xFF.wav";  // not UTF-8, and no escape sequence
  QMimeData data;
  const std::string address = platform::fileUriOf(writeFile(name));
  data.setData("text/uri-list", QByteArray::fromStdString("# a list\r\n" + address + "\r\n"));
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window, &drop);
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 2; }));
  awaitAllIdle();
  EXPECT_THAT(services_->alerts(), IsEmpty());
  EXPECT_EQ(documentOf(newcomer({window}))->currentFilename(), at(name));
  EXPECT_EQ(documentOf(newcomer({window}))->buffer()->bufferSizeInFrames(), 1000U);
}

TEST_F(OpenAndQuitTest, WhatIsNoFileCannotBeDropped) {
  OVRecorderWindow* const window = spawn();
  QMimeData data;
  data.setText("a letter");
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  enter.ignore();
  QApplication::sendEvent(window, &enter);
  EXPECT_FALSE(enter.isAccepted());
}

TEST_F(OpenAndQuitTest, TheDesktopsOpenEventOpensItsFile) {
  std::vector<std::string> opened;
  OVApplicationEvents events(
      {.openFile = [&opened](const std::string& path) { opened.push_back(path); },
       .terminate = [] {}});
  QFileOpenEvent event(QStringLiteral("/tmp/take.wav"));
  EXPECT_TRUE(events.eventFilter(nullptr, &event));
  EXPECT_THAT(opened, ElementsAre("/tmp/take.wav"));
}

TEST_F(OpenAndQuitTest, OpenRecentListsTheLatestFilesAndOpensThem) {
  const std::string path = writeFile("salt & pepper.wav");
  delegate_.applicationOpenFile(path);
  OVRecorderWindow* const window = windows().at(0);
  auto* const recent = window->findChild<QMenu*>("Open Recent");
  ASSERT_NE(recent, nullptr);
  awaitAllIdle();
  EXPECT_TRUE(runMainLoopUntil([&] {
    Q_EMIT qobject_cast<QMenu*>(recent->parentWidget())->aboutToShow();
    return recent->actions().size() == 1;
  }));
  EXPECT_EQ(recent->actions().at(0)->text(), "&1 salt && pepper.wav");
  recent->actions().at(0)->trigger();
  EXPECT_EQ(windows().size(), 2U);
  awaitAllIdle();
}

TEST_F(OpenAndQuitTest, OpenRecentShowsANameInOneLine) {
  OVRecorderWindow* const window = spawn();
  recent_.noteNewRecentDocument("/music/a\nb\tc\u202Efdp.wav");
  auto* const recent = window->findChild<QMenu*>("Open Recent");
  EXPECT_TRUE(runMainLoopUntil([&] {
    Q_EMIT qobject_cast<QMenu*>(recent->parentWidget())->aboutToShow();
    return recent->actions().size() == 1;
  }));
  EXPECT_EQ(recent->actions().at(0)->text(), "&1 a b c fdp.wav");
  EXPECT_EQ(recent->actions().at(0)->toolTip(), "/music/a b c fdp.wav");
}

TEST_F(OpenAndQuitTest, ASavedTakeIsListedAndInTheMenuAtOnce) {
  OVRecorderWindow* const window = spawnEdited();
  documentOf(window)->saveFileNamed(at("take.wav"), 0);
  awaitAllIdle();
  EXPECT_TRUE(runMainLoopUntil([&] { return !recent_.recentDocuments(9).empty(); }));
  EXPECT_THAT(recent_.recentDocuments(9), ElementsAre(at("take.wav")));
  settleQueues();
  auto* const recent = window->findChild<QMenu*>("Open Recent");
  Q_EMIT qobject_cast<QMenu*>(recent->parentWidget())->aboutToShow();
  ASSERT_EQ(recent->actions().size(), 1) << "at the menu's first showing";
  EXPECT_EQ(recent->actions().at(0)->text(), "&1 take.wav");
}

TEST_F(OpenAndQuitTest, WhatCouldNotBeSavedAndWhatWasExportedIsNotListed) {
  OVRecorderWindow* const window = spawnEdited();
  documentOf(window)->saveFileNamed("/nowhere/take.wav", 0);
  awaitAllIdle();
  documentOf(window)->exportRingtone(nullptr);
  panels_->answerSave(at("ring.m4r"));
  awaitAllIdle();
  settleQueues();
  EXPECT_THAT(recent_.recentDocuments(9), IsEmpty());
}

// Files that cannot be opened -------------------------------------------------------------------

TEST_F(OpenAndQuitTest, OfFourFilesThatCannotBeOpenedOneEmptyWindowIsLeft) {
  std::vector<std::string> paths;
  for (const char* const name : {"one.wav", "two.mp3", "three.aiff", "four.m4a"}) {
    std::ofstream(at(name)) << "no sound";
    paths.push_back(at(name));
  }
  delegate_.applicationWillFinishLaunching();
  delegate_.applicationOpenFiles(paths);
  delegate_.applicationDidFinishLaunching();
  EXPECT_EQ(windows().size(), 4U);
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 1; }));
  awaitAllIdle();
  EXPECT_EQ(services_->alerts().size(), 4U);
  EXPECT_THAT(titles(), ElementsAre("Orvo - Unnamed"));
  OVRecorderWindow* const left = windows().at(0);
  EXPECT_TRUE(left->isVisible());
  EXPECT_TRUE(documentOf(left)->currentFilename().empty());
  EXPECT_EQ(documentOf(left)->currentFiletype(), -1);
  EXPECT_FALSE(left->isDocumentEdited());
}

TEST_F(OpenAndQuitTest, TheWindowOfAFileThatCannotBeOpenedStaysUntilTheAlertIsAnswered) {
  OVRecorderWindow* const empty = spawn();
  std::ofstream(at("bad.wav")) << "no sound";
  std::size_t whileAsked = 0;
  services_->answerAlertsWith([&whileAsked](const support::RecordedAlert&) {
    platform::mainQueue().sync([&whileAsked] { whileAsked = windows().size(); });
  });
  delegate_.applicationOpenFile(at("bad.wav"));
  EXPECT_TRUE(runMainLoopUntil([&] { return windows().size() == 1 && whileAsked > 0; }));
  EXPECT_EQ(whileAsked, 2U);
  EXPECT_EQ(windows().at(0), empty);
}

TEST_F(OpenAndQuitTest, AWindowThatStayedEmptyIsNotClosedByAFailedImportLater) {
  std::ofstream(at("bad.wav")) << "no sound";
  delegate_.applicationOpenFile(at("bad.wav"));
  awaitAllIdle();
  settleQueues();
  OVRecorderWindow* const left = windows().at(0);
  spawn();
  documentOf(left)->importFile(nullptr);
  panels_->answerOpen({at("bad.wav")});
  awaitAllIdle();
  settleQueues();
  EXPECT_EQ(services_->alerts().size(), 2U);
  EXPECT_TRUE(left->isVisible());
  EXPECT_EQ(windows().size(), 2U);
}

TEST_F(OpenAndQuitTest, ADamagedFileOfWhichSomethingWasReadKeepsItsWindow) {
  spawn();
  const std::string path = writeFile("cut.wav", 100'000);
  std::filesystem::resize_file(path, 100'000);
  delegate_.applicationOpenFile(path);
  awaitAllIdle();
  settleQueues();
  EXPECT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(titles(), UnorderedElementsAre("Orvo - Unnamed", "Orvo - cut.wav"));
}

TEST_F(OpenAndQuitTest, WithoutStorageFilesLeaveOneWindowAndTheAlertThatSaysWhy) {
  support::FailingTemporaryFiles files;
  files.failCreation(ENOENT);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  delegate_.applicationOpenFiles(
      {writeFile("one.wav"), writeFile("two.wav"), writeFile("three.wav")});
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 1; }));
  settleQueues();
  EXPECT_THAT(titles(), ElementsAre("Orvo - Unnamed"));
  EXPECT_TRUE(windows().at(0)->isVisible());
  EXPECT_EQ(services_->postedAlerts().size(), 1U);
  EXPECT_THAT(services_->postedAlerts().at(0).message, HasSubstr("There is no such folder."));
}

TEST_F(OpenAndQuitTest, AFileThatWasNotOpenedForLackOfStorageIsNotListed) {
  support::FailingTemporaryFiles files;
  files.failCreation(ENOENT);
  {
    const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
    delegate_.applicationOpenFile(writeFile("one.wav"));
  }
  delegate_.applicationOpenFile(writeFile("two.wav"));
  awaitAllIdle();
  EXPECT_TRUE(runMainLoopUntil([&] { return !recent_.recentDocuments(9).empty(); }));
  EXPECT_THAT(recent_.recentDocuments(9), ElementsAre(at("two.wav")));
}

TEST_F(OpenAndQuitTest, OpenRecentIsDisabledWithNothingToShow) {
  OVRecorderWindow* const window = spawn();
  auto* const recent = window->findChild<QMenu*>("Open Recent");
  Q_EMIT qobject_cast<QMenu*>(recent->parentWidget())->aboutToShow();
  EXPECT_FALSE(recent->isEnabled());
}

TEST_F(OpenAndQuitTest, AskedForAgainItShowsAWindowOnlyIfNoneIsVisible) {
  EXPECT_TRUE(delegate_.applicationShouldHandleReopen(false));
  EXPECT_EQ(windows().size(), 1U);
  EXPECT_TRUE(delegate_.applicationShouldHandleReopen(true));
  EXPECT_EQ(windows().size(), 1U);
}

TEST_F(OpenAndQuitTest, TheItemsOfADocumentFollowItsFileOperations) {
  OVRecorderWindow* const window = spawnEdited();
  EXPECT_TRUE(item(window, "Save")->isEnabled());
  documentOf(window)->saveFileNamed(at("take.wav"), 0);
  for (const char* const name :
       {"Save", "Save As…", "Import…", "Export Ringtone…", "Remove After Marker", "Record"}) {
    EXPECT_FALSE(item(window, name)->isEnabled()) << name;
  }
  awaitAllIdle();
  EXPECT_TRUE(item(window, "Save")->isEnabled());
}

TEST_F(OpenAndQuitTest, NothingIsOpenedFromAWindowWhoseFileOperationRuns) {
  delegate_.applicationOpenFile(writeFile("take.wav"));
  OVRecorderWindow* const window = windows().at(0);
  auto* const recent = window->findChild<QMenu*>("Open Recent");
  awaitAllIdle();
  EXPECT_TRUE(runMainLoopUntil([&] {
    Q_EMIT qobject_cast<QMenu*>(recent->parentWidget())->aboutToShow();
    return recent->isEnabled();
  }));
  EXPECT_TRUE(item(window, "Open…")->isEnabled());
  QAction* const latest = recent->actions().at(0);
  documentOf(window)->saveFileNamed(at("copy.wav"), 0);
  EXPECT_FALSE(item(window, "Open…")->isEnabled());
  EXPECT_FALSE(recent->isEnabled());
  Q_EMIT item(window, "Open…")->triggered();
  EXPECT_EQ(panels_->openPanels(), 0U);
  Q_EMIT latest->triggered();
  EXPECT_EQ(windows().size(), 1U);
  awaitAllIdle();
  EXPECT_TRUE(item(window, "Open…")->isEnabled());
  EXPECT_TRUE(recent->isEnabled());
}

TEST_F(OpenAndQuitTest, AFileCanBeOpenedFromAWindowWithoutStorage) {
  support::FailingTemporaryFiles files;
  files.failCreation(ENOSPC);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  OVRecorderWindow* const window = spawn();
  EXPECT_FALSE(item(window, "Save")->isEnabled());
  EXPECT_TRUE(item(window, "Open…")->isEnabled());
}

TEST_F(OpenAndQuitTest, DocumentationOpensTheHelpPageFromTheDisk) {
  item(spawn(), "Documentation")->trigger();
  ASSERT_EQ(desktop_.opened.size(), 1U);
  const QUrl page(QString::fromStdString(desktop_.opened[0]));
  EXPECT_TRUE(page.isLocalFile());
  EXPECT_TRUE(std::filesystem::is_regular_file(page.toLocalFile().toStdString()))
      << desktop_.opened[0];
  EXPECT_THAT(desktop_.opened[0], testing::EndsWith("/help/en/index.html"));
  EXPECT_THAT(services_->alerts(), IsEmpty());
}

TEST_F(OpenAndQuitTest, APageThatNoProgramOpensIsTold) {
  delegate_.openWebsite(nullptr);
  EXPECT_THAT(services_->alerts(), IsEmpty());
  desktop_.knowsPrograms = false;
  delegate_.openWebsite(nullptr);
  delegate_.openDocumentation(nullptr);
  EXPECT_EQ(services_->alerts().size(), 2U);
}

/// A language whose help page has a name that no line should show.
class OddHelpPage : public QTranslator {
 public:
  [[nodiscard]] QString translate(const char* context, const char* text, const char* disambiguation,
                                  int n) const override {
    return text == std::string_view("en/index.html")
               ? QStringLiteral("x\ny\u202E.html")
               : QTranslator::translate(context, text, disambiguation, n);
  }
  [[nodiscard]] bool isEmpty() const override { return false; }
};

TEST_F(OpenAndQuitTest, ThePathOfAMissingPageStandsInOneLine) {
  OddHelpPage odd;
  ASSERT_TRUE(QCoreApplication::installTranslator(&odd));
  delegate_.openDocumentation(nullptr);
  ASSERT_EQ(services_->alerts().size(), 1U);
  EXPECT_THAT(services_->alerts()[0].message,
              HasSubstr("/x y .html is missing. Install Orvo again."));
}

// Quit ------------------------------------------------------------------------------------------

TEST_F(OpenAndQuitTest, CancelKeepsTheProgramAndALaterQuitAsksAgain) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawnEdited();
  item(window, "Quit")->trigger();
  ASSERT_EQ(panels_->sheets(), 1U);
  EXPECT_TRUE(delegate_.isTerminating());
  panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  EXPECT_FALSE(delegate_.isTerminating());
  EXPECT_TRUE(window->isVisible());

  item(window, "Quit")->trigger();
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(awaitQuit());
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(OpenAndQuitTest, SaveQuitsWhenTheFileIsComplete) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawnEdited();
  item(window, "Quit")->trigger();
  panels_->answerSheet(VLRecorderWindowController::kSave);
  panels_->answerSave(at("take.wav"));
  EXPECT_TRUE(awaitQuit());
  EXPECT_EQ(OVAudioFileReader::initWithFile(at("take.wav"))->fileSizeInFrames(), 1000);
}

TEST_F(OpenAndQuitTest, ASaveThatFailsEndsTheQuit) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawnEdited();
  item(window, "Quit")->trigger();
  panels_->answerSheet(VLRecorderWindowController::kSave);
  panels_->answerSave(at("gone/take.wav"));
  EXPECT_TRUE(runMainLoopUntil([&] { return !delegate_.isTerminating(); }));
  EXPECT_TRUE(window->isVisible());
  EXPECT_TRUE(window->isDocumentEdited());
  EXPECT_EQ(services_->alerts().size(), 1U);
}

TEST_F(OpenAndQuitTest, EachOfSeveralEditedWindowsAsks) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  spawnEdited();
  spawn();
  delegate_.terminate();
  ASSERT_EQ(panels_->sheets(), 2U);
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 2; }));
  EXPECT_EQ(quits_, 0);
  EXPECT_TRUE(delegate_.isTerminating());
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(awaitQuit());
}

TEST_F(OpenAndQuitTest, AWindowThatBecomesEditedDuringTheQuitIsAskedAsWell) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  OVRecorderWindow* const later = spawn();
  delegate_.terminate();
  ASSERT_EQ(panels_->sheets(), 1U);
  later->setDocumentEdited(true);
  EXPECT_TRUE(runMainLoopUntil([&] { return panels_->sheets() == 2; }));
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(awaitQuit());
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(OpenAndQuitTest, CancelInAWindowThatBecameEditedDuringTheQuitEndsIt) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  OVRecorderWindow* const later = spawn();
  delegate_.terminate();
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  later->setDocumentEdited(true);
  ASSERT_TRUE(runMainLoopUntil([&] { return panels_->sheets() == 1; }));
  panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  EXPECT_FALSE(delegate_.isTerminating());
  EXPECT_TRUE(later->isVisible());
  EXPECT_EQ(quits_, 0);
}

TEST_F(OpenAndQuitTest, AWindowIsAskedOnceWhileTheQuitWaits) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const asked = spawnEdited();
  OVRecorderWindow* const later = spawn();
  delegate_.terminate();
  asked->showMinimized();  // another question would restore it
  later->setDocumentEdited(true);
  ASSERT_TRUE(runMainLoopUntil([&] { return panels_->sheets() == 2; }));
  EXPECT_TRUE(asked->isMinimized());
}

TEST_F(OpenAndQuitTest, CancelInOneOfTwoWindowsKeepsItAndTheProgram) {
  answerQuestionsWith(std::nullopt);
  spawnEdited();
  spawnEdited();
  delegate_.terminate();
  panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  EXPECT_FALSE(delegate_.isTerminating());
  panels_->answerSheet(VLRecorderWindowController::kDontSave);
  EXPECT_TRUE(runMainLoopUntil([] { return windows().size() == 1; }));
  EXPECT_EQ(quits_, 0);
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(OpenAndQuitTest, AnEditedWindowWithAPanelEndsTheQuit) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawnEdited();
  item(window, "Import…")->trigger();
  delegate_.terminate();
  EXPECT_EQ(panels_->sheets(), 0U);
  EXPECT_FALSE(delegate_.isTerminating());
  panels_->answerOpen({});
  delegate_.terminate();
  EXPECT_EQ(panels_->sheets(), 1U);
}

TEST_F(OpenAndQuitTest, EditedWindowsAskInOrderUnlessOneOfThemHasAPanel) {
  answerQuestionsWith(std::nullopt);
  std::vector<OVRecorderWindow*> edited;
  for (int i = 0; i < 5; ++i) {
    edited.push_back(spawnEdited());
    documentOf(edited.back())->setCurrentFilename(at(std::to_string(i)));
  }
  item(edited[2], "Import…")->trigger();
  delegate_.terminate();
  EXPECT_FALSE(delegate_.isTerminating());
  EXPECT_EQ(panels_->sheets(), 0U);
  panels_->answerOpen({});
  delegate_.terminate();
  std::vector<std::string> asked;
  while (panels_->sheets() > 0) {
    asked.push_back(panels_->sheet().title.toStdString());
    panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  }
  // In the order in which the windows were created.
  EXPECT_THAT(asked, ElementsAre(HasSubstr("“0”"), HasSubstr("“1”"), HasSubstr("“2”"),
                                 HasSubstr("“3”"), HasSubstr("“4”")));
  EXPECT_EQ(quits_, 0);
}

TEST_F(OpenAndQuitTest, AMinimisedWindowIsShownWithItsQuestion) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const minimised = spawnEdited();
  OVRecorderWindow* const front = spawnEdited();
  minimised->showMinimized();
  ASSERT_TRUE(runMainLoopUntil([&] { return minimised->isMinimized(); }));
  item(front, "Quit")->trigger();
  EXPECT_EQ(panels_->sheets(), 2U);
  EXPECT_FALSE(minimised->isMinimized());
}

TEST_F(OpenAndQuitTest, TheTerminationIsCheckedThirtyTimesASecond) {
  answerQuestionsWith(std::nullopt);
  EXPECT_EQ(delegate_.terminationTimer(), nullptr);
  spawnEdited();
  delegate_.terminate();
  ASSERT_NE(delegate_.terminationTimer(), nullptr);
  EXPECT_DOUBLE_EQ(delegate_.terminationTimer()->intervalInSeconds(), 0.033);
  delegate_.terminate();  // adds no second timer
  panels_->answerSheet(VLRecorderWindowController::kCancelClosing);
  EXPECT_EQ(delegate_.terminationTimer(), nullptr);
}

TEST_F(OpenAndQuitTest, AFileThatIsBeingOpenedDoesNotHoldTheSession) {
  delegate_.applicationOpenFile(writeFile("long.wav", 100'000));
  EXPECT_TRUE(delegate_.applicationMayEndSession());
  awaitAllIdle();
}

TEST_F(OpenAndQuitTest, AnAlertOnItsWayIsWaitedFor) {
  bool pending = true;
  delegate_.setAlertsPendingCheck([&pending] { return pending; });
  spawn();
  delegate_.terminate();
  EXPECT_TRUE(runMainLoopUntil([] { return windows().empty(); }));
  EXPECT_TRUE(delegate_.isTerminating());
  EXPECT_EQ(quits_, 0);
  pending = false;
  EXPECT_TRUE(awaitQuit());
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(OpenAndQuitTest, TheDesktopsQuitAsksAsTheCommandDoes) {
  int asked = 0;
  OVApplicationEvents events(
      {.openFile = [](const std::string&) {}, .terminate = [&] { ++asked; }});
  QEvent quit(QEvent::Quit);
  EXPECT_TRUE(events.eventFilter(nullptr, &quit));
  EXPECT_EQ(asked, 1);
}

TEST_F(OpenAndQuitTest, WhatIsNoPathIsToldAndNotACrash) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.makeFolder("gone"));
  std::filesystem::remove(at("gone"));
  delegate_.applicationOpenFiles({"", "take.wav"});
  std::filesystem::current_path(before);
  awaitAllIdle();
  EXPECT_EQ(services_->alerts().size(), 2U);
}

TEST_F(OpenAndQuitTest, QuittingWhileRecordingPausesAndAsks) {
  answerQuestionsWith(std::nullopt);
  OVRecorderWindow* const window = spawn();
  item(window, "Record")->trigger();
  delegate_.terminate();
  EXPECT_EQ(panels_->sheets(), 1U);
  EXPECT_FALSE(documentOf(window)->recorder()->isRecording());
}

TEST_F(OpenAndQuitTest, AWindowThatIsJustBeingSavedIsWaitedFor) {
  OVRecorderWindow* const window = spawnEdited();
  window->setDocumentEdited(false);
  documentOf(window)->saveFileNamed(at("copy.wav"), 0);
  delegate_.terminate();
  EXPECT_EQ(quits_, 0);
  EXPECT_TRUE(awaitQuit());
  EXPECT_EQ(OVAudioFileReader::initWithFile(at("copy.wav"))->fileSizeInFrames(), 1000);
}

// At once: after the piece of work that is running.
TEST_F(OpenAndQuitTest, QuittingWhileAFileIsLoadedEndsAtOnce) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  support::Gate gate;
  files.beforeWrites([&gate] { gate.pass(); });
  delegate_.applicationOpenFile(writeFile("long.wav", 3'000'000));
  ASSERT_TRUE(gate.awaitArrival());
  delegate_.terminate();
  EXPECT_EQ(quits_, 1);
  gate.open();
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_EQ(files.writes(), 1U);
}

TEST_F(OpenAndQuitTest, QuittingWhileTheWaveformOfALoadedFileIsBuiltEndsAtOnce) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  support::Gate gate;
  files.beforeReads([&gate] { gate.pass(); });
  delegate_.applicationOpenFile(writeFile("long.wav", 3'000'000));
  const auto document = documentOf(windows().at(0));
  ASSERT_TRUE(runMainLoopUntil([&] { return document->isRenderingWaveform(); }));
  ASSERT_TRUE(gate.awaitArrival());
  delegate_.terminate();
  EXPECT_EQ(quits_, 1);
  gate.open();
  EXPECT_TRUE(awaitGlobalQueue());
  EXPECT_EQ(files.reads(), 1U);
}

}  // namespace
