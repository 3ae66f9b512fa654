// Transport keys that are held while they lose their release or their button.
#include <array>
#include <utility>

#include <QKeyEvent>

#include "document/FileFixture.h"
#include "support/fakes/FailingTemporaryFiles.h"

class HeldKeyTest : public DocumentFileFixture {
 protected:
  static constexpr auto kSwitches = std::to_array<std::pair<Qt::Key, const char*>>(
      {{Qt::Key_R, "recButton"}, {Qt::Key_Space, "playButton"}});

  void press(Qt::Key key, bool autoRepeat = false) { send(QEvent::KeyPress, key, autoRepeat); }
  void release(Qt::Key key) { send(QEvent::KeyRelease, key, false); }
  void strike(Qt::Key key) {
    press(key);
    release(key);
  }

  /// As when an alert or another window is shown.
  void loseTheKeyboard() {
    QEvent deactivate(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(document_->window(), &deactivate);
  }

  void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }

  bool recording() { return document_->recorder() && document_->recorder()->isRecording(); }
  bool playing() { return document_->player() && document_->player()->isPlaying(); }

  void expectShown(const char* name, bool on, bool highlighted) {
    EXPECT_EQ(button(name)->isOn(), on) << name;
    EXPECT_EQ(button(name)->isHighlighted(), highlighted) << name;
  }

  /// The transport is disabled until the main loop runs.
  void beginToSave() {
    document_->saveFileNamed(at("take.wav"), 0);
    ASSERT_FALSE(transportEnabled());
  }

 private:
  void send(QEvent::Type type, Qt::Key key, bool autoRepeat) {
    QKeyEvent event(type, key, Qt::NoModifier, QString(), autoRepeat);
    QCoreApplication::sendEvent(document_->window(), &event);
  }
};

// The window loses the keyboard -------------------------------------------------------------------

TEST_F(HeldKeyTest, ASwitchShowsItsOldStateAgainAndNothingStartsWhenTheKeyboardIsLost) {
  openWindow();
  recordChunks(4);
  for (const auto& [key, name] : kSwitches) {
    press(key);
    expectShown(name, true, true);
    loseTheKeyboard();
    expectShown(name, false, false);
    release(key);
    expectShown(name, false, false);
    EXPECT_FALSE(recording() || playing()) << name;
  }
}

TEST_F(HeldKeyTest, TheFirstClickAfterACancelledKeyActs) {
  openWindow();
  recordChunks(4);
  press(Qt::Key_Space);
  loseTheKeyboard();
  release(Qt::Key_Space);
  click("playButton");
  EXPECT_TRUE(playing());
  expectShown("playButton", true, false);
}

TEST_F(HeldKeyTest, TheFirstCommandAfterACancelledKeyActs) {
  openWindow();
  press(Qt::Key_R);
  loseTheKeyboard();
  release(Qt::Key_R);
  document_->recMenu(nullptr);
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
}

TEST_F(HeldKeyTest, TheNextStrokeAfterACancelledKeyActs) {
  openWindow();
  press(Qt::Key_R);
  loseTheKeyboard();
  release(Qt::Key_R);
  strike(Qt::Key_R);
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
}

TEST_F(HeldKeyTest, ACancelledReturnLeavesTheMarkerWhereItIs) {
  openWindow();
  recordChunks(2);
  document_->nextButton(nullptr);
  press(Qt::Key_Return);
  expectShown("prevButton", false, true);
  loseTheKeyboard();
  expectShown("prevButton", false, false);
  release(Qt::Key_Return);
  EXPECT_EQ(document_->playbackPosition(), length());
  strike(Qt::Key_Return);
  EXPECT_EQ(document_->playbackPosition(), 0U);
}

TEST_F(HeldKeyTest, ACancelledKeyLeavesARecordingRunningAndShown) {
  openWindow();
  pressRecord();
  for (const Qt::Key key : {Qt::Key_R, Qt::Key_Space}) {
    press(key);
    expectShown("recButton", false, true);
    loseTheKeyboard();
    expectShown("recButton", true, false);
    release(key);
    EXPECT_TRUE(recording());
  }
  EXPECT_FALSE(button("playButton")->isHighlighted());
}

TEST_F(HeldKeyTest, ACancelledSpaceLeavesPlaybackRunningAndShown) {
  openWindow();
  recordChunks(4);
  pressPlay();
  press(Qt::Key_Space);
  expectShown("playButton", false, true);
  loseTheKeyboard();
  expectShown("playButton", true, false);
  EXPECT_TRUE(playing());
}

TEST_F(HeldKeyTest, AKeyCancelledAfterItsRecordingEndedShowsRecordOff) {
  openWindow();
  pressRecord();
  press(Qt::Key_Space);
  queues_->fail("newInput", platform::kDeviceUnavailableStatus);
  queues_.input().failLate(platform::kDeviceLostStatus);
  ASSERT_TRUE(runMainLoopUntil([&] { return document_->recorder() == nullptr; }));
  loseTheKeyboard();  // to the alert about the failure
  expectShown("recButton", false, false);
  expectShown("playButton", false, false);
}

TEST_F(HeldKeyTest, TwoHeldKeysAreBothCancelled) {
  openWindow();
  press(Qt::Key_R);
  press(Qt::Key_Return);
  loseTheKeyboard();
  expectShown("recButton", false, false);
  expectShown("prevButton", false, false);
}

TEST_F(HeldKeyTest, AButtonThatTheMouseHoldsIsNotTheCancelledKeys) {
  openWindow();
  recordChunks(1);
  QTest::mousePress(button("recButton"), Qt::LeftButton);
  press(Qt::Key_Space);
  press(Qt::Key_R);  // is pressed already, so this changes nothing
  loseTheKeyboard();
  expectShown("recButton", true, true);
  expectShown("playButton", false, false);
  QTest::mouseRelease(button("recButton"), Qt::LeftButton);
  EXPECT_TRUE(recording());
}

// The button is disabled, or no longer the key's --------------------------------------------------

TEST_F(HeldKeyTest, AFileOperationTakesThePressFromEveryButton) {
  openWindow();
  recordChunks(2);
  for (const auto& [key, name] : kSwitches) {
    press(key);
    press(Qt::Key_Return);
    ASSERT_NO_FATAL_FAILURE(beginToSave());
    expectShown(name, false, false);
    expectShown("prevButton", false, false);
    release(key);
    release(Qt::Key_Return);
    awaitIdle();
    expectShown(name, false, false);
    EXPECT_FALSE(recording() || playing()) << name;
  }
}

TEST_F(HeldKeyTest, TheFirstStrokeAfterAFileOperationActs) {
  openWindow();
  recordChunks(2);
  press(Qt::Key_Space);
  ASSERT_NO_FATAL_FAILURE(beginToSave());
  release(Qt::Key_Space);
  awaitIdle();
  strike(Qt::Key_Space);
  EXPECT_TRUE(playing());
  expectShown("playButton", true, false);
}

TEST_F(HeldKeyTest, AFailedFileOperationLeavesNoSwitchOn) {
  openWindow();
  recordChunks(2);
  press(Qt::Key_Space);
  document_->saveFileNamed(at("no such folder/take.wav"), 0);
  ASSERT_FALSE(transportEnabled());
  release(Qt::Key_Space);
  awaitIdle();
  expectShown("playButton", false, false);
}

TEST_F(HeldKeyTest, AFileOperationTakesThePressOfTheMouseToo) {
  openWindow();
  recordChunks(2);
  QTest::mousePress(button("playButton"), Qt::LeftButton);
  ASSERT_NO_FATAL_FAILURE(beginToSave());
  expectShown("playButton", false, false);
  QTest::mouseRelease(button("playButton"), Qt::LeftButton);
  awaitIdle();
  expectShown("playButton", false, false);
  EXPECT_FALSE(playing());
}

TEST_F(HeldKeyTest, ARecordingTakesThePressFromPlayWhichItDisables) {
  openWindow();
  press(Qt::Key_Space);
  strike(Qt::Key_R);
  ASSERT_TRUE(recording());
  expectShown("playButton", false, false);
  release(Qt::Key_Space);  // as always while recording: stops it
  EXPECT_FALSE(recording());
  expectShown("playButton", false, false);
}

TEST_F(HeldKeyTest, APlaybackTakesThePressFromRecordWhichItDisables) {
  openWindow();
  recordChunks(4);
  press(Qt::Key_R);
  strike(Qt::Key_Space);
  ASSERT_TRUE(playing());
  expectShown("recButton", false, false);
  release(Qt::Key_R);
  EXPECT_TRUE(playing());
  document_->pauseButton(nullptr);
  expectShown("recButton", false, false);
}

TEST_F(HeldKeyTest, ASpaceHeldBeyondItsRecordingLetsGoOfRecord) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  pressRecord();
  capture(0.5F);
  press(Qt::Key_Space);
  files.fillUpAfter(0);
  capture(0.5F);
  ASSERT_TRUE(runMainLoopUntil([&] { return !recording(); }));
  settle();
  press(Qt::Key_Space, true);  // is Play's now
  expectShown("recButton", false, false);
  expectShown("playButton", true, true);
  loseTheKeyboard();
  expectShown("playButton", false, false);
  closeDocument();
}

TEST_F(HeldKeyTest, ASpaceReleasedAfterItsRecordingEndedLetsGoOfRecord) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  pressRecord();
  capture(0.5F);
  press(Qt::Key_Space);
  files.fillUpAfter(0);
  capture(0.5F);
  ASSERT_TRUE(runMainLoopUntil([&] { return !recording(); }));
  settle();
  release(Qt::Key_Space);
  expectShown("recButton", false, false);
  EXPECT_FALSE(playing());
  files.freeSpace();
  strike(Qt::Key_R);
  EXPECT_TRUE(recording());
  closeDocument();
}
