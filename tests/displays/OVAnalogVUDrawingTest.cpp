#include "displays/OVAnalogVUDrawing.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

const QColor kPaper(20, 30, 60);
const QColor kDial(10, 90, 40);
const QColor kNeedle(255, 0, 0);
constexpr QSize kDialSize(220, 130);

/// A dial of one colour, so that pixels of any other colour are the needle's.
platform::NamedImage plainDial(QSize size = kDialSize) {
  QImage single(size, QImage::Format_ARGB32_Premultiplied);
  single.fill(kDial);
  QImage doubled(2 * size, QImage::Format_ARGB32_Premultiplied);
  doubled.fill(kDial);
  return platform::NamedImage(single, doubled);
}

class OVAnalogVUDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  [[nodiscard]] static QImage draw(QSize size, const std::vector<float>& levels,
                                   const platform::NamedImage& dial = plainDial()) {
    return drawnPicture(size, ratio(), kPaper,
                        [&](QPainter& painter) { drawAnalogVU(painter, dial, levels); });
  }

  /// The pixel right of and above a point in view coordinates.
  [[nodiscard]] static QColor at(const QImage& picture, QPointF point) {
    return picture.pixelColor(
        static_cast<int>(std::floor(point.x() * ratio())),
        picture.height() - 1 - static_cast<int>(std::floor(point.y() * ratio())));
  }

  /// The point at these distances along the needle from its pivot and to its right, in points.
  [[nodiscard]] static QPointF besideNeedle(double degrees, double along, double right,
                                            double left = 0.0) {
    const double angle = degrees * 3.14159265358979323846 / 180.0;
    return {left + 110.0 + along * std::sin(angle) + right * std::cos(angle),
            along * std::cos(angle) - right * std::sin(angle)};
  }

  /// Expects a red line 3 points wide and 100 long at this angle from the vertical.
  static void expectNeedle(const QImage& picture, double degrees, double left = 0.0) {
    for (const double along : {5.0, 30.0, 60.0, 98.0}) {
      for (const double right : {-0.4, 0.0, 0.4}) {
        EXPECT_LE(colorDistance(at(picture, besideNeedle(degrees, along, right, left)), kNeedle), 2)
            << degrees << " degrees, " << along << " along, " << right;
      }
      for (const double right : {-3.3, 3.3}) {
        EXPECT_EQ(at(picture, besideNeedle(degrees, along, right, left)), kDial)
            << degrees << " degrees, " << along << " along, " << right;
      }
    }
    EXPECT_EQ(at(picture, besideNeedle(degrees, 102.5, 0.0, left)), kDial) << degrees;
  }
};

}  // namespace

TEST(OVAnalogVUDrawingNeedleTest, StandsAtSixtyTimesTheLevelMinusFortyFiveDegrees) {
  constexpr double kRadians = 0.017453292519943295;
  EXPECT_DOUBLE_EQ(analogNeedleAngle(0.0F), -45.0 * kRadians);
  EXPECT_DOUBLE_EQ(analogNeedleAngle(0.75F), 0.0);
  EXPECT_DOUBLE_EQ(analogNeedleAngle(1.0F), 15.0 * kRadians);
  EXPECT_DOUBLE_EQ(analogNeedleAngle(1.5F), 45.0 * kRadians);
  EXPECT_DOUBLE_EQ(analogNeedleAngle(3.0F), 135.0 * kRadians) << "there is no stop";
}

TEST(OVAnalogVUDrawingNeedleTest, ItsLevelHasTheAccuracyOfAFloat) {
  EXPECT_DOUBLE_EQ(analogNeedleAngle(0.1F),
                   (static_cast<double>(0.1F) * 60.0 - 45.0) * 0.017453292519943295);
}

TEST(OVAnalogVUDrawingNeedleTest, ItsTipIsReckonedFrom110WhateverTheWidthOfADial) {
  EXPECT_EQ(analogNeedleTip(0.75F, 220.0, 0), QPointF(110.0, 100.0));
  EXPECT_EQ(analogNeedleTip(0.75F, 220.0, 1), QPointF(330.0, 100.0));
  EXPECT_EQ(analogNeedleTip(0.75F, 300.0, 0), QPointF(110.0, 100.0));
  EXPECT_EQ(analogNeedleTip(0.75F, 300.0, 2), QPointF(710.0, 100.0));
  const QPointF tip = analogNeedleTip(1.5F, 220.0, 0);
  EXPECT_NEAR(tip.x(), 110.0 + 70.710678, 1e-5);
  EXPECT_NEAR(tip.y(), 70.710678, 1e-5);
}

TEST_P(OVAnalogVUDrawingTest, SilenceLeansTheNeedleFortyFiveDegreesToTheLeft) {
  expectNeedle(draw(kDialSize, {0.0F}), -45.0);
}

TEST_P(OVAnalogVUDrawingTest, ThreeQuartersStandUpright) {
  const QImage picture = draw(kDialSize, {0.75F});
  expectNeedle(picture, 0.0);
  // Points 108.5 to 111.5: at 1x half a pixel on either side.
  const QColor edge = ratio() == 1 ? blended(kDial, kNeedle, 0.5) : kNeedle;
  EXPECT_LE(colorDistance(at(picture, {108.5, 50.0}), edge), 1);
  EXPECT_LE(colorDistance(at(picture, {111.0, 50.0}), edge), 1);
  EXPECT_EQ(at(picture, {107.5, 50.0}), kDial);
  EXPECT_EQ(at(picture, {112.0, 50.0}), kDial);
  EXPECT_EQ(at(picture, {110.0, 99.5}), kNeedle);
  EXPECT_EQ(at(picture, {110.0, 100.0}), kDial) << "flat ends";
}

TEST_P(OVAnalogVUDrawingTest, FullScaleLeansFifteenDegreesToTheRight) {
  expectNeedle(draw(kDialSize, {1.0F}), 15.0);
}

TEST_P(OVAnalogVUDrawingTest, OneAndAHalfPointsFortyFiveDegreesToTheRight) {
  expectNeedle(draw(kDialSize, {1.5F}), 45.0);
}

TEST_P(OVAnalogVUDrawingTest, EveryChannelHasADialToTheRightOfTheLast) {
  const QImage picture = draw({700, 130}, {0.0F, 0.75F, 1.0F});
  expectNeedle(picture, -45.0);
  expectNeedle(picture, 0.0, 220.0);
  expectNeedle(picture, 15.0, 440.0);
  EXPECT_EQ(at(picture, {659.5, 120.0}), kDial);
  EXPECT_EQ(at(picture, {660.0, 120.0}), kPaper);
}

TEST_P(OVAnalogVUDrawingTest, TheDialStandsUprightOnTheBottomEdge) {
  QImage image(kDialSize * ratio(), QImage::Format_ARGB32_Premultiplied);
  image.fill(kDial);
  image.setPixelColor(0, 0, Qt::white);                                  // top left
  image.setPixelColor(image.width() - 1, image.height() - 1, Qt::blue);  // bottom right
  const platform::NamedImage dial =
      ratio() == 1 ? platform::NamedImage(image)
                   : platform::NamedImage(QImage(kDialSize, image.format()), image);
  const QImage picture = draw({240, 150}, {0.75F}, dial);
  EXPECT_EQ(at(picture, {0.0, 129.99}), QColor(Qt::white));
  EXPECT_EQ(at(picture, {219.99, 0.0}), QColor(Qt::blue));
  EXPECT_EQ(at(picture, {0.0, 130.0}), kPaper);
  EXPECT_EQ(at(picture, {220.0, 0.0}), kPaper);
}

TEST_P(OVAnalogVUDrawingTest, TheDialIsCopiedNotBlended) {
  QImage glass(kDialSize, QImage::Format_ARGB32_Premultiplied);
  glass.fill(QColor(200, 100, 0, 128));
  const QImage picture = draw(kDialSize, {0.75F}, platform::NamedImage(glass));
  const QColor shown = at(picture, {10.0, 10.0});
  EXPECT_EQ(shown.alpha(), 128);
  EXPECT_NEAR(shown.red(), 200, 1);
}

TEST_P(OVAnalogVUDrawingTest, TheNeedleTurnsAroundTheMiddleOfADialOfAnyWidth) {
  // The pivot is at 150 but the tip at (110, 100): the line leans to the left.
  const QImage picture = draw({300, 130}, {0.75F}, plainDial({300, 130}));
  EXPECT_EQ(at(picture, {149.0, 2.5}), kNeedle);
  EXPECT_EQ(at(picture, {130.0, 50.0}), kNeedle);
  EXPECT_EQ(at(picture, {111.0, 97.0}), kNeedle);
  EXPECT_EQ(at(picture, {110.0, 50.0}), kDial);
}

TEST_P(OVAnalogVUDrawingTest, LevelsThatAreNoNumbersShowTheDialWithoutANeedle) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  QImage expected = makePicture({440, 130}, ratio(), kDial);
  EXPECT_EQ(draw({440, 130}, {nan, infinity}), expected);
}

TEST_P(OVAnalogVUDrawingTest, WithoutLevelsNothingIsDrawn) {
  EXPECT_EQ(draw(kDialSize, {}), makePicture(kDialSize, ratio(), kPaper));
}

TEST_P(OVAnalogVUDrawingTest, WithoutItsImageTheNeedlesStandInOnePlace) {
  const QImage picture = draw(kDialSize, {0.75F, 0.75F}, platform::NamedImage());
  // A missing image has width 0, so the pivot is in the corner.
  EXPECT_EQ(at(picture, {1.0, 0.9}), kNeedle);
  EXPECT_EQ(at(picture, {200.0, 120.0}), kPaper);
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVAnalogVUDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
