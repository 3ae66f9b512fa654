#include "displays/OVFFTDrawing.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

const QColor kBackground(36, 54, 71);  // (0.14, 0.21, 0.28)
const QColor kGraph(41, 111, 125);     // (0.16, 0.435, 0.49)
const QColor kGrid(37, 82, 91);        // (0.145, 0.32, 0.356)

class OVFFTDrawingTest : public testing::TestWithParam<int> {
 protected:
  /// Device pixels per point.
  static int ratio() { return GetParam(); }

  template <typename Draw>
  static QImage drawn(QSize size, Draw draw) {
    return drawnPicture(size, ratio(), Qt::magenta, draw);
  }

  QImage spectrum(QSize size, const std::vector<float>& data) {
    return drawn(size, [&](QPainter& painter) { drawing_.drawSpectrum(painter, size, data); });
  }

  /// Whether all device pixels in the columns [left, right) of a row of points have the colour.
  static bool rowHasColor(const QImage& picture, int row, int left, int right,
                          const QColor& color) {
    for (int x = left * ratio(); x < right * ratio(); ++x) {
      for (int y = row * ratio(); y < (row + 1) * ratio(); ++y) {
        if (colorDistance(picture.pixelColor(x, y), color) > 1) {
          return false;
        }
      }
    }
    return true;
  }

  static bool hasOnlyBackground(const QImage& picture) {
    const QSize points = picture.deviceIndependentSize().toSize();
    for (int row = 0; row < points.height(); ++row) {
      if (!rowHasColor(picture, row, 0, points.width(), kBackground)) {
        return false;
      }
    }
    return true;
  }

  OVFFTDrawing drawing_;
};

/// The value that is drawn at this height in a view 100 points high.
float valueAt(double height) {
  return static_cast<float>(height / 90.0);
}

}  // namespace

TEST_P(OVFFTDrawingTest, WithoutValuesThereIsOnlyTheBackground) {
  EXPECT_TRUE(hasOnlyBackground(spectrum({64, 20}, {})));
}

TEST_P(OVFFTDrawingTest, ValuesOfZeroDrawAFlatLineAlongTheBottomEdge) {
  const QImage picture = spectrum({64, 20}, std::vector<float>(512, 0.0F));
  // The line is one point high, and its lower half is below the view.
  const int bottom = picture.height() - 1;
  const QColor expected = ratio() == 1 ? blended(kBackground, kGraph, 0.5) : kGraph;
  for (int x = 0; x < picture.width(); ++x) {
    ASSERT_LE(colorDistance(picture.pixelColor(x, bottom), expected), 2) << x;
    ASSERT_EQ(picture.pixelColor(x, bottom - 1), kBackground) << x;
  }
}

TEST_P(OVFFTDrawingTest,
       BeginsInTheCornerReachesTheFirstValueAfterOneStepAndTheLastAtTheRightEdge) {
  // Four steps of 20 points: up from the corner, level, level, down to the corner at the right.
  const QImage picture =
      spectrum({80, 100}, {valueAt(45.5), valueAt(45.5), valueAt(45.5), valueAt(0.0)});
  EXPECT_TRUE(rowHasColor(picture, 54, 21, 59, kGraph));
  EXPECT_TRUE(rowHasColor(picture, 53, 21, 59, kBackground));
  EXPECT_TRUE(rowHasColor(picture, 55, 21, 59, kBackground));
  EXPECT_TRUE(rowHasColor(picture, 54, 0, 18, kBackground));
  EXPECT_TRUE(rowHasColor(picture, 54, 62, 80, kBackground));
  EXPECT_NE(picture.pixelColor(0, picture.height() - 1), kBackground);
  EXPECT_NE(picture.pixelColor(picture.width() - 1, picture.height() - 1), kBackground);
  // Half-way up the first step: (10, 22.75).
  EXPECT_NE(picture.pixelColor(10 * ratio(), 77 * ratio()), kBackground);
}

TEST_P(OVFFTDrawingTest, BothNumbersOfBinsSpanTheWholeWidth) {
  for (const std::size_t size : {std::size_t{2048}, std::size_t{512}}) {
    const QImage picture = spectrum({640, 100}, std::vector<float>(size, valueAt(45.5)));
    EXPECT_TRUE(rowHasColor(picture, 54, 3, 640, kGraph)) << size;
    EXPECT_TRUE(rowHasColor(picture, 53, 3, 640, kBackground)) << size;
    EXPECT_TRUE(rowHasColor(picture, 99, 3, 640, kBackground)) << size;
  }
}

TEST_P(OVFFTDrawingTest, StepsAdaptToTheNumberOfValues) {
  std::vector<float> data(8, 0.0F);
  data[3] = valueAt(80.0);
  const QImage eight = spectrum({80, 100}, data);  // its peak is at x = 40
  data.resize(16, 0.0F);
  const QImage sixteen = spectrum({80, 100}, data);  // at x = 20
  const auto lit = [](const QImage& picture, int point) {
    return picture.pixelColor(point * ratio(), 30 * ratio()) != kBackground;
  };
  EXPECT_TRUE(lit(eight, 40) || lit(eight, 39));
  EXPECT_FALSE(lit(eight, 20));
  EXPECT_TRUE(lit(sixteen, 20) || lit(sixteen, 19));
  EXPECT_FALSE(lit(sixteen, 40));
}

TEST_P(OVFFTDrawingTest, OneReachesNinetyPercentOfTheHeight) {
  const QImage picture = spectrum({80, 200}, std::vector<float>(80, 1.0F));
  // y = 180, so the line covers 179.5 to 180.5: half a row on either side at 1x.
  const int edge = 20 * ratio();
  const QColor half = blended(kBackground, kGraph, ratio() == 1 ? 0.5 : 1.0);
  EXPECT_LE(colorDistance(picture.pixelColor(40 * ratio(), edge), half), 1);
  EXPECT_LE(colorDistance(picture.pixelColor(40 * ratio(), edge - 1), half), 1);
  EXPECT_EQ(picture.pixelColor(40 * ratio(), edge + 1), kBackground);
  EXPECT_EQ(picture.pixelColor(40 * ratio(), edge - 2), kBackground);
}

TEST_P(OVFFTDrawingTest, LargerValuesRunOffTheTop) {
  std::vector<float> data(8, 0.0F);
  data[3] = 3.0F;
  const QImage picture = spectrum({80, 100}, data);
  bool lit = false;
  for (int x = 0; x < picture.width(); ++x) {
    lit = lit || picture.pixelColor(x, 0) != kBackground;
  }
  EXPECT_TRUE(lit);
}

TEST_P(OVFFTDrawingTest, ValuesThatAreNotNumbersCountAsZero) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(spectrum({80, 100}, {0.5F, nan, 0.25F, nan}),
            spectrum({80, 100}, {0.5F, 0.0F, 0.25F, 0.0F}));
}

TEST_P(OVFFTDrawingTest, EndlessValuesRunOffTheTopToo) {
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(spectrum({80, 100}, {0.5F, infinity, 0.25F, 0.0F}),
            spectrum({80, 100}, {0.5F, std::numeric_limits<float>::max(), 0.25F, 0.0F}));
}

TEST_P(OVFFTDrawingTest, AnEarlierDrawingLeavesNoTrace) {
  const QImage first = spectrum({80, 100}, {0.5F, 0.25F});
  static_cast<void>(spectrum({80, 100}, std::vector<float>(300, 0.7F)));
  EXPECT_EQ(spectrum({80, 100}, {0.5F, 0.25F}), first);
}

TEST_P(OVFFTDrawingTest, TheGradientIsTheWaveformsUpsideDown) {
  const QImage picture = drawn({10, 100}, [](QPainter& painter) {
    OVFFTDrawing::drawGradient(painter, {10, 100});
  });
  const QColor bottom(35, 37, 62);
  const QColor top(36, 54, 71);
  for (const int fromTop : {0, 25, 50, 75, 99}) {
    const QColor expected = blended(bottom, top, 1.0 - (fromTop + 0.5) / 100.0);
    EXPECT_LE(colorDistance(picture.pixelColor(5 * ratio(), fromTop * ratio()), expected), 1)
        << fromTop;
  }
}

TEST_P(OVFFTDrawingTest, TheGridHasALineEveryTwentyFourPoints) {
  const QImage picture = drawn({100, 60}, [](QPainter& painter) {
    painter.fillRect(QRectF(0, 0, 100, 60), kBackground);
    OVFFTDrawing::drawGrid(painter, {100, 60});
  });
  // Vertical lines fill the points 0, 24, 48, … 96; checked where no horizontal line passes.
  for (int point = 0; point < 100; ++point) {
    EXPECT_EQ(rowHasColor(picture, 59, point, point + 1, kGrid), point % 24 == 0) << point;
  }
  // Horizontal lines begin at heights 12.5, 36.5 and 60.5 and end half a point lower.
  EXPECT_TRUE(rowHasColor(picture, 60 - 13, 1, 2, kGrid));
  EXPECT_TRUE(rowHasColor(picture, 60 - 37, 1, 2, kGrid));
  EXPECT_EQ(picture.pixelColor(2 * ratio(), 30 * ratio()), kBackground);
  const QColor rightEnd = picture.pixelColor(99 * ratio(), (60 - 12) * ratio());
  EXPECT_GT(colorDistance(rightEnd, kBackground), 5);
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVFFTDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
