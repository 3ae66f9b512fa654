#include <gmock/gmock.h>

#include "controls/OVTransportBackgroundView.h"
#include "controls/buttons/OVHoverButton.h"
#include "displays/OVFFTView.h"
#include "document/DocumentFixture.h"
#include "document/spectrum/OVSpectrumAnalyser.h"
#include "platform/mainloop/Timer.h"
#include "support/fakes/FailingTemporaryFiles.h"

using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::size_t kPlayedBins = 2048;
constexpr std::size_t kRecordedBins = 512;

}  // namespace

class SpectrumTest : public DocumentFixture {
 protected:
  template <typename View>
  View* view(const char* name) {
    return document_->window()->findChild<View*>(name);
  }
  OVFFTView* fftView() { return view<OVFFTView>("fftView"); }
  OVHoverButton* fftButton() { return view<OVHoverButton>("fftButton"); }
  std::vector<float> shown() { return fftView()->magnitudes(); }

  /// Waits until the window has reached this height.
  void arrive(int height) {
    ASSERT_TRUE(runMainLoopUntil([&] { return document_->window()->height() == height; }));
    drainMainQueue();
  }

  void toggle() {
    const int height = document_->window()->height() + (document_->isSpectrumShown() ? -200 : 200);
    document_->toggleFFT(nullptr);
    arrive(height);
  }

  bool captureSamples(const std::vector<float>& samples) {
    captured_ += samples.size() / 2;
    return queues_.input().deliver(samples, captured_);
  }

  std::vector<float> analysed(std::uint64_t playbackPosition) {
    const auto analyser = OVSpectrumAnalyser::create();
    const auto magnitudes = analyser->doFFT(document_->buffer().get(), playbackPosition);
    return {magnitudes.begin(), magnitudes.end()};
  }

  /// A recording of a ramp, different at every frame.
  void recordRamp(int chunks) {
    pressRecord();
    std::vector<float> samples(2 * kChunkFrames);
    float value = 0.0F;
    for (int chunk = 0; chunk < chunks; ++chunk) {
      for (float& sample : samples) {
        sample = value;
        value += 1e-5F;
      }
      ASSERT_TRUE(captureSamples(samples));
    }
    document_->pauseButton(nullptr);
  }
};

// Showing and hiding ----------------------------------------------------------------------------

TEST_F(SpectrumTest, IsHiddenAtFirst) {
  openWindow();
  EXPECT_FALSE(document_->isSpectrumShown());
  EXPECT_FALSE(fftView()->isVisible());
  EXPECT_TRUE(fftButton()->isVisible());
  EXPECT_FALSE(fftButton()->isOn());
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(SpectrumTest, ShowingGrowsTheWindowAndUncoversTheViewBelowTheBar) {
  openWindow();
  const QRect before = document_->window()->geometry();
  toggle();
  EXPECT_TRUE(document_->isSpectrumShown());
  EXPECT_EQ(document_->window()->geometry(), before.adjusted(0, 0, 0, 200));
  ASSERT_TRUE(fftView()->isVisible());
  const QWidget* const content = document_->window()->centralWidget();
  EXPECT_EQ(fftView()->mapTo(content, QPoint(0, 0)), QPoint(0, 330));
  EXPECT_EQ(fftView()->QWidget::size(), QSize(content->width(), 200));
}

TEST_F(SpectrumTest, TogglingTwiceReturnsTheWindowToItsFormerFrame) {
  openWindow();
  const QRect before = document_->window()->geometry();
  toggle();
  toggle();
  EXPECT_FALSE(document_->isSpectrumShown());
  EXPECT_EQ(document_->window()->geometry(), before);
  EXPECT_FALSE(fftView()->isVisible());
}

TEST_F(SpectrumTest, TogglingTwiceAtOnceReturnsTheWindowToItsFormerFrameToo) {
  openWindow();
  const QRect before = document_->window()->geometry();
  document_->toggleFFT(nullptr);
  document_->toggleFFT(nullptr);
  ASSERT_TRUE(runMainLoopUntil([&] { return !fftView()->isVisible(); }));
  arrive(before.height());
  EXPECT_EQ(document_->window()->geometry(), before);
}

TEST_F(SpectrumTest, TheWaveformKeepsItsSizeAndItsPicture) {
  openWindow();
  recordChunks(2);
  settle();
  auto* const waveform = view<OVWaveFormView>("wfView");
  waveform->grab();
  const QRect frame = waveform->geometry();
  const qint64 picture = waveform->image().cacheKey();
  toggle();
  EXPECT_EQ(waveform->geometry(), frame);
  toggle();
  EXPECT_EQ(waveform->geometry(), frame);
  EXPECT_EQ(waveform->image().cacheKey(), picture);
}

TEST_F(SpectrumTest, TheWindowsMinimumHeightGrowsWhileShown) {
  openWindow();
  const int menuBar = document_->window()->height() - 330;
  toggle();
  document_->window()->resize(100, 100);
  EXPECT_EQ(document_->window()->QWidget::size(), QSize(580, 440 + menuBar));
  EXPECT_EQ(fftView()->height(), 200);
}

TEST_F(SpectrumTest, TheDarkLineBelowTheBarIsThereWhileShown) {
  openWindow();
  auto* const bar = view<OVTransportBackgroundView>("transportBackView");
  EXPECT_FALSE(bar->renderBottomShadow());
  const QImage before = bar->grab().toImage();
  document_->toggleFFT(nullptr);
  EXPECT_TRUE(bar->renderBottomShadow());
  EXPECT_LT(bar->grab().toImage().pixelColor(1, bar->height() - 1).value(), 100);
  document_->toggleFFT(nullptr);
  EXPECT_FALSE(bar->renderBottomShadow());
  EXPECT_EQ(bar->grab().toImage().pixelColor(1, bar->height() - 1),
            before.pixelColor(1, bar->height() - 1));
}

TEST_F(SpectrumTest, TheButtonShowsAndHides) {
  openWindow();
  const int height = document_->window()->height();
  QTest::mouseClick(fftButton(), Qt::LeftButton);
  EXPECT_TRUE(document_->isSpectrumShown());
  EXPECT_TRUE(fftButton()->isOn());
  arrive(height + 200);
  QTest::mouseClick(fftButton(), Qt::LeftButton);
  EXPECT_FALSE(document_->isSpectrumShown());
  EXPECT_FALSE(fftButton()->isOn());
  arrive(height);
}

TEST_F(SpectrumTest, TheButtonsOwnStateIsNotConsultedButFollows) {
  openWindow();
  fftButton()->setIsOn(true);
  toggle();
  EXPECT_TRUE(document_->isSpectrumShown());
  EXPECT_TRUE(fftButton()->isOn());
  toggle();
  EXPECT_FALSE(fftButton()->isOn());
}

// Ticks -----------------------------------------------------------------------------------------

TEST_F(SpectrumTest, TheTimerRunsOnlyWhileShown) {
  openWindow();
  recordRamp(2);
  pressPlay();
  ASSERT_THAT(shown(), IsEmpty());
  toggle();
  EXPECT_TRUE(runMainLoopUntil([&] { return shown().size() == kPlayedBins; }));
  toggle();
  // A timer that still ran would replace these with the bins of the playing audio.
  const std::vector<float> mark{0.5F};
  fftView()->setSize(mark.size());
  fftView()->setData(mark.data());
  int ticks = 0;
  const platform::Timer asFast(1.0 / 30.0, [&ticks] { ++ticks; });
  EXPECT_TRUE(runMainLoopUntil([&] { return ticks == 5; }));
  ASSERT_TRUE(document_->player()->isPlaying());
  EXPECT_EQ(shown(), mark);
}

TEST_F(SpectrumTest, ATickWhilePlayingShowsTheStoredAudioAtThePlaybackPosition) {
  openWindow();
  recordRamp(3);
  pressPlay();
  document_->setPlaybackPosition(1234);
  document_->fireFFT();
  EXPECT_THAT(shown(), SizeIs(kPlayedBins));
  EXPECT_EQ(shown(), analysed(1234));
}

TEST_F(SpectrumTest, AtTheVeryEndOfTheAudioTheSpectrumFalls) {
  openWindow();
  recordChunks(2, 0.5F);
  pressPlay();
  document_->setPlaybackPosition(length() - 64);
  document_->fireFFT();
  EXPECT_FLOAT_EQ(shown()[0], 64.0F * 0.5F / 64.0F);
  document_->setPlaybackPosition(length());
  document_->fireFFT();
  EXPECT_THAT(shown(), testing::AllOf(SizeIs(kPlayedBins), Each(0.0F)));
}

TEST_F(SpectrumTest, AChunkIsConsumedInFourTicksAndStartsAgainWithTheFifth) {
  openWindow();
  pressRecord();
  std::vector<float> samples(2 * kChunkFrames);
  const std::size_t quarter = samples.size() / 4;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<float>(i / quarter + 1) / 8.0F;
  }
  ASSERT_TRUE(captureSamples(samples));
  for (const float value : {0.125F, 0.25F, 0.375F, 0.5F, 0.125F, 0.25F}) {
    document_->fireFFT();
    ASSERT_THAT(shown(), SizeIs(kRecordedBins));
    EXPECT_NEAR(shown()[0], 1024.0F * value / 64.0F, 1e-4F);
  }
  ASSERT_TRUE(capture(0.75F));  // a new chunk starts at its own beginning
  document_->fireFFT();
  EXPECT_NEAR(shown()[0], 12.0F, 1e-4F);
}

TEST_F(SpectrumTest, ARecordingWithoutAChunkYetShowsNothing) {
  openWindow();
  pressRecord();
  document_->fireFFT();
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(SpectrumTest, AChunkOfFewerThanEightBytesRepeatsItsFirstSample) {
  openWindow();
  const float sample = 0.25F;
  document_->doFFTwithData(&sample, sizeof(sample));
  EXPECT_THAT(shown(), SizeIs(kRecordedBins));
  EXPECT_NEAR(shown()[0], 4.0F, 1e-4F);
}

TEST_F(SpectrumTest, DataWithoutAWholeSampleLeavesTheCurve) {
  openWindow();
  const float sample = 0.25F;
  document_->doFFTwithData(&sample, sizeof(sample));
  const auto curve = shown();
  for (const std::uint32_t size : {0U, 1U, 3U}) {
    document_->doFFTwithData(&sample, size);
    EXPECT_EQ(shown(), curve);
  }
}

TEST_F(SpectrumTest, WhenBothReportActivityTheRecordingsBinsAreKept) {
  openWindow();
  recordChunks(3);
  document_->prevButton(nullptr);
  pressPlay();
  document_->recorder()->record();  // which the transport refuses while playing
  ASSERT_TRUE(capture(0.5F));
  ASSERT_TRUE(document_->player()->isPlaying());
  ASSERT_TRUE(document_->recorder()->isRecording());
  document_->fireFFT();
  EXPECT_THAT(shown(), SizeIs(kRecordedBins));
  EXPECT_NEAR(shown()[0], 8.0F, 1e-4F);
}

TEST_F(SpectrumTest, ATickWithoutActivityKeepsTheLastCurve) {
  openWindow();
  recordRamp(1);
  document_->fireFFT();
  EXPECT_THAT(shown(), IsEmpty());
  pressPlay();
  document_->fireFFT();
  const auto curve = shown();
  ASSERT_THAT(curve, SizeIs(kPlayedBins));
  document_->pauseButton(nullptr);
  document_->setPlaybackPosition(100);
  document_->fireFFT();
  EXPECT_EQ(shown(), curve);
}

TEST_F(SpectrumTest, HidingWhilePlayingLeavesTheLastCurveAndShowingDrawsFromTheNextTick) {
  openWindow();
  recordRamp(2);
  toggle();
  pressPlay();
  ASSERT_TRUE(runMainLoopUntil([&] { return shown().size() == kPlayedBins; }));
  toggle();
  const auto curve = shown();
  document_->setPlaybackPosition(2000);
  document_->toggleFFT(nullptr);
  EXPECT_EQ(shown(), curve);
  EXPECT_TRUE(runMainLoopUntil([&] { return shown() == analysed(2000); }));
}

// Clicks ----------------------------------------------------------------------------------------

TEST_F(SpectrumTest, AClickOrADragShowsThePlaceEvenWhileHidden) {
  openWindow();
  recordRamp(2);
  document_->waveFormViewReceivedClick(nullptr, {}, 0.25);
  EXPECT_EQ(shown(), analysed(kChunkFrames / 2));
  document_->waveFormViewReceivedDrag(nullptr, {}, 0.5);
  EXPECT_EQ(shown(), analysed(kChunkFrames));
  EXPECT_FALSE(document_->isSpectrumShown());
}

TEST_F(SpectrumTest, AClickWhileRecordingShowsNothing) {
  openWindow();
  recordChunks(2);
  pressRecord();
  document_->waveFormViewReceivedClick(nullptr, {}, 0.25);
  EXPECT_THAT(shown(), IsEmpty());
}

// Life ------------------------------------------------------------------------------------------

TEST_F(SpectrumTest, ANewCurveIsDrawn) {
  openWindow();
  toggle();
  const QImage before = fftView()->grab().toImage();
  recordChunks(1, 0.5F);
  document_->waveFormViewReceivedClick(nullptr, {}, 0.9);
  EXPECT_NE(fftView()->grab().toImage(), before);
}

TEST_F(SpectrumTest, ClosingEndsTheTimerAndTheWindowOnItsWay) {
  openWindow();
  document_->toggleFFT(nullptr);
  document_->window()->performClose();
  EXPECT_FALSE(document_->isSpectrumShown());
  const std::weak_ptr<VLRecorderWindowController> controller = document_;
  document_.reset();
  settle();
  EXPECT_TRUE(controller.expired());
}

TEST_F(SpectrumTest, WorksWithoutAWindow) {
  openDocument();
  recordChunks(1);
  document_->toggleFFT(nullptr);
  EXPECT_TRUE(document_->isSpectrumShown());
  pressPlay();
  document_->fireFFT();
  document_->waveFormViewReceivedClick(nullptr, {}, 0.5);
  document_->toggleFFT(nullptr);
  EXPECT_FALSE(document_->isSpectrumShown());
}

TEST_F(SpectrumTest, WithoutABufferTheSpectrumIsSilent) {
  support::FailingTemporaryFiles files;
  files.failCreation(ENOSPC);
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  openWindow();
  ASSERT_EQ(document_->buffer(), nullptr);
  document_->doFFT();
  EXPECT_THAT(shown(), testing::AllOf(SizeIs(kPlayedBins), Each(0.0F)));
}
