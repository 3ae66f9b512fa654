#include "waveform/views/OVLossMarksDrawing.h"

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

constexpr QSize kView(200, 60);
const QColor kGround(35, 40, 64);
const QColor kAmber(255, 190, 70);

OVLossMark lossAt(std::uint64_t frame, std::uint64_t frames = 0) {
  return {.atFrame = frame, .frames = frames, .text = QString()};
}

// Of a document of 1000 frames.
QImage drawnAt(const OVLossMark& mark, double ratio = 1.0) {
  return drawnPicture(kView, ratio, kGround,
                      [&](QPainter& painter) { drawLossMark(painter, kView, mark, 1000); });
}

bool isAmber(const QImage& picture, int x, int y) {
  return colorDistance(picture.pixelColor(x, y), kAmber) < 40;
}

class OVLossMarksDrawingTest : public testing::TestWithParam<int> {};

}  // namespace

TEST_P(OVLossMarksDrawingTest, ALossIsABarAtTheUpperEdgeThatBeginsAtItsPlace) {
  const int ratio = GetParam();
  const QImage picture = drawnAt(lossAt(500, 250), ratio);  // points 100 to 150
  EXPECT_TRUE(isAmber(picture, 100 * ratio, 0));
  EXPECT_TRUE(isAmber(picture, 150 * ratio - 1, 4 * ratio - 1));
  EXPECT_FALSE(isAmber(picture, 100 * ratio - 1, 0));
  EXPECT_FALSE(isAmber(picture, 150 * ratio, 0));
  EXPECT_FALSE(isAmber(picture, 120 * ratio, 4 * ratio));
}

TEST_P(OVLossMarksDrawingTest, AShortLossIsWideEnoughToSeeAlsoAtTheEnds) {
  const int ratio = GetParam();
  for (const std::uint64_t frame : {0U, 500U, 1000U}) {
    const QImage picture = drawnAt(lossAt(frame, 1), ratio);
    int width = 0;
    for (int x = 0; x < picture.width(); ++x) {
      width += isAmber(picture, x, ratio) ? 1 : 0;
    }
    EXPECT_EQ(width, 5 * ratio) << frame;
  }
}

INSTANTIATE_TEST_SUITE_P(Screens, OVLossMarksDrawingTest, testing::Values(1, 2));

TEST(OVLossMarksDrawingBoundsTest, CoverEverythingThatIsDrawnWithinTheStrip) {
  for (const auto& mark :
       {lossAt(0), lossAt(333), lossAt(990, 10), lossAt(1000), lossAt(0, 5000)}) {
    const QImage picture = drawnAt(mark);
    const QRect bounds = lossMarkBounds(kView, mark, 1000).toAlignedRect();
    EXPECT_TRUE(lossMarkStrip(kView).toAlignedRect().adjusted(-1, 0, 4000, 0).contains(bounds));
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        if (!bounds.contains(x, y)) {
          ASSERT_EQ(picture.pixelColor(x, y), kGround) << mark.atFrame << ": " << x << ", " << y;
        }
      }
    }
  }
}

TEST(OVLossMarksDrawingBoundsTest, WithoutAudioThereIsNothingToMark) {
  EXPECT_TRUE(lossMarkBounds(kView, lossAt(0, 10), 0).isEmpty());
  const QImage picture = drawnPicture(kView, 1.0, kGround, [&](QPainter& painter) {
    drawLossMark(painter, kView, lossAt(0, 10), 0);
  });
  EXPECT_EQ(picture, makePicture(kView, 1.0, kGround));
}
