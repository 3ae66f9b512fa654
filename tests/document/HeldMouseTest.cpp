// Transport buttons that the mouse holds while something takes its release away, or the button.
#include "document/HeldPressFixture.h"

using HeldMouseTest = HeldPressFixture;

TEST_F(HeldMouseTest, ARecordingThatEndsByItselfTakesThePressFromRecord) {
  openWindow();
  pressRecord();
  capture(0.5F);
  holdMouse("recButton");
  expectShown("recButton", false, true);
  document_->pauseButton(nullptr);
  expectShown("recButton", false, false);
  dragOutAndRelease("recButton");
  expectShown("recButton", false, false);
  strike(Qt::Key_R);
  EXPECT_TRUE(recording());
}

TEST_F(HeldMouseTest, AReleaseAfterTheRecordingEndedByItselfBeginsNothing) {
  openWindow();
  pressRecord();
  holdMouse("recButton");
  document_->pauseButton(nullptr);
  releaseMouse("recButton");
  EXPECT_FALSE(recording());
  expectShown("recButton", false, false);
}

TEST_F(HeldMouseTest, ASwitchIsReleasedWhenTheKeyboardIsLostAndTheNextClickActs) {
  openWindow();
  recordChunks(4);
  for (const auto& [key, name] : kSwitches) {
    holdMouse(name);
    expectShown(name, true, true);
    loseTheKeyboard();
    expectShown(name, false, false);
    releaseMouse(name);
    EXPECT_FALSE(recording() || playing()) << name;
    click(name);
    EXPECT_TRUE(recording() || playing()) << name;
    document_->pauseButton(nullptr);
  }
}

TEST_F(HeldMouseTest, TheFirstCommandAfterALostReleaseActs) {
  openWindow();
  holdMouse("recButton");
  loseTheKeyboard();
  document_->recMenu(nullptr);
  EXPECT_TRUE(recording());
  expectShown("recButton", true, false);
}

TEST_F(HeldMouseTest, APushButtonIsReleasedWithoutActingWhenTheKeyboardIsLost) {
  openWindow();
  recordChunks(2);
  document_->nextButton(nullptr);
  holdMouse("prevButton");
  loseTheKeyboard();
  expectShown("prevButton", false, false);
  releaseMouse("prevButton");
  EXPECT_EQ(document_->playbackPosition(), length());
}

TEST_F(HeldMouseTest, AFileOperationTakesThePressAlsoFromAReleaseThatComesAfterIt) {
  openWindow();
  recordChunks(2);
  for (const auto& [key, name] : kSwitches) {
    holdMouse(name);
    ASSERT_NO_FATAL_FAILURE(beginToSave());
    expectShown(name, false, false);
    awaitIdle();
    releaseMouse(name);
    expectShown(name, false, false);
    EXPECT_FALSE(recording() || playing()) << name;
  }
}

TEST_F(HeldMouseTest, AReleaseAfterAFileOperationMovesNothing) {
  openWindow();
  recordChunks(2);
  holdMouse("prevButton");
  ASSERT_NO_FATAL_FAILURE(beginToSave());
  awaitIdle();
  ASSERT_EQ(document_->recordingPosition(), length());
  releaseMouse("prevButton");
  EXPECT_EQ(document_->recordingPosition(), length());
}

TEST_F(HeldMouseTest, AFileOperationTakesThePressFromAReleaseThatComesMeanwhile) {
  openWindow();
  recordChunks(2);
  holdMouse("playButton");
  ASSERT_NO_FATAL_FAILURE(beginToSave());
  releaseMouse("playButton");
  awaitIdle();
  expectShown("playButton", false, false);
  EXPECT_FALSE(playing());
}

TEST_F(HeldMouseTest, ToTheStartIsPressedBeyondTheEndOfARecording) {
  openWindow();
  recordChunks(2);
  pressRecord();
  capture(0.5F);
  holdMouse("prevButton");
  document_->stopButton(nullptr);
  releaseMouse("prevButton");
  EXPECT_EQ(document_->recordingPosition(), 0U);
}

TEST_F(HeldMouseTest, ACommandActsOnTheTransportAlthoughTheMouseShowsTheButtonTurned) {
  openWindow();
  recordChunks(4);
  for (const auto& [key, name] : kSwitches) {
    const auto command = [this, rec = key == Qt::Key_R] {
      rec ? document_->recMenu(nullptr) : document_->playMenu(nullptr);
    };
    holdMouse(name);
    command();
    EXPECT_TRUE(recording() || playing()) << name;
    expectShown(name, true, false);
    releaseMouse(name);
    EXPECT_TRUE(recording() || playing()) << name;
    holdMouse(name);
    command();
    EXPECT_FALSE(recording() || playing()) << name;
    expectShown(name, false, false);
    releaseMouse(name);
    EXPECT_FALSE(recording() || playing()) << name;
  }
}
