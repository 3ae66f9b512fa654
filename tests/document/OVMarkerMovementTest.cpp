#include "document/OVMarkerMovement.h"

#include <cmath>

#include <QAccessible>

#include "document/DocumentFixture.h"
#include "support/fakes/SparseTemporaryFiles.h"

namespace {

constexpr std::uint64_t kSecond = 44100;
constexpr std::uint64_t kTenth = 4410;

class OVMarkerMovementTest : public DocumentFixture {
 protected:
  OVWaveFormView* waveform() { return document_->window()->findChild<OVWaveFormView*>("wfView"); }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(waveform(), key, modifiers);
  }
  void moveTo(std::uint64_t frame) {
    document_->setPlaybackPosition(frame);
    document_->setRecordingPosition(frame);
  }
};

}  // namespace

TEST_F(OVMarkerMovementTest, ArrowsMoveTheMarkerByASecond) {
  openWindow();
  recordChunks(44);
  moveTo(50000);
  press(Qt::Key_Right);
  EXPECT_EQ(document_->playbackPosition(), 50000 + kSecond);
  press(Qt::Key_Left);
  press(Qt::Key_Left);
  EXPECT_EQ(document_->playbackPosition(), 50000 - kSecond);
}

TEST_F(OVMarkerMovementTest, WithShiftTheyMoveItByATenthOfASecond) {
  openWindow();
  recordChunks(44);
  moveTo(50000);
  press(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(document_->playbackPosition(), 50000 + kTenth);
  press(Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(document_->playbackPosition(), 50000U);
}

TEST_F(OVMarkerMovementTest, WithCtrlTheyMoveItByTheTimeOfADevicePixel) {
  openWindow();
  recordChunks(44);
  moveTo(50000);
  const double pixels = waveform()->width() * waveform()->devicePixelRatioF();
  const auto frames =
      static_cast<std::uint64_t>(std::llround(static_cast<double>(length()) / pixels));
  ASSERT_GT(frames, 1U);
  press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), 50000 + frames);
  press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), 50000U);
}

TEST_F(OVMarkerMovementTest, WithCtrlTheyMoveItByAtLeastOneFrame) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.5F, 100));  // fewer frames than pixels
  document_->pauseButton(nullptr);
  moveTo(50);
  press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), 51U);
  press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), 50U);
}

TEST_F(OVMarkerMovementTest, BothPositionsAndTheRecorderFollowAsAfterAClick) {
  openWindow();
  recordChunks(44);
  moveTo(50000);
  press(Qt::Key_Right);
  EXPECT_EQ(document_->recordingPosition(), 50000 + kSecond);
  EXPECT_EQ(document_->recorder()->writingPosition(), (50000 + kSecond) * kFrameBytes);
}

TEST_F(OVMarkerMovementTest, TheStepGoesFromTheMarkerNotFromTheRecordingPosition) {
  openWindow();
  recordChunks(44);
  document_->stopButton(nullptr);  // the marker at the start, the recording position at the end
  press(Qt::Key_Right);
  EXPECT_EQ(document_->playbackPosition(), kSecond);
  EXPECT_EQ(document_->recordingPosition(), kSecond);
}

TEST_F(OVMarkerMovementTest, StepsEndAtTheEnds) {
  openWindow();
  recordChunks(44);
  moveTo(kTenth - 1);
  press(Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(document_->playbackPosition(), 0U);
  press(Qt::Key_Left);
  EXPECT_EQ(document_->playbackPosition(), 0U);
  moveTo(length() - 1);
  press(Qt::Key_Right);
  EXPECT_EQ(document_->playbackPosition(), length());
  press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), length());
}

TEST_F(OVMarkerMovementTest, AMarkerThatAnUndoLeftPastTheEndStepsFromTheEnd) {
  openWindow();
  recordChunks(44);
  moveTo(2 * length());
  press(Qt::Key_Left);
  EXPECT_EQ(document_->playbackPosition(), length() - kSecond);
}

TEST_F(OVMarkerMovementTest, InAnHourEveryStepIsExactToTheFrame) {
  support::SparseTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installed(files);
  openWindow();
  const std::vector<float> silence(2 * kSecond);
  for (std::uint64_t second = 0; second < 3600; ++second) {
    document_->buffer()->writeData(silence.data(), second * kSecond * kFrameBytes,
                                   static_cast<std::uint32_t>(kSecond * kFrameBytes));
  }
  ASSERT_EQ(length(), 3600 * kSecond);
  std::uint64_t expected = 123456789;
  moveTo(expected);
  for (int i = 0; i < 7; ++i) {
    press(Qt::Key_Right, Qt::ShiftModifier);
    expected += kTenth;
    ASSERT_EQ(document_->playbackPosition(), expected);
  }
  press(Qt::Key_Left);
  EXPECT_EQ(document_->playbackPosition(), expected - kSecond);
  document_->setDocumentEdited(false);
  closeDocument();
}

TEST_F(OVMarkerMovementTest, InAnEmptyDocumentTheKeysDoNothing) {
  openWindow();
  press(Qt::Key_Right);
  press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(document_->recordingPosition(), 0U);
}

TEST_F(OVMarkerMovementTest, ARecordingStepsFromWhereItRecords) {
  openWindow();
  recordChunks(44);
  document_->prevButton(nullptr);
  pressRecord();
  ASSERT_TRUE(capture(0.5F));
  press(Qt::Key_Right);
  EXPECT_EQ(document_->recordingPosition(), kChunkFrames + kSecond);
}

TEST_F(OVMarkerMovementTest, APlaybackIsMoved) {
  openWindow();
  recordChunks(44);
  document_->prevButton(nullptr);
  pressPlay();
  const std::uint64_t before = document_->playbackPosition();
  press(Qt::Key_Right);
  EXPECT_EQ(document_->playbackPosition(), before + kSecond);
  EXPECT_EQ(document_->player()->readingPosition(), (before + kSecond) * kFrameBytes);
}
