// The window at every scale factor of a desktop, and moved between screens of different factors.
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <QFontMetricsF>
#include <QMenuBar>

#include "controls/OVSpectrumStrip.h"
#include "displays/OVTimeText.h"
#include "gallery/GalleryScreen.h"
#include "support/MainLoop.h"
#include "support/Pixels.h"
#include "support/fakes/FakeWaveformSummary.h"
#include "ui_VNRecorderWindow.h"

namespace {

class ScaleFactorsTest : public testing::TestWithParam<double> {
 protected:
  void SetUp() override {
    window_.setAttribute(Qt::WA_DeleteOnClose, false);
    ui_.setupUi(&window_);
    window_.menuBar()->addMenu(QStringLiteral("File"));
    ui_.wfView->setWaveForm(std::make_shared<FakeWaveformSummary>(std::vector<float>(1024, 0.5F)));
    ui_.timeView->setCurrentTimeInSeconds(83.45);
    ui_.timeView->setDurationInSeconds(359999.99);
    ui_.recButton->setOffImage(QStringLiteral("stop.png"));
  }

  void moveTo(double scale) { ASSERT_TRUE(showOnScreenOfScale(window_, scale)); }

  /// The picture of a view, in device pixels.
  static QImage picture(QWidget* view) { return pictureOfWindow(*view); }

  [[nodiscard]] static QSize pixels(QSize points, double scale) {
    return {static_cast<int>(std::ceil(points.width() * scale)),
            static_cast<int>(std::ceil(points.height() * scale))};
  }

  OVRecorderWindow window_;
  Ui::VNRecorderWindow ui_;
};

}  // namespace

TEST_P(ScaleFactorsTest, TheWindowKeepsItsSizeInPoints) {
  moveTo(GetParam());
  EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330));
  EXPECT_EQ(ui_.wfView->size(), QSize(640, 272));
  EXPECT_EQ(ui_.recButton->geometry(), QRect(57, 13, 46, 32));
}

TEST_P(ScaleFactorsTest, TheWaveformIsRenderedInDevicePixelsToTheLastOne) {
  const double scale = GetParam();
  moveTo(scale);
  const QImage rendered = ui_.wfView->image();
  EXPECT_EQ(rendered.devicePixelRatio(), scale);
  EXPECT_EQ(rendered.size(), pixels({640, 272}, scale));
  const QImage shown = picture(ui_.wfView);
  for (int y = 0; y < shown.height(); ++y) {
    const QColor last = shown.pixelColor(shown.width() - 1, y);
    ASSERT_GT(last.blue(), 55) << "row " << y << " is not painted at its end";
  }
  for (int x = 0; x < shown.width(); ++x) {
    ASSERT_GT(shown.pixelColor(x, shown.height() - 1).blue(), 55) << "column " << x;
  }
}

TEST_P(ScaleFactorsTest, NoCrackOpensBetweenWaveformAndBarAndBelowTheBar) {
  const double scale = GetParam();
  moveTo(scale);
  window_.resize(640, 400);  // whole device pixels at every factor
  const QImage shown = pictureOfWindow(window_);
  const double barTop = (400.0 - 58.0) * scale;
  const int left = static_cast<int>(6.0 * scale);
  for (const int x : {left, shown.width() - 1 - left}) {
    for (int y = static_cast<int>(barTop) - 3; y < shown.height(); ++y) {
      const int green = shown.pixelColor(x, y).green();
      EXPECT_GE(green, 36) << "no darker than the waveform's ground, row " << y;
      if (y > barTop + 2.0 * scale) {
        EXPECT_GE(green, 210) << "the bar, row " << y;
      }
    }
  }
}

TEST_P(ScaleFactorsTest, NeighbouringButtonsShareOneBorder) {
  const double scale = GetParam();
  moveTo(scale);
  const QImage bar = picture(ui_.transportBackView);
  // Between Record and Stop, half-way down: the border of both is at x = 101.5, one point wide.
  const int row = static_cast<int>(29.0 * scale);
  const int begin = static_cast<int>(96.0 * scale);
  const int end = static_cast<int>(107.0 * scale);
  double darkness = 0.0;  // of the line, in points of a full one
  for (int x = begin; x < end; ++x) {
    darkness += std::max(0, bar.pixelColor(begin, row).green() - bar.pixelColor(x, row).green());
  }
  const double fullLine = bar.pixelColor(begin, row).green() - 0.45 * 255.0;
  EXPECT_NEAR(darkness / fullLine / scale, 1.0, 0.25);
}

TEST_P(ScaleFactorsTest, IconsAreSharp) {
  const double scale = GetParam();
  moveTo(scale);
  const QImage button = picture(ui_.recButton);  // the stop sign: a dark square, x from 18 to 28
  const int row = static_cast<int>(16.0 * scale);
  int blurred = 0;
  for (int x = static_cast<int>(15.0 * scale); x < static_cast<int>(31.0 * scale); ++x) {
    const int grey = button.pixelColor(x, row).green();
    blurred += grey > 110 && grey < 200 ? 1 : 0;
  }
  EXPECT_LE(blurred, 4) << "at most two pixels at either edge";
}

TEST_P(ScaleFactorsTest, TheLongestUsualTimeIsNotClipped) {
  moveTo(GetParam());
  ui_.timeView->setCurrentTimeInSeconds(359999.99);
  ui_.timeView->update();
  const QImage well = picture(ui_.displayWell);
  const double scale = GetParam();
  const QRect view = ui_.timeView->geometry();
  const auto pixel = [scale](double points) { return static_cast<int>(points * scale); };
  // A letter is brighter than the well at the same height, left of the time view.
  const auto hasInk = [&](int x) {
    for (int y = pixel(view.top() + 1.0); y < pixel(view.bottom()); ++y) {
      const int ground = well.pixelColor(pixel(view.left() - 3.0), y).green();
      if (well.pixelColor(x, y).green() > ground + 40) {
        return true;
      }
    }
    return false;
  };
  int first = pixel(view.left() - 3.0);
  while (first < well.width() && !hasInk(first)) {
    ++first;
  }
  const double width = QFontMetricsF(OVTimeText().font()).horizontalAdvance(ui_.timeView->text());
  const double begin = view.left() + view.width() - 1.0 - width;  // points
  EXPECT_GT(begin, view.left()) << "the view is wide enough";
  EXPECT_NEAR(first / scale, begin, 1.5) << "the first digit is whole";
}

// On a bar that is not aligned to pixels, an icon must not have a visible frame.
TEST_P(ScaleFactorsTest, PressingAButtonThatIsOnChangesNothingRoundItsIcon) {
  const double scale = GetParam();
  moveTo(scale);
  ui_.playButton->setOnImage(QStringLiteral("stop.png"));
  ui_.playButton->setIsHighlighted(true);
  ui_.playButton->update();
  const QImage off = picture(ui_.transportBackView);
  ui_.playButton->setIsOn(true);
  const QImage on = picture(ui_.transportBackView);
  // The icon has 18 x 18 points from (200, 20) on; a border of one point is empty.
  const auto isRim = [&](int x, int y) {
    const QRectF icon(QPointF(200.0, 20.0) * scale, QSizeF(18.0, 18.0) * scale);
    const QRectF inside = icon.adjusted(scale, scale, -scale, -scale);
    const QRectF pixel(x, y, 1.0, 1.0);
    return !inside.intersects(pixel);
  };
  const int left = static_cast<int>(195.0 * scale);
  const int right = static_cast<int>(223.0 * scale);
  for (int y = static_cast<int>(16.0 * scale); y < static_cast<int>(42.0 * scale); ++y) {
    for (int x = left; x < right; ++x) {
      if (isRim(x, y)) {
        ASSERT_EQ(on.pixelColor(x, y), off.pixelColor(x, y)) << x << ", " << y;
      }
    }
  }
  EXPECT_NE(on, off) << "the icon itself is darker";
}

TEST_P(ScaleFactorsTest, TheProgressPanelsWordsAreReadable) {
  const double scale = GetParam();
  moveTo(scale);
  ui_.loadingIndicator->setRange(0, 100);
  ui_.loadingIndicator->setValue(40);
  ui_.loadingIndicator->show();
  ui_.loadingPanel->show();
  ui_.loadingPanel->setActivity(QStringLiteral("Drawing the waveform"));
  QCoreApplication::processEvents();
  // The waveform and the marker's line below it show through only slightly.
  ui_.playbackMarkerView->setPosition((ui_.loadingPanel->x() + 40.0) / 640.0);
  const QImage panel = picture(ui_.wfView)
                           .copy(QRectF(QPointF(ui_.loadingPanel->pos()) * scale,
                                        QSizeF(ui_.loadingPanel->size()) * scale)
                                     .toAlignedRect());
  const int words = static_cast<int>((ui_.loadingLabel->geometry().right() + 1) * scale);
  int lightest = 0;
  std::vector<int> ground;
  for (int y = 1; y < panel.height() - 1; ++y) {
    for (int x = static_cast<int>(7.0 * scale); x < words; ++x) {
      lightest = std::max(lightest, panel.pixelColor(x, y).green());
    }
    ground.push_back(panel.pixelColor(words + static_cast<int>(4.0 * scale), y).green());
  }
  EXPECT_GT(lightest, 170);
  EXPECT_LT(*std::max_element(ground.begin(), ground.end()), 95);
  // The bar: filled to four tenths, then its track.
  const int bar = panel.height() / 2;
  const auto at = [&](double share) {
    return panel.pixelColor(static_cast<int>((ui_.loadingIndicator->x() + 150.0 * share) * scale),
                            bar);
  };
  EXPECT_GT(at(0.2).green(), 150);
  EXPECT_LT(at(0.8).green(), 110);
}

INSTANTIATE_TEST_SUITE_P(Desktop, ScaleFactorsTest, testing::ValuesIn(kScaleFactors));

class ScaleFactorsMovedWindowTest : public ScaleFactorsTest {};

TEST_F(ScaleFactorsMovedWindowTest, BetweenScreensItIsRenderedAnewForEachAndKeepsItsSize) {
  for (const double scale : {1.0, 2.0, 1.25, 1.5, 1.0, 1.5, 2.0}) {
    moveTo(scale);
    EXPECT_EQ(ui_.wfView->image().devicePixelRatio(), scale);
    EXPECT_EQ(ui_.wfView->image().size(), pixels({640, 272}, scale));
    EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330));
  }
}

/// A window with its spectrum below the bar.
class ScaleFactorsMovedSpectrumTest : public ScaleFactorsMovedWindowTest {
 protected:
  void SetUp() override {
    ScaleFactorsMovedWindowTest::SetUp();
    const std::vector<float> magnitudes(512, 0.5F);
    ui_.fftView->setSize(magnitudes.size());
    ui_.fftView->setData(magnitudes.data());
    moveTo(1.0);
    strip_ = std::make_unique<OVSpectrumStrip>(&window_, ui_.fftStrip);
    setShown(true);
  }

  void setShown(bool shown) {
    strip_->setShown(shown);
    ASSERT_TRUE(runMainLoopUntil([&] { return !strip_->isMoving(); }));
    ASSERT_TRUE(drainMainQueue());
  }

  std::unique_ptr<OVSpectrumStrip> strip_;
};

TEST_F(ScaleFactorsMovedSpectrumTest,
       BetweenScreensTheStripKeepsItsHeightAndIsPaintedToTheLastPixel) {
  for (const double scale : {2.0, 1.25, 1.5, 1.0, 2.0}) {
    moveTo(scale);
    EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330 + OVSpectrumStrip::kHeight)) << scale;
    EXPECT_EQ(ui_.wfView->size(), QSize(640, 272)) << scale;
    EXPECT_EQ(ui_.wfView->image().size(), pixels({640, 272}, scale)) << scale;
    EXPECT_EQ(ui_.fftView->size(), QSize(640, OVSpectrumStrip::kHeight)) << scale;
    const QImage shown = picture(ui_.fftView);
    EXPECT_EQ(shown.size(), pixels({640, OVSpectrumStrip::kHeight}, scale));
    const auto isSpectrum = [&](int x, int y) {
      const QColor pixel = shown.pixelColor(x, y);
      return pixel.blue() > 55 && pixel.blue() < 140 && pixel.red() < 60;
    };
    for (int x = 0; x < shown.width(); ++x) {
      ASSERT_TRUE(isSpectrum(x, 0) && isSpectrum(x, shown.height() - 1)) << x << " at " << scale;
    }
    for (int y = 0; y < shown.height(); ++y) {
      ASSERT_TRUE(isSpectrum(0, y) && isSpectrum(shown.width() - 1, y)) << y << " at " << scale;
    }
    // The curve of a constant value is at nine tenths of it, whatever the scale.
    const int curve = static_cast<int>((1.0 - 0.5 * 0.9) * OVSpectrumStrip::kHeight * scale);
    int brightest = 0;
    for (int y = curve - 2; y <= curve + 2; ++y) {
      brightest = std::max(brightest, shown.pixelColor(shown.width() / 2, y).green());
    }
    EXPECT_GT(brightest, 80) << scale;
  }
}

TEST_F(ScaleFactorsMovedSpectrumTest, OnAnotherScreenHidingTakesTheStripAwayAndNothingElse) {
  for (const double scale : {2.0, 1.5, 1.25, 1.0}) {
    moveTo(scale);
    setShown(false);
    EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330)) << scale;
    EXPECT_EQ(ui_.wfView->size(), QSize(640, 272)) << scale;
    setShown(true);
    EXPECT_EQ(window_.centralWidget()->size(), QSize(640, 330 + OVSpectrumStrip::kHeight)) << scale;
  }
}

/// A window with its spectrum, of a size that few factors turn into whole device pixels.
class ScaleFactorsOddSizeTest : public ScaleFactorsMovedSpectrumTest {
 protected:
  void SetUp() override {
    ScaleFactorsMovedSpectrumTest::SetUp();
    window_.resize(813, 401 + OVSpectrumStrip::kHeight);
    moveTo(GetParam());
    ASSERT_EQ(window_.size(), QSize(813, 401 + OVSpectrumStrip::kHeight));
    ASSERT_EQ(ui_.wfView->width(), 813);
    ASSERT_EQ(ui_.fftView->size(), QSize(813, OVSpectrumStrip::kHeight));
  }

  [[nodiscard]] static bool isWaveform(const QColor& pixel) { return pixel.blue() > 55; }
  [[nodiscard]] static bool isSpectrum(const QColor& pixel) {
    return pixel.blue() > 55 && pixel.blue() < 140 && pixel.red() < 60;
  }

  /// Every pixel of the first and last row and column.
  static void expectEdges(const QImage& shown, const std::function<bool(const QColor&)>& isRight) {
    for (int x = 0; x < shown.width(); ++x) {
      for (const int y : {0, shown.height() - 1}) {
        ASSERT_TRUE(isRight(shown.pixelColor(x, y))) << x << ", " << y;
      }
    }
    for (int y = 0; y < shown.height(); ++y) {
      for (const int x : {0, shown.width() - 1}) {
        ASSERT_TRUE(isRight(shown.pixelColor(x, y))) << x << ", " << y;
      }
    }
  }
};

TEST_P(ScaleFactorsOddSizeTest, WaveformAndSpectrumArePaintedToTheirLastPixels) {
  const double scale = GetParam();
  const QImage rendered = ui_.wfView->image();
  EXPECT_EQ(rendered.size(), pixels(ui_.wfView->size(), scale));
  expectEdges(rendered, isWaveform);
  expectEdges(picture(ui_.wfView), isWaveform);
  expectEdges(picture(ui_.fftView), isSpectrum);
}

TEST_P(ScaleFactorsOddSizeTest, TheWindowIsPaintedToItsLastPixelsWithoutACrack) {
  const double scale = GetParam();
  const QImage shown = pictureOfWindow(window_);
  for (int x = 0; x < shown.width(); ++x) {
    ASSERT_TRUE(isSpectrum(shown.pixelColor(x, shown.height() - 1))) << "column " << x;
  }
  const auto top = [&](const QWidget* view) {
    return static_cast<int>(std::ceil(view->mapTo(&window_, QPoint()).y() * scale));
  };
  // Between the views, a row may mix both; none is darker than either.
  for (int y = top(ui_.wfView); y < shown.height(); ++y) {
    for (const int x : {0, shown.width() - 1}) {
      const QColor pixel = shown.pixelColor(x, y);
      ASSERT_GE(pixel.green(), 30) << x << ", " << y;
      ASSERT_GT(pixel.blue(), 55) << x << ", " << y;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Desktop, ScaleFactorsOddSizeTest,
                         testing::Values(1.0, 1.25, 1.5, 1.75, 2.0));

TEST_F(ScaleFactorsMovedWindowTest, ItNeverBecomesSmallerThanEverythingNeeds) {
  moveTo(1.0);
  // On some desktops a window keeps its device pixels, which are half as many points here.
  window_.setScreen(screenOfScale(2.0));
  window_.move(screenOfScale(2.0)->geometry().topLeft() + QPoint(40, 60));
  ASSERT_TRUE(runMainLoopUntil([&] { return window_.devicePixelRatioF() == 2.0; }));
  ASSERT_TRUE(drainMainQueue());
  QCoreApplication::processEvents();
  EXPECT_GE(window_.centralWidget()->width(), 580);
  EXPECT_GE(window_.centralWidget()->height(), 240);
}

TEST_F(ScaleFactorsMovedWindowTest, BackOnItsFirstScreenItLooksAsBefore) {
  moveTo(1.0);
  const QImage before = picture(window_.centralWidget());
  moveTo(2.0);
  EXPECT_NE(picture(window_.centralWidget()).size(), before.size());
  moveTo(1.0);
  EXPECT_EQ(picture(window_.centralWidget()), before);
}
