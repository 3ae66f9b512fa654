#include "document/display/OVRecordingPlace.h"

#include <QAccessible>
#include <QImage>

#include "document/DocumentFixture.h"
#include "support/PaintCounter.h"

namespace {

class OVRecordingPlaceTest : public DocumentFixture {
 protected:
  void tick() {
    document_->updatePlaybackMarkerView();
    drainMainQueue();
  }
  OVRecordingTickView* mark() {
    return document_->window()->findChild<OVRecordingTickView*>("recordingTickView");
  }
  OVWaveFormView* waveform() { return document_->window()->findChild<OVWaveFormView*>("wfView"); }
  std::string tooltip() { return button("recButton")->toolTip().toStdString(); }
};

}  // namespace

TEST_F(OVRecordingPlaceTest, AnEmptyDocumentHasNoTick) {
  openWindow();
  tick();
  EXPECT_FALSE(mark()->isVisible());
  EXPECT_EQ(tooltip(), "Record (R)");
}

TEST_F(OVRecordingPlaceTest, AfterARecordingTheNextOneGoesToTheEnd) {
  openWindow();
  recordChunks(4);
  tick();
  EXPECT_TRUE(mark()->isVisible());
  EXPECT_EQ(mark()->position(), 1.0);
  EXPECT_EQ(tooltip(), "Records at the end (R)");
}

TEST_F(OVRecordingPlaceTest, AfterAClickTheNextOneGoesThereOverWhatIsThere) {
  openWindow();
  recordChunks(40);
  document_->waveFormViewReceivedClick(waveform(), {}, 0.5);
  tick();
  EXPECT_EQ(mark()->position(), 0.5);
  EXPECT_EQ(tooltip(), "Records from 00:00:01.85 over what is there (R)");
  auto* const accessible = QAccessible::queryAccessibleInterface(mark());
  EXPECT_EQ(accessible->text(QAccessible::Value), "00:00:01.85");
}

TEST_F(OVRecordingPlaceTest, TheTimeIsThatOfTheTimeDisplay) {
  openWindow();
  recordChunks(40);
  document_->waveFormViewReceivedClick(waveform(), {}, 0.477);
  tick();
  const auto* const time = document_->window()->findChild<OVTimeView*>("timeView");
  const std::string shown = time->text().section(" / ", 0, 0).toStdString();
  EXPECT_EQ(tooltip(), "Records from " + shown + " over what is there (R)");
}

TEST_F(OVRecordingPlaceTest, AfterStopMarkerAndRecordingPositionLieApart) {
  openWindow();
  recordChunks(4);
  document_->waveFormViewReceivedClick(waveform(), {}, 0.5);
  document_->stopButton(nullptr);
  tick();
  EXPECT_EQ(document_->playbackPosition(), 0U);
  EXPECT_EQ(mark()->position(), 1.0);
}

TEST_F(OVRecordingPlaceTest, WhileRecordingThereIsNoTick) {
  openWindow();
  recordChunks(4);
  tick();
  pressRecord();
  tick();
  EXPECT_FALSE(mark()->isVisible());
  EXPECT_EQ(tooltip(), "Ends the recording (R)");
  ASSERT_TRUE(capture(0.5F));
  document_->pauseButton(nullptr);
  tick();
  EXPECT_TRUE(mark()->isVisible());
}

TEST_F(OVRecordingPlaceTest, WhilePlayingTheTickFollowsTheMarker) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressPlay();
  document_->playerAdvancedToFrame(kChunkFrames);
  tick();
  EXPECT_TRUE(mark()->isVisible());
  EXPECT_EQ(mark()->position(), 0.25);
}

TEST_F(OVRecordingPlaceTest, APositionThatAnUndoLeftPastTheEndCountsAsTheEnd) {
  openWindow();
  recordChunks(2);
  document_->setRecordingPosition(10 * std::uint64_t{kChunkFrames});
  tick();
  EXPECT_EQ(mark()->position(), 1.0);
  EXPECT_EQ(tooltip(), "Records at the end (R)");
}

TEST_F(OVRecordingPlaceTest, ACutMovesTheTickThoughNoPositionWasMoved) {
  openWindow();
  recordChunks(4);
  document_->waveFormViewReceivedClick(waveform(), {}, 0.25);
  tick();
  document_->buffer()->cutoffBufferAfterPosition(2 * std::uint64_t{kChunkFrames});
  tick();
  EXPECT_EQ(mark()->position(), 0.5);
}

TEST_F(OVRecordingPlaceTest, ATickWithoutAChangeRedrawsNothing) {
  openWindow();
  recordChunks(4);
  document_->waveFormViewReceivedClick(waveform(), {}, 0.5);
  tick();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(document_->window()));
  settle();
  support::PaintCounter counter;
  counter.watch(mark());
  counter.watch(button("recButton"));
  for (int i = 0; i < 5; ++i) {
    tick();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(counter.paints, 0);
}

TEST_F(OVRecordingPlaceTest, TheWaveformsOwnPictureDoesNotShowIt) {
  openWindow();
  recordChunks(4);
  tick();
  ASSERT_TRUE(mark()->isVisible());
  static_cast<void>(document_->window()->grab());
  const QImage picture = waveform()->image();
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ASSERT_LT(picture.pixelColor(x, y).red(), 150) << x << ", " << y;
    }
  }
}

TEST_F(OVRecordingPlaceTest, ClicksReachTheWaveformThroughIt) {
  openWindow();
  recordChunks(4);
  document_->nextButton(nullptr);
  tick();
  ASSERT_EQ(mark()->position(), 1.0);
  const QPoint place(waveform()->width() - 3, 2);
  EXPECT_EQ(document_->window()->childAt(waveform()->mapTo(document_->window(), place)),
            waveform());
}

TEST_F(OVRecordingPlaceTest, ADocumentWithoutAWindowNeedsNone) {
  openDocument();
  recordChunks(2);
  document_->updatePlaybackMarkerView();
}
