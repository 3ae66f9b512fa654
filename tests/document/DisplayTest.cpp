#include <atomic>
#include <thread>

#include <QAccessible>
#include <QEvent>
#include <QKeySequence>

#include "document/DocumentFixture.h"
#include "platform/mainloop/Timer.h"

namespace {

// Counts the paint events of a widget and everything inside it.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget* root) {
    root->installEventFilter(this);
    for (QWidget* const child : root->findChildren<QWidget*>()) {
      child->installEventFilter(this);
    }
  }
  bool eventFilter(QObject*, QEvent* event) override {
    paints_ += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
  int takePaints() { return std::exchange(paints_, 0); }

 private:
  int paints_ = 0;
};

}  // namespace

class DisplayTest : public DocumentFixture {
 protected:
  void tick() { document_->updatePlaybackMarkerView(); }
  OVPlaybackMarkerView* marker() {
    return document_->window()->findChild<OVPlaybackMarkerView*>("playbackMarkerView");
  }
  OVTimeView* time() { return document_->window()->findChild<OVTimeView*>("timeView"); }
  OVWaveFormView* waveformView() {
    return document_->window()->findChild<OVWaveFormView*>("wfView");
  }
};

TEST_F(DisplayTest, AnIdleDocumentDrawsNothingOnATick) {
  openWindow();
  recordChunks(2);
  tick();
  settle();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(document_->window()));
  PaintCounter counter(document_->window());
  settle();
  counter.takePaints();
  for (int i = 0; i < 10; ++i) {
    tick();
    drainMainQueue();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(counter.takePaints(), 0);
}

TEST_F(DisplayTest, AnIdleWindowIsNotRedrawnByItsOwnTimersEvenWithTheSpectrumShown) {
  openWindow();
  recordChunks(2);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(document_->window()));
  auto* const strip = document_->window()->findChild<QWidget*>("fftView");
  document_->toggleFFT(nullptr);
  ASSERT_TRUE(runMainLoopUntil([&] { return strip->height() == 200 && strip->isVisible(); }));
  settle();
  int ticks = 0;  // of a timer as fast as the fastest of the window's
  const platform::Timer clock(1.0 / 30.0, [&ticks] { ++ticks; });
  ASSERT_TRUE(runMainLoopUntil([&] { return ticks >= 15; })) << "what moved has arrived";
  PaintCounter counter(document_->window());
  ticks = 0;
  ASSERT_TRUE(runMainLoopUntil([&] { return ticks >= 15; }));
  EXPECT_EQ(counter.takePaints(), 0);
}

TEST_F(DisplayTest, AMovedPositionMovesMarkerAndTime) {
  openWindow();
  recordChunks(4);
  document_->setPlaybackPosition(kChunkFrames);
  tick();
  EXPECT_DOUBLE_EQ(marker()->position(), 0.25);
  EXPECT_DOUBLE_EQ(time()->currentTimeInSeconds(), kChunkFrames / 44100.0);
  EXPECT_DOUBLE_EQ(time()->durationInSeconds(), 4.0 * kChunkFrames / 44100.0);
  EXPECT_EQ(document_->lastPlaybackPosition(), kChunkFrames);
  EXPECT_FALSE(marker()->isRecordingMarker());
}

TEST_F(DisplayTest, TheWaveformReadsPositionAndLengthOut) {
  openWindow();
  recordChunks(4);
  document_->setPlaybackPosition(kChunkFrames);
  tick();
  auto* const accessible = QAccessible::queryAccessibleInterface(waveformView());
  EXPECT_EQ(accessible->text(QAccessible::Value), "00:00:00.09 / 00:00:00.37");
  EXPECT_EQ(accessible->text(QAccessible::Description), "00:00:00.09 / 00:00:00.37");
}

TEST_F(DisplayTest, KeysOfTheWaveformMoveTheMarker) {
  openWindow();
  recordChunks(4);
  tick();
  QTest::keyClick(waveformView(), Qt::Key_End);
  EXPECT_EQ(document_->playbackPosition(), length());
  tick();
  QTest::keyClick(waveformView(), Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(document_->playbackPosition(), length() - 4410);
  QTest::keyClick(waveformView(), Qt::Key_Home);
  EXPECT_EQ(document_->playbackPosition(), 0U);
}

TEST_F(DisplayTest, KeysOfTheWaveformMoveARecordingFromWhereItIs) {
  openWindow();
  recordChunks(4);
  pressRecord();
  ASSERT_TRUE(capture(0.5F));
  const std::uint64_t end = length();
  ASSERT_EQ(document_->recordingPosition(), end);
  QTest::keyClick(waveformView(), Qt::Key_PageDown);
  EXPECT_NEAR(static_cast<double>(document_->recordingPosition()), 0.9 * static_cast<double>(end),
              2.0);
}

TEST_F(DisplayTest, FastKeysOfTheWaveformMoveTheMarkerAsFarAsSlowOnes) {
  openWindow();
  recordChunks(120);
  tick();
  const auto moved = [this](Qt::Key key, Qt::KeyboardModifiers modifiers, bool slowly) {
    document_->setPlaybackPosition(length() / 2);
    tick();
    for (int i = 0; i < 5; ++i) {
      QTest::keyClick(waveformView(), key, modifiers);
      if (slowly) {
        tick();
      }
    }
    return document_->playbackPosition();
  };
  for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown}) {
    for (const Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
      EXPECT_EQ(moved(key, modifier, false), moved(key, modifier, true))
          << QKeySequence(key | modifier).toString().toStdString();
    }
  }
  EXPECT_EQ(moved(Qt::Key_Right, Qt::NoModifier, false), length() / 2 + 5 * std::uint64_t{44100});
}

TEST_F(DisplayTest, WithAnEmptyBufferTheMarkerStandsAtTheStart) {
  openWindow();
  document_->setPlaybackPosition(17);
  tick();
  EXPECT_DOUBLE_EQ(marker()->position(), 0.0);
}

TEST_F(DisplayTest, WhileRecordingTheMarkerShowsTheRecordingPosition) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressRecord();
  capture(0.5F);
  tick();
  EXPECT_TRUE(marker()->isRecordingMarker());
  EXPECT_DOUBLE_EQ(marker()->position(), 0.25);
  EXPECT_DOUBLE_EQ(time()->currentTimeInSeconds(), kChunkFrames / 44100.0);
  EXPECT_DOUBLE_EQ(marker()->audioLevel(), 0.5);  // mean of the channels' levels
  document_->pauseButton(nullptr);
  EXPECT_FALSE(marker()->isRecordingMarker());
}

TEST_F(DisplayTest, WhileBothRecordAndPlayTheTimeShowsThePositionOfThePlayer) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  document_->setPlaybackPosition(2 * kChunkFrames);
  pressPlay();
  document_->recorder()->record();  // which the transport refuses while playing
  capture(0.5F);
  const auto playing = document_->playbackPosition();
  ASSERT_GT(playing, 2u * kChunkFrames);
  tick();
  EXPECT_EQ(document_->recordingPosition(), playing);
  EXPECT_DOUBLE_EQ(marker()->position(), 0.25);  // where the recording was
  EXPECT_DOUBLE_EQ(time()->currentTimeInSeconds(), static_cast<double>(playing) / 44100.0);
}

TEST_F(DisplayTest, AfterARecordingToTheEndMarkerAndTimeJumpBackToTheStart) {
  openWindow();
  pressRecord();
  capture(0.5F);
  tick();
  EXPECT_DOUBLE_EQ(marker()->position(), 1.0);
  document_->pauseButton(nullptr);
  tick();
  EXPECT_DOUBLE_EQ(marker()->position(), 0.0);
  EXPECT_DOUBLE_EQ(time()->currentTimeInSeconds(), 0.0);
  EXPECT_DOUBLE_EQ(time()->durationInSeconds(), kChunkFrames / 44100.0);
}

TEST_F(DisplayTest, WhilePlayingTheRecordingPositionFollowsTheMarker) {
  openWindow();
  recordChunks(4);
  pressPlay();
  queues_.output().playOne();
  tick();
  EXPECT_EQ(document_->recordingPosition(), document_->playbackPosition());
  EXPECT_DOUBLE_EQ(marker()->audioLevel(), 0.5);
}

TEST_F(DisplayTest, RecordingIntoTheMiddleSwitchesToAStaticSummaryOnceAndPastTheEndBack) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressRecord();
  capture(0.5F);
  tick();
  EXPECT_TRUE(document_->waveformIsChanging());
  tick();  // queues none in addition to the pending one
  ASSERT_TRUE(runMainLoopUntil([&] { return !document_->waveformIsChanging(); }));
  EXPECT_TRUE(summaryIsStatic());
  const auto installed = document_->waveForm();
  EXPECT_EQ(waveformView()->waveForm(), installed);
  ASSERT_NE(document_->prevWaveform(), nullptr);
  EXPECT_NE(document_->prevWaveform(), installed);
  capture(0.5F);
  tick();
  settle();
  EXPECT_EQ(document_->waveForm(), installed);
  EXPECT_FALSE(document_->waveformIsChanging());

  for (int i = 0; i < 3; ++i) {
    capture(0.5F);
  }
  tick();
  ASSERT_TRUE(runMainLoopUntil([&] { return !document_->waveformIsChanging(); }));
  EXPECT_FALSE(summaryIsStatic());
  EXPECT_EQ(document_->waveForm()->readerPos(), length());
  const auto growing = document_->waveForm();
  tick();
  settle();
  EXPECT_EQ(document_->waveForm(), growing);
}

TEST_F(DisplayTest, AppendingKeepsTheGrowingSummaryAndExtendsItInTheBackground) {
  openWindow();
  pressRecord();
  capture(0.5F);
  tick();
  settle();
  EXPECT_FALSE(summaryIsStatic());
  EXPECT_EQ(document_->waveForm()->readerPos(), kChunkFrames);
  capture(0.5F);
  tick();
  settle();
  EXPECT_EQ(document_->waveForm()->readerPos(), 2u * kChunkFrames);
}

TEST_F(DisplayTest, TheLastChunkOfARecordingShowsWithoutAnotherTick) {
  openWindow();
  recordChunks(2);
  settle();
  EXPECT_EQ(document_->waveForm()->readerPos(), 2u * kChunkFrames);
}

TEST_F(DisplayTest, AClickMovesBothPositionsByTruncation) {
  openWindow();
  recordChunks(4);
  const std::uint64_t half = length() / 2;
  document_->waveFormViewReceivedClick(waveformView(), {}, 0.5);
  EXPECT_EQ(document_->playbackPosition(), half);
  EXPECT_EQ(document_->recordingPosition(), half);
  EXPECT_EQ(document_->recorder()->writingPosition(), half * kFrameBytes);
  document_->waveFormViewReceivedClick(waveformView(), {}, 1.0 / 3.0);
  EXPECT_EQ(document_->playbackPosition(),
            static_cast<std::uint64_t>(static_cast<double>(length()) * (1.0 / 3.0)));
}

TEST_F(DisplayTest, AClickWhilePlayingMovesThePlayer) {
  openWindow();
  recordChunks(4);
  pressPlay();
  document_->waveFormViewReceivedClick(waveformView(), {}, 0.75);
  EXPECT_EQ(document_->player()->readingPosition(), 3u * kChunkFrames * kFrameBytes);
}

TEST_F(DisplayTest, AClickWhileRecordingMovesBothPositionsAndTheRecordingGoesOnThere) {
  openWindow();
  recordChunks(4);
  document_->prevButton(nullptr);
  pressRecord();
  capture(0.5F);
  document_->waveFormViewReceivedClick(waveformView(), {}, 0.5);
  EXPECT_EQ(document_->recordingPosition(), 2u * kChunkFrames);
  EXPECT_EQ(document_->playbackPosition(), 2u * kChunkFrames);
  capture(0.75F);
  EXPECT_EQ(samplesAt(2 * kChunkFrames, 1), (std::vector{0.75F, 0.75F}));
  EXPECT_EQ(samplesAt(kChunkFrames, 1), (std::vector{0.25F, 0.25F}));
}

TEST_F(DisplayTest, ADragBehavesExactlyLikeASequenceOfClicks) {
  openWindow();
  recordChunks(4);
  for (const double fraction : {0.1, 0.9, 0.5, 1.0, 0.0}) {
    document_->waveFormViewReceivedClick(waveformView(), {}, fraction);
    const auto clicked = document_->playbackPosition();
    document_->waveFormViewReceivedClick(waveformView(), {}, 0.33);
    document_->waveFormViewReceivedDrag(waveformView(), {}, fraction);
    EXPECT_EQ(document_->playbackPosition(), clicked);
    EXPECT_EQ(document_->recordingPosition(), clicked);
    EXPECT_EQ(document_->recorder()->writingPosition(), clicked * kFrameBytes);
  }
}

TEST_F(DisplayTest, AClickOutsideCountsAsTheNearestEdge) {
  openWindow();
  recordChunks(4);
  document_->waveFormViewReceivedDrag(waveformView(), {}, -0.25);
  EXPECT_EQ(document_->playbackPosition(), 0u);
  document_->waveFormViewReceivedDrag(waveformView(), {}, 1.5);
  EXPECT_EQ(document_->playbackPosition(), length());
}

TEST_F(DisplayTest, WhileAWaveformIsRenderedBarAndTimeFollowItsReader) {
  openWindow();
  recordChunks(4);
  settle();
  document_->setPlaybackPosition(kChunkFrames);
  document_->recreateIndicator(false);
  document_->setIsRenderingWaveform(true);
  tick();
  const auto reader = document_->waveForm()->readerPos();
  ASSERT_GT(reader, 0u);
  EXPECT_DOUBLE_EQ(time()->currentTimeInSeconds(), static_cast<double>(reader) / 44100.0);
  EXPECT_DOUBLE_EQ(time()->durationInSeconds(), static_cast<double>(length()) / 44100.0);
  EXPECT_EQ(document_->loadingIndicator()->value(), static_cast<int>(1000 * reader / length()));
  EXPECT_NE(document_->lastPlaybackPosition(), kChunkFrames);  // the marker waits
  document_->setIsRenderingWaveform(false);
}

TEST_F(DisplayTest, APositionThatMovesDuringATickIsDrawnByTheNextOne) {
  openWindow();
  recordChunks(1);
  tick();
  std::atomic<bool> done = false;
  std::thread player([&] {
    for (std::uint64_t i = 0; !done; i = (i + 1) % kChunkFrames) {
      document_->setPlaybackPosition(i);
    }
  });
  int skipped = 0;  // ticks that took a position for drawn that the marker does not show
  for (int i = 0; i < 20'000; ++i) {
    tick();
    const auto drawn = marker()->position() * static_cast<double>(length());
    skipped += static_cast<double>(document_->lastPlaybackPosition()) == drawn ? 0 : 1;
  }
  done = true;
  player.join();
  EXPECT_EQ(skipped, 0);
}

TEST_F(DisplayTest, PositionsMayBeSetAndReadFromAnyThread) {
  openDocument();
  std::thread other([&] {
    for (std::uint64_t i = 0; i < 1000; ++i) {
      document_->setPlaybackPosition(i);
      document_->setRecordingPosition(i);
    }
  });
  for (int i = 0; i < 1000; ++i) {
    EXPECT_LE(document_->playbackPosition(), 999u);
    EXPECT_LE(document_->recordingPosition(), 999u);
  }
  other.join();
  EXPECT_EQ(document_->playbackPosition(), 999u);
}
