// What is shown while a document is busy: the bar, its label, and the keyboard focus.
#include <atomic>

#include <QAccessible>
#include <QLabel>

#include "document/FileFixture.h"
#include "support/Gate.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

/// A document on a disk that stalls in the middle of a job until the test releases it.
class ProgressTest : public DocumentFileFixture {
 protected:
  ~ProgressTest() override { gate_.open(); }

  void stopAtTheFirstWrite() {
    files_.beforeWrites([this] { gate_.pass(); });
  }
  void stopAtTheFirstRead() {
    files_.beforeReads([this] { gate_.pass(); });
  }
  void letGo() {
    gate_.open();
    awaitIdle();
  }

  template <typename View = QWidget>
  View* view(const char* name) {
    return document_->window()->findChild<View*>(name);
  }
  bool isShown(const char* name) { return view(name)->isVisibleTo(document_->window()); }

  /// What the user reads and what a screen reader says; both are the same.
  std::string shownActivity() {
    EXPECT_TRUE(isShown("loadingPanel"));
    EXPECT_TRUE(isShown("loadingLabel"));
    EXPECT_TRUE(isShown("loadingIndicator"));
    const QString words = view<QLabel>("loadingLabel")->text();
    const auto* const accessible =
        QAccessible::queryAccessibleInterface(document_->loadingIndicator());
    EXPECT_EQ(accessible->text(QAccessible::Name), words);
    return words.toStdString();
  }
  void expectNothingShown() {
    EXPECT_FALSE(isShown("loadingPanel"));
    EXPECT_FALSE(isShown("loadingIndicator"));
  }

  support::FailingTemporaryFiles files_;
  platform::Installed<platform::TemporaryFiles>::Scope filesInstallation_{files_};
  support::Gate gate_;
};

TEST_F(ProgressTest, ANewWindowShowsNone) {
  openWindow();
  expectNothingShown();
}

TEST_F(ProgressTest, AnOpenedFileIsFirstLoadedAndThenDrawn) {
  openWindow();
  stopAtTheFirstWrite();
  document_->openFileNamed(writeFile("take.wav", ramp(10'000)));
  ASSERT_TRUE(gate_.awaitArrival());
  EXPECT_EQ(shownActivity(), "Loading");
  support::Gate reading;
  std::atomic<bool> isDrawn = false;
  files_.beforeReads([&] {
    isDrawn = true;
    reading.pass();
  });
  gate_.open();
  EXPECT_TRUE(runMainLoopUntil([&] { return isDrawn.load(); }));
  drainMainQueue();
  EXPECT_EQ(shownActivity(), "Drawing the waveform");
  reading.open();
  awaitIdle();
  expectNothingShown();
}

TEST_F(ProgressTest, AnImportIsToldFromAnOpen) {
  openWindow();
  stopAtTheFirstWrite();
  document_->importFile(nullptr);
  panels_->answerOpen({writeFile("take.wav", ramp(10'000))});
  EXPECT_TRUE(runMainLoopUntil([&] { return document_->isImport(); }));
  EXPECT_EQ(shownActivity(), "Importing");
  letGo();
  expectNothingShown();
}

TEST_F(ProgressTest, ASaveSaysThatItSaves) {
  openWindow();
  fill(ramp(10'000));
  stopAtTheFirstRead();
  document_->saveFileNamed(at("take.wav"), 0);
  EXPECT_EQ(shownActivity(), "Saving");
  letGo();
  expectNothingShown();
}

TEST_F(ProgressTest, AnExportIsToldFromASave) {
  openWindow();
  fill(ramp(10'000));
  stopAtTheFirstRead();
  document_->exportRingtone(nullptr);
  panels_->answerSave(at("ring.m4r"));
  EXPECT_EQ(shownActivity(), "Exporting");
  letGo();
  expectNothingShown();
}

TEST_F(ProgressTest, AnEditSaysThatTheWaveformIsDrawnAnew) {
  openWindow();
  recordChunks(4);
  settle();
  stopAtTheFirstRead();
  document_->setPlaybackPosition(kChunkFrames);
  document_->removeAfterMarker(nullptr);
  EXPECT_EQ(shownActivity(), "Drawing the waveform");
  letGo();
  expectNothingShown();
}

TEST_F(ProgressTest, AnImportThatCannotBeReadShowsNone) {
  openWindow();
  std::ofstream(at("letter.wav")) << "This is a letter, not a sound.\n";
  import(at("letter.wav"));
  expectNothingShown();
}

TEST_F(ProgressTest, TheControlThatHadTheKeyboardHasItAgainAfterwards) {
  openWindow();
  for (const char* const name : {"recButton", "nextButton", "wfView", "fftButton"}) {
    view(name)->setFocus(Qt::TabFocusReason);
    ASSERT_EQ(document_->window()->focusWidget(), view(name)) << name;
    saveTo(at("take.wav"));
    EXPECT_EQ(document_->window()->focusWidget(), view(name)) << name;
    open(writeFile("part.wav", ramp(100)));
    EXPECT_EQ(document_->window()->focusWidget(), view(name)) << name;
  }
}

TEST_F(ProgressTest, NoRingAppearsAroundAControlThatHadNone) {
  openWindow();
  auto* const waveform = view("wfView");
  waveform->setFocus(Qt::ActiveWindowFocusReason);  // as in a new window
  const QImage before = waveform->grab().toImage();
  saveTo(at("take.wav"));
  ASSERT_EQ(document_->window()->focusWidget(), waveform);
  EXPECT_EQ(waveform->grab().toImage(), before);
  waveform->clearFocus();
  waveform->setFocus(Qt::TabFocusReason);
  const QImage withRing = waveform->grab().toImage();
  ASSERT_NE(withRing, before);
  saveTo(at("take.wav"));
  EXPECT_EQ(waveform->grab().toImage(), withRing);
}

TEST_F(ProgressTest, AKeyboardThatWasMovedMeanwhileStaysWhereItIs) {
  openWindow();
  view("recButton")->setFocus(Qt::TabFocusReason);
  fill(ramp(10'000));
  stopAtTheFirstRead();
  document_->saveFileNamed(at("take.wav"), 0);
  EXPECT_EQ(document_->window()->focusWidget(), nullptr);
  auto* const other = new QWidget(document_->window());
  other->setFocusPolicy(Qt::TabFocus);
  other->show();
  other->setFocus(Qt::TabFocusReason);
  letGo();
  EXPECT_EQ(document_->window()->focusWidget(), other);
}

TEST_F(ProgressTest, WhereNothingHadTheKeyboardNothingHasItAfterwards) {
  openWindow();
  if (QWidget* const had = document_->window()->focusWidget()) {
    had->clearFocus();
  }
  saveTo(at("take.wav"));
  EXPECT_EQ(document_->window()->focusWidget(), nullptr);
}

}  // namespace
