#include "app/VelmarAppDelegate.h"

#include <filesystem>
#include <fstream>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTest>

#include "app/AppFixture.h"
#include "audio/OVAudioFileWriter.h"
#include "controls/buttons/OVTransportButton.h"
#include "storage/OVAudioBuffer.h"
#include "support/TemporaryFolder.h"

class VelmarAppDelegateTest : public AppFixture {};

TEST_F(VelmarAppDelegateTest, LaunchingWithoutFilesShowsOneEmptyWindow) {
  delegate_.applicationWillFinishLaunching();
  EXPECT_TRUE(windows().empty());
  delegate_.applicationDidFinishLaunching();
  ASSERT_EQ(windows().size(), 1u);
  EXPECT_TRUE(windows()[0]->isVisible());
}

TEST_F(VelmarAppDelegateTest, AFreshOneWantsAnEmptyWindowAndAFileThatWasOpenedNone) {
  delegate_.applicationOpenFile("/nowhere/gone.wav");
  delegate_.applicationDidFinishLaunching();
  EXPECT_EQ(windows().size(), 1u);
  delegate_.awakeFromNib();
  delegate_.applicationDidFinishLaunching();
  EXPECT_EQ(windows().size(), 2u);
}

TEST_F(VelmarAppDelegateTest, LinesGoToTheConsoleInTheDebugWindow) {
  EXPECT_EQ(delegate_.debugWindow(), nullptr);
  EXPECT_EQ(delegate_.debugConsole(), nullptr);
  delegate_.logToConsole("one");
  delegate_.logToConsole("two");
  ASSERT_NE(delegate_.debugConsole(), nullptr);
  EXPECT_EQ(delegate_.debugConsole()->toPlainText(), "one\ntwo");
  EXPECT_TRUE(delegate_.debugConsole()->isReadOnly());
  EXPECT_TRUE(delegate_.debugWindow()->isAncestorOf(delegate_.debugConsole()));
  EXPECT_FALSE(delegate_.debugWindow()->isVisible());
  delegate_.showDiagnostics();
  EXPECT_TRUE(delegate_.debugWindow()->isVisible());
}

TEST_F(VelmarAppDelegateTest, ANameWithALineBreakMakesNoLineOfTheConsole) {
  delegate_.logToConsole("one \"a\nb\u202E.wav\"");
  EXPECT_EQ(delegate_.debugConsole()->toPlainText(), "one \"a b .wav\"");
}

TEST_F(VelmarAppDelegateTest, AConsoleThatIsSetGetsTheLines) {
  auto window = std::make_unique<QWidget>();
  auto* const shown = window.get();
  auto* const console = new QPlainTextEdit(shown);
  delegate_.setDebugWindow(std::move(window));
  delegate_.setDebugConsole(console);
  delegate_.logToConsole("one");
  EXPECT_EQ(console->toPlainText(), "one");
  EXPECT_EQ(delegate_.debugWindow(), shown);
}

TEST_F(VelmarAppDelegateTest, QuittingWithNoWindowsOrNoneEditedIsAnsweredAtOnce) {
  EXPECT_EQ(delegate_.applicationShouldTerminate(), VelmarAppDelegate::TerminateReply::now);
  spawn();
  EXPECT_EQ(delegate_.applicationShouldTerminate(), VelmarAppDelegate::TerminateReply::now);
  delegate_.terminate();
  EXPECT_EQ(quits_, 1);
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(VelmarAppDelegateTest, QuittingWithAnEditedWindowClosesItAndQuitsOnceNoneIsEdited) {
  QPointer<OVRecorderWindow> window = spawn();
  window->setDocumentEdited(true);
  EXPECT_EQ(delegate_.applicationShouldTerminate(), VelmarAppDelegate::TerminateReply::cancel);
  EXPECT_TRUE(delegate_.isTerminating());
  EXPECT_TRUE(runMainLoopUntil([&] { return quits_ == 1; }));
  EXPECT_TRUE(runMainLoopUntil([&] { return window.isNull(); }));
  EXPECT_FALSE(delegate_.isTerminating());
}

TEST_F(VelmarAppDelegateTest, ACancelledQuitStopsThePollingAndALaterOneStartsItAgain) {
  spawn()->setDocumentEdited(true);
  ASSERT_EQ(delegate_.applicationShouldTerminate(), VelmarAppDelegate::TerminateReply::cancel);
  delegate_.cancelTermination();
  EXPECT_FALSE(delegate_.isTerminating());
  spawn()->setDocumentEdited(true);
  EXPECT_EQ(delegate_.applicationShouldTerminate(), VelmarAppDelegate::TerminateReply::cancel);
  EXPECT_TRUE(delegate_.isTerminating());
  delegate_.cancelTermination();
}

TEST_F(VelmarAppDelegateTest, RegisteredTemporaryFilesAreDeletedAtTheEndAlsoThoseAlreadyGone) {
  const QTemporaryDir folder;
  const std::string kept = folder.filePath("kept").toStdString();
  const std::string gone = folder.filePath("gone").toStdString();
  std::ofstream(kept) << "x";
  delegate_.applicationWillFinishLaunching();
  delegate_.registerTempFile(kept);
  delegate_.registerTempFile(gone);
  delegate_.applicationWillTerminate();
  EXPECT_FALSE(std::filesystem::exists(kept));
  EXPECT_EQ(delegate_.tempfiles().size(), 2u);  // the list only grows
}

TEST_F(VelmarAppDelegateTest, TheSpectrumItemIsCheckedWhileTheSpectrumIsShown) {
  OVRecorderWindow* const window = spawn();
  QAction* const spectrum = item(window, "Spectrum");
  ASSERT_NE(spectrum, nullptr);
  EXPECT_TRUE(spectrum->isCheckable());
  EXPECT_FALSE(spectrum->isChecked());
  const int height = window->height();
  spectrum->trigger();
  EXPECT_TRUE(spectrum->isChecked());
  EXPECT_TRUE(runMainLoopUntil([&] { return window->height() == height + 200; }));

  window->findChild<OVTrackingButton*>("fftButton")->performClick();
  auto* const view = qobject_cast<QMenu*>(spectrum->associatedObjects().value(0));
  ASSERT_NE(view, nullptr);
  Q_EMIT view->aboutToShow();
  EXPECT_FALSE(spectrum->isChecked());
  EXPECT_TRUE(runMainLoopUntil([&] { return window->height() == height; }));
}

TEST_F(VelmarAppDelegateTest, ClosingTheWindowWhileRecordingAndQuittingLeavesNothingRunning) {
  OVRecorderWindow* const window = spawn();
  item(window, "Record")->trigger();
  delegate_.terminate();
  EXPECT_TRUE(runMainLoopUntil([&] { return quits_ == 1; }));
  EXPECT_TRUE(runMainLoopUntil([&] { return queues_->queuesAlive == 0; }));
}

// Menus -----------------------------------------------------------------------------------------

TEST_F(VelmarAppDelegateTest, EveryWindowHasTheMenusAndSaysWhatCanBeUndone) {
  OVRecorderWindow* const window = spawn();
  QStringList titles;
  for (const QAction* const action : window->menuBar()->actions()) {
    titles << action->text();
  }
  EXPECT_EQ(titles, QStringList({"&File", "&Edit", "&Transport", "&View", "&Help"}));
  EXPECT_FALSE(item(window, "Undo")->isEnabled());
  EXPECT_FALSE(item(window, "Reverse Audio")->isEnabled());

  item(window, "Record")->trigger();
  item(window, "Record")->trigger();
  EXPECT_TRUE(item(window, "Undo")->isEnabled());
  EXPECT_EQ(item(window, "Undo")->text().remove(u'&'), "Undo Record");
  item(window, "Undo")->trigger();
  EXPECT_FALSE(item(window, "Undo")->isEnabled());
  EXPECT_EQ(item(window, "Undo")->text().remove(u'&'), "Undo");
  EXPECT_EQ(item(window, "Redo")->text().remove(u'&'), "Redo Record");
}

TEST_F(VelmarAppDelegateTest, TheMenuNamesEveryActionThatCanBeUndoneAndRedone) {
  OVRecorderWindow* const window = spawn();
  const auto document = documentOf(window);
  const auto expectUndoAndRedoOf = [&](const QString& action) {
    EXPECT_EQ(item(window, "Undo")->text().remove(u'&'), "Undo " + action);
    EXPECT_TRUE(item(window, "Undo")->isEnabled());
    item(window, "Undo")->trigger();
    EXPECT_EQ(item(window, "Redo")->text().remove(u'&'), "Redo " + action);
    EXPECT_TRUE(item(window, "Redo")->isEnabled());
    item(window, "Redo")->trigger();
    EXPECT_EQ(item(window, "Undo")->text().remove(u'&'), "Undo " + action);
    EXPECT_EQ(item(window, "Redo")->text().remove(u'&'), "Redo");
    EXPECT_FALSE(item(window, "Redo")->isEnabled());
  };
  item(window, "Record")->trigger();
  item(window, "Record")->trigger();
  expectUndoAndRedoOf("Record");
  item(window, "Remove After Marker")->trigger();
  expectUndoAndRedoOf("Remove After Marker");
  item(window, "Remove Before Marker")->trigger();
  expectUndoAndRedoOf("Remove Before Marker");

  const support::TemporaryFolder folder;
  const std::string path = folder.file("part.wav");
  ASSERT_TRUE(OVAudioFileWriter::initWithFile(path, 0)->close());
  item(window, "Import…")->trigger();
  panels_->answerOpen({path});
  awaitIdle(*document);
  expectUndoAndRedoOf("Import File");
}

TEST_F(VelmarAppDelegateTest, ReverseAudioIsEnabledAsSoonAsADocumentIsKeptInMemory) {
  OVRecorderWindow* const window = spawn();
  const auto document = documentOf(window);
  const auto memory = OVAudioBuffer::init();
  document->setBuffer(memory);
  EXPECT_TRUE(item(window, "Reverse Audio")->isEnabled());
  const std::vector<float> samples = {0.1F, 0.2F, 0.3F, 0.4F};
  memory->writeData(samples.data(), 0, 16);
  item(window, "Reverse Audio")->trigger();
  std::vector<float> read(4);
  EXPECT_EQ(memory->readDataInto(read.data(), 16, 0).byteCount, 16u);
  EXPECT_EQ(read, (std::vector{0.4F, 0.3F, 0.2F, 0.1F}));
  EXPECT_EQ(item(window, "Undo")->text().remove(u'&'), "Undo Reverse Audio");
  item(window, "Undo")->trigger();
  EXPECT_EQ(item(window, "Redo")->text().remove(u'&'), "Redo Reverse Audio");
  EXPECT_EQ(memory->readDataInto(read.data(), 16, 0).byteCount, 16u);
  EXPECT_EQ(read, samples);
}

TEST_F(VelmarAppDelegateTest, NewRecorderOpensAnotherWindowOfItsOwn) {
  OVRecorderWindow* const first = spawn();
  item(first, "New Recorder")->trigger();
  ASSERT_EQ(windows().size(), 2u);
  item(first, "Record")->trigger();
  for (OVRecorderWindow* const window : windows()) {
    EXPECT_EQ(window->isDocumentEdited(), window == first);
  }
}

TEST_F(VelmarAppDelegateTest, TheTransportItemsShowTheWindowsKeysWithoutTakingThem) {
  OVRecorderWindow* const window = spawn();
  for (const char* name : {"Record", "Play", "To Start"}) {
    EXPECT_TRUE(item(window, name)->shortcut().isEmpty());
    EXPECT_TRUE(item(window, name)->text().contains('\t'));
  }
}

TEST_F(VelmarAppDelegateTest, KeysReachTheTransportThroughTheWindow) {
  OVRecorderWindow* const window = spawn();
  auto* const rec = window->findChild<OVTransportButton*>("recButton");
  QTest::keyPress(window, Qt::Key_R);
  EXPECT_TRUE(rec->isHighlighted());
  QTest::keyRelease(window, Qt::Key_R);
  EXPECT_TRUE(rec->isOn());
  EXPECT_FALSE(rec->isHighlighted());
  QTest::keyClick(window, Qt::Key_Space);
  EXPECT_FALSE(rec->isOn());
}
