#include "document/display/OVLossMarks.h"

#include <algorithm>
#include <functional>
#include <initializer_list>

#include <QAccessible>
#include <QImage>

#include "document/DocumentFixture.h"
#include "support/PaintCounter.h"

namespace {

class OVLossMarksTest : public DocumentFixture {
 protected:
  void tick() {
    document_->updatePlaybackMarkerView();
    drainMainQueue();
  }
  OVLossMarksView* marks() {
    return document_->window()->findChild<OVLossMarksView*>("lossMarksView");
  }
  OVWaveFormView* waveform() { return document_->window()->findChild<OVWaveFormView*>("wfView"); }
  void lose(std::uint32_t frames) {
    queues_->lostFrames += frames;
    while (frames > 0) {
      const std::uint32_t part = std::min(frames, kChunkFrames);
      frames -= part;
      captured_ += part;
      queues_->capturedFrames = captured_;
      ASSERT_TRUE(queues_.input().deliverSilence(part, captured_));
    }
  }
  /// A recording of four chunks, of which the second one was lost.
  void recordWithALoss() {
    pressRecord();
    ASSERT_TRUE(capture(0.5F));
    lose(kChunkFrames);
    ASSERT_TRUE(capture(0.5F));
    ASSERT_TRUE(capture(0.5F));
    tick();
  }
};

}  // namespace

TEST_F(OVLossMarksTest, ARecordingWithoutALossHasNone) {
  openWindow();
  recordChunks(4);
  tick();
  EXPECT_FALSE(marks()->isVisible());
  EXPECT_TRUE(marks()->marks().empty());
}

TEST_F(OVLossMarksTest, ALossIsMarkedWhereItIsAtOnceAndAfterTheRecording) {
  openWindow();
  recordWithALoss();
  const OVLossMark expected{
      .atFrame = kChunkFrames, .frames = kChunkFrames, .text = "0.093 s were lost at 00:00"};
  EXPECT_TRUE(marks()->isVisible());
  EXPECT_EQ(marks()->marks(), std::vector<OVLossMark>{expected});
  EXPECT_EQ(marks()->lengthInFrames(), 4U * kChunkFrames);
  document_->stopButton(nullptr);
  tick();
  EXPECT_TRUE(marks()->isVisible());
  EXPECT_EQ(marks()->marks(), std::vector<OVLossMark>{expected});
  auto* const accessible = QAccessible::queryAccessibleInterface(marks());
  EXPECT_EQ(accessible->text(QAccessible::Value),
            "Lost in this recording: 0.093 s, first at 00:00");
}

TEST_F(OVLossMarksTest, AGapThatWasNotFilledIsMarkedAsAPlace) {
  openWindow();
  pressRecord();
  ASSERT_TRUE(capture(0.5F));
  captured_ += 70 * 44100U;
  ASSERT_TRUE(queues_.input().deliver(std::vector<float>(std::size_t{2} * kChunkFrames, 0.5F),
                                      captured_ += kChunkFrames, 70 * 44100U));
  tick();
  ASSERT_EQ(marks()->marks().size(), 1U);
  EXPECT_EQ(marks()->marks()[0].atFrame, kChunkFrames);
  EXPECT_EQ(marks()->marks()[0].frames, 0U);
  EXPECT_EQ(marks()->marks()[0].text, "70.0 s were lost at 00:00");
}

TEST_F(OVLossMarksTest, WhileTheRecordingGrowsTheMarksStayAtTheirPlaces) {
  openWindow();
  recordWithALoss();
  ASSERT_TRUE(capture(0.5F));
  tick();
  EXPECT_EQ(marks()->lengthInFrames(), 5U * kChunkFrames);
  EXPECT_EQ(marks()->marks().size(), 1U);
}

TEST_F(OVLossMarksTest, TheNextRecordingTakesThemAway) {
  openWindow();
  recordWithALoss();
  document_->pauseButton(nullptr);
  pressRecord();
  EXPECT_FALSE(marks()->isVisible());
  ASSERT_TRUE(capture(0.5F));
  tick();
  EXPECT_FALSE(marks()->isVisible());
  document_->pauseButton(nullptr);
  tick();
  EXPECT_FALSE(marks()->isVisible());
}

TEST_F(OVLossMarksTest, AnEditThatMovesWhatTheyMarkTakesThemAway) {
  const auto cutAfter = [this] { document_->removeAfterMarker(nullptr); };
  const auto cutBefore = [this] { document_->removeBeforeMarker(nullptr); };
  const auto reverse = [this] { document_->reverseBuffer(nullptr); };
  const auto undo = [this] { document_->undoCommand(); };
  for (const std::function<void()>& edit :
       std::initializer_list<std::function<void()>>{cutAfter, cutBefore, reverse, undo}) {
    openWindow();
    recordWithALoss();
    document_->pauseButton(nullptr);
    document_->waveFormViewReceivedClick(waveform(), {}, 0.5);
    tick();
    ASSERT_TRUE(marks()->isVisible());
    edit();
    settle();
    tick();
    EXPECT_FALSE(marks()->isVisible());
    closeDocument();
    captured_ = 0;
    queues_->capturedFrames = 0;
    queues_->lostFrames = 0;
  }
}

TEST_F(OVLossMarksTest, ATickWithoutAChangeRedrawsNothing) {
  openWindow();
  recordWithALoss();
  document_->pauseButton(nullptr);
  tick();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(document_->window()));
  settle();
  support::PaintCounter counter(marks());
  for (int i = 0; i < 5; ++i) {
    tick();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(counter.paints, 0);
}

TEST_F(OVLossMarksTest, TheWaveformsOwnPictureDoesNotShowThem) {
  openWindow();
  recordWithALoss();
  document_->pauseButton(nullptr);
  tick();
  ASSERT_TRUE(marks()->isVisible());
  static_cast<void>(document_->window()->grab());
  const QImage picture = waveform()->image();
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ASSERT_LT(picture.pixelColor(x, y).red(), 200) << x << ", " << y;
    }
  }
}

TEST_F(OVLossMarksTest, ADocumentWithoutAWindowNeedsNone) {
  openDocument();
  recordWithALoss();
  document_->updatePlaybackMarkerView();
}
