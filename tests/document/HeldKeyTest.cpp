// Transport keys that are held while they lose their release or their button.
#include <array>
#include <utility>

#include "document/HeldPressFixture.h"
#include "support/fakes/FailingTemporaryFiles.h"

using HeldKeyTest = HeldPressFixture;

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
  holdMouse("recButton");
  press(Qt::Key_R);                       // is pressed already, so this changes nothing
  press(Qt::Key_R, Qt::ControlModifier);  // is a command's now
  expectShown("recButton", true, true);
  releaseMouse("recButton");
  EXPECT_TRUE(recording());
}

TEST_F(HeldKeyTest, AStrokeOnAButtonThatTheMouseHoldsDoesNothing) {
  openWindow();
  holdMouse("recButton");
  strike(Qt::Key_R);
  EXPECT_FALSE(recording());
  expectShown("recButton", true, true);
  releaseMouse("recButton");
  EXPECT_TRUE(recording());
}

TEST_F(HeldKeyTest, AKeyWhosePressWasTakenAwayDoesNotReleaseTheMouse) {
  openWindow();
  recordChunks(2);
  press(Qt::Key_Space);
  strike(Qt::Key_R);
  document_->pauseButton(nullptr);
  holdMouse("playButton");
  release(Qt::Key_Space);
  EXPECT_FALSE(playing());
  expectShown("playButton", true, true);
  releaseMouse("playButton");
  EXPECT_TRUE(playing());
}

TEST_F(HeldKeyTest, AKeyHeldThroughAPauseAtRestActs) {
  openWindow();
  recordChunks(2);
  press(Qt::Key_R);
  document_->pauseButton(nullptr);
  expectShown("recButton", true, true);
  release(Qt::Key_R);
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
}

TEST_F(HeldKeyTest, AKeyHeldThroughACutActs) {
  openWindow();
  recordChunks(2);
  press(Qt::Key_R);
  document_->removeAfterMarker(nullptr);
  settle();
  expectShown("recButton", true, true);
  release(Qt::Key_R);
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
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

TEST_F(HeldKeyTest, ARecordingTakesThePressFromPlayWhichItDisables) {
  openWindow();
  press(Qt::Key_Space);
  strike(Qt::Key_R);
  ASSERT_TRUE(recording());
  expectShown("playButton", false, false);
  release(Qt::Key_Space);  // went down on Play
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
  expectShown("playButton", false, false);
  strike(Qt::Key_Space);  // goes down on Record
  EXPECT_FALSE(recording());
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
  press(Qt::Key_Space, Qt::NoModifier, true);  // is Play's now
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
