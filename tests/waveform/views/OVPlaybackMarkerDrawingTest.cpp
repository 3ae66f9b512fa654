#include "waveform/views/OVPlaybackMarkerDrawing.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

const QColor kPaper(40, 80, 120);
const QSize kSize(100, 30);

class OVPlaybackMarkerDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }
  [[nodiscard]] static QImage draw(double position, double audioLevel) {
    return drawnPicture(kSize, ratio(), kPaper, [&](QPainter& painter) {
      drawPlaybackMarker(painter, kSize, position, audioLevel);
    });
  }
  static void expectLineOfAlpha(const QImage& picture, int firstPoint, int lastPoint,
                                double alpha) {
    const QColor line = blended(kPaper, Qt::white, alpha);
    for (const int row : {0, picture.height() / 2, picture.height() - 1}) {
      for (int x = 0; x < picture.width(); ++x) {
        const bool onLine = x / ratio() >= firstPoint && x / ratio() <= lastPoint;
        EXPECT_LE(colorDistance(picture.pixelColor(x, row), onLine ? line : kPaper), 1)
            << x << ", " << row;
      }
    }
  }
};

}  // namespace

TEST_P(OVPlaybackMarkerDrawingTest, IsALineTwoPointsWideFromBottomToTop) {
  expectLineOfAlpha(draw(0.25, 1.0), 24, 25, 1.0);
}

TEST_P(OVPlaybackMarkerDrawingTest, TakesItsOpacityFromTheLevel) {
  expectLineOfAlpha(draw(0.5, 0.6), 49, 50, 0.6);
}

TEST_P(OVPlaybackMarkerDrawingTest, IsNeverFainterThanThreeTenths) {
  expectLineOfAlpha(draw(0.5, 0.0), 49, 50, 0.3);
  expectLineOfAlpha(draw(0.5, 0.29), 49, 50, 0.3);
  expectLineOfAlpha(draw(0.5, -4.0), 49, 50, 0.3);
}

TEST_P(OVPlaybackMarkerDrawingTest, IsNeverMoreThanOpaque) {
  expectLineOfAlpha(draw(0.5, 17.0), 49, 50, 1.0);
}

TEST_P(OVPlaybackMarkerDrawingTest, ShowsHalfOfItsWidthAtEachEdge) {
  expectLineOfAlpha(draw(0.0, 1.0), 0, 0, 1.0);
  expectLineOfAlpha(draw(1.0, 1.0), 99, 99, 1.0);
}

TEST_P(OVPlaybackMarkerDrawingTest, WhatIsNotANumberDoesNoHarm) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  expectLineOfAlpha(draw(0.5, nan), 49, 50, 0.3);
  EXPECT_EQ(draw(nan, 1.0), makePicture(kSize, ratio(), kPaper));
  EXPECT_EQ(draw(std::numeric_limits<double>::infinity(), 1.0),
            makePicture(kSize, ratio(), kPaper));
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVPlaybackMarkerDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
