#include "waveform/views/OVRecordingTickDrawing.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

constexpr QSize kView(200, 60);
const QColor kGround(35, 40, 64);
const QColor kRed(245, 66, 52);

QImage drawnAt(double position, double ratio = 1.0) {
  return drawnPicture(kView, ratio, kGround,
                      [&](QPainter& painter) { drawRecordingTick(painter, kView, position); });
}

bool isRed(const QImage& picture, int x, int y) {
  return colorDistance(picture.pixelColor(x, y), kRed) < 40;
}

class OVRecordingTickDrawingTest : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(OVRecordingTickDrawingTest, IsAWedgeAtTheUpperEdgeWithItsTipAtThePosition) {
  const int ratio = GetParam();
  const QImage picture = drawnAt(0.5, ratio);
  EXPECT_TRUE(isRed(picture, 100 * ratio, 0));
  EXPECT_TRUE(isRed(picture, 97 * ratio, 0));
  EXPECT_TRUE(isRed(picture, 102 * ratio, 0));
  EXPECT_TRUE(isRed(picture, 100 * ratio, 4 * ratio));
  EXPECT_FALSE(isRed(picture, 97 * ratio, 4 * ratio)) << "narrower below";
  EXPECT_FALSE(isRed(picture, 100 * ratio, 8 * ratio));
  EXPECT_FALSE(isRed(picture, 94 * ratio, 0));
}

TEST_P(OVRecordingTickDrawingTest, LeansInwardAtTheEnds) {
  const int ratio = GetParam();
  const QImage first = drawnAt(0.0, ratio);
  EXPECT_TRUE(isRed(first, 0, 3 * ratio)) << "the tip";
  EXPECT_TRUE(isRed(first, 6 * ratio, 0)) << "the whole width";
  const QImage last = drawnAt(1.0, ratio);
  EXPECT_TRUE(isRed(last, 200 * ratio - 1, 3 * ratio));
  EXPECT_TRUE(isRed(last, 193 * ratio, 0));
}

INSTANTIATE_TEST_SUITE_P(Screens, OVRecordingTickDrawingTest, testing::Values(1, 2));

TEST(OVRecordingTickDrawingBoundsTest, CoverEverythingThatIsDrawn) {
  for (const double position : {0.0, 0.01, 0.333, 0.5, 0.999, 1.0}) {
    const QImage picture = drawnAt(position);
    const QRect bounds = recordingTickBounds(kView, position).toAlignedRect();
    EXPECT_LE(bounds.width(), 13);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (!bounds.contains(x, y)) {
          ASSERT_EQ(picture.pixelColor(x, y), kGround) << position << ": " << x << ", " << y;
        }
      }
    }
  }
}

TEST(OVRecordingTickDrawingBoundsTest, APositionThatIsNoNumberDrawsNothing) {
  for (const double position : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_TRUE(recordingTickBounds(kView, position).isEmpty());
    EXPECT_EQ(drawnAt(position), makePicture(kView, 1.0, kGround));
  }
}

TEST(OVRecordingTickDrawingBoundsTest, AViewNarrowerThanTheTickIsNoProblem) {
  const QImage picture = drawnPicture({4, 20}, 1.0, kGround, [](QPainter& painter) {
    drawRecordingTick(painter, {4, 20}, 0.5);
  });
  EXPECT_TRUE(isRed(picture, 2, 0));
}
