#include "controls/buttons/OVTransportArtwork.h"

#include <cmath>
#include <cstdlib>
#include <tuple>

#include <gtest/gtest.h>

#include "controls/BezelModel.h"
#include "support/Pixels.h"

namespace {

constexpr double kWidth = 46.0;
constexpr double kHeight = 32.0;
constexpr double kPaper = 0.5;  // the grey that everything is drawn on

using DrawBezel = void (*)(QPainter&, const QRectF&, bool);

struct Grey {
  double white;
  double alpha;
};

double over(double below, Grey grey) {
  return below * (1.0 - grey.alpha) + grey.white * grey.alpha;
}

// The premultiplied grey at `y` of a gradient from `top` to `bottom`.
Grey at(double y, double top, double bottom, Grey from, Grey to) {
  const double t = (y - top) / (bottom - top);
  const double alpha = from.alpha + (to.alpha - from.alpha) * t;
  const double light =
      from.white * from.alpha + (to.white * to.alpha - from.white * from.alpha) * t;
  return {alpha == 0.0 ? 0.0 : light / alpha, alpha};
}

// The plain bezel's shade on its vertical centre line, from the numbers of its layers.
double normalShade(double y) {
  double shade = over(kPaper, {0.9, 1.0});
  shade = over(shade, at(y, 2.0, 30.0, {0.96, 1.0}, {1.0, 0.0}));
  shade = over(shade, at(y, 2.0, 30.0, {0.65, 0.0}, {0.65, 1.0}));
  if (y < 7.0) {
    shade = over(shade, at(y, 2.0, 7.0, {0.45, 0.0}, {0.45, 1.0}));
  }
  shade = over(shade, at(y, 2.5, 29.5, {0.80, 0.75}, {0.89, 0.75}));
  return over(shade, at(y, 2.0, 30.0, {1.0, 0.7}, {1.0, 0.28}));
}

double highlightedShade(double y) {
  double shade = over(kPaper, {0.9, 1.0});
  shade = over(shade, at(y, 2.0, 30.0, {0.55, 0.8}, {0.55, 0.0}));
  shade = over(shade, at(y, 2.0, 30.0, {0.55, 0.0}, {0.55, 0.5}));
  if (y < 7.0) {
    shade = over(shade, at(y, 2.0, 7.0, {0.45, 1.0}, {0.45, 0.0}));
  }
  return over(shade, at(y, 2.0, 30.0, {1.0, 0.5}, {1.0, 0.08}));
}

int level(double shade) {
  return static_cast<int>(std::lround(shade * 255.0));
}

class OVTransportArtworkTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  [[nodiscard]] static QImage draw(DrawBezel drawBezel, bool highlighted,
                                   const QColor& paper = QColor::fromRgbF(0.5F, 0.5F, 0.5F)) {
    QImage picture = makePicture(QSize(46, 32), ratio(), paper);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBezel(painter, QRectF(0.0, 0.0, kWidth, kHeight), highlighted);
    return picture;
  }

  // The grey of the pixel right of and below a point, y downward.
  [[nodiscard]] static int grey(const QImage& picture, double x, double y) {
    return picture
        .pixelColor(static_cast<int>(std::floor(x * ratio())),
                    static_cast<int>(std::floor(y * ratio())))
        .green();
  }

  // The middle of the pixel row that begins at y.
  [[nodiscard]] static double middle(double y) { return y + 0.5 / ratio(); }
};

TEST_P(OVTransportArtworkTest, EveryLayerOfTheNormalBezelAddsUp) {
  const QImage picture = draw(drawBezelWithFrame, false);
  for (const double y : {3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 12.0, 16.0, 20.0, 24.0, 28.0}) {
    EXPECT_NEAR(grey(picture, 23.0, y), level(normalShade(middle(y))), 2) << "y " << y;
  }
}

TEST_P(OVTransportArtworkTest, EveryLayerOfTheHighlightedBezelAddsUp) {
  const QImage picture = draw(drawBezelWithFrame, true);
  for (const double y : {3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 12.0, 16.0, 20.0, 24.0, 28.0}) {
    EXPECT_NEAR(grey(picture, 23.0, y), level(highlightedShade(middle(y))), 2) << "y " << y;
  }
}

TEST_P(OVTransportArtworkTest, EveryPixelIsWhatTheNumbersOfTheLayersGive) {
  for (const bool highlighted : {false, true}) {
    const QImage picture = draw(drawBezelWithFrame, highlighted);
    const BezelModel model(QRectF(0.0, 0.0, kWidth, kHeight), highlighted, kPaper, ratio());
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        const double tolerance = model.isOnACorner(x, y) ? 5.0 : 2.5;
        ASSERT_NEAR(picture.pixelColor(x, y).green(), model.greyAt(x, y), tolerance)
            << x << ", " << y << (highlighted ? ", highlighted" : "");
      }
    }
  }
}

TEST_P(OVTransportArtworkTest, TheHighlightedBezelIsDarkerThroughout) {
  const QImage normal = draw(drawBezelWithFrame, false);
  const QImage highlighted = draw(drawBezelWithFrame, true);
  for (int y = 3; y < 29; ++y) {
    EXPECT_LT(grey(highlighted, 23.0, y), grey(normal, 23.0, y) - 10) << "y " << y;
  }
}

TEST_P(OVTransportArtworkTest, TheBorderIsOnePointWideAroundTheInsetOfOneAndAHalf) {
  for (const bool highlighted : {false, true}) {
    const QImage picture = draw(drawBezelWithFrame, highlighted);
    EXPECT_NEAR(grey(picture, 23.0, 1.0), level(0.45), 1);
    EXPECT_NEAR(grey(picture, 23.0, 30.0), level(0.45), 1);
    EXPECT_NEAR(grey(picture, 1.0, 16.0), level(0.45), 1);
    EXPECT_NEAR(grey(picture, 44.0, 16.0), level(0.45), 1);
    EXPECT_EQ(grey(picture, 0.0, 16.0), 128);
    EXPECT_EQ(grey(picture, 45.0, 16.0), 128);
    EXPECT_EQ(grey(picture, 23.0, 31.0), 128);
    EXPECT_GT(grey(picture, 2.0, 16.0), 150);
    EXPECT_GT(grey(picture, 43.0, 16.0), 150);
  }
}

TEST_P(OVTransportArtworkTest, TheSeparatorRunsAlongTheTopOfTheNormalBezelOnly) {
  const QImage normal = draw(drawBezelWithFrame, false);
  for (const double x : {2.0, 23.0, 43.0}) {
    EXPECT_NEAR(grey(normal, x, 0.0), level(0.45), 1) << "x " << x;
  }
  EXPECT_EQ(grey(normal, 1.0, 0.0), 128);
  EXPECT_EQ(grey(normal, 44.0, 0.0), 128);
  EXPECT_EQ(grey(draw(drawBezelWithFrame, true), 23.0, 0.0), 128);
}

TEST_P(OVTransportArtworkTest, TheSeparatorOfARoundTypeEndsWithoutAFainterPiece) {
  for (const DrawBezel drawBezel : {drawLeftTypeButtonWithFrame, drawRightTypeButtonWithFrame}) {
    const QImage picture = draw(drawBezel, false);
    int dark = 0;
    int neither = 0;
    for (int x = 0; x < picture.width(); ++x) {
      const int level = picture.pixelColor(x, 0).green();
      const bool isLine = std::abs(level - 115) <= 1;
      dark += isLine ? 1 : 0;
      neither += isLine || level == 128 ? 0 : 1;
    }
    EXPECT_GT(dark, 20 * ratio());
    EXPECT_LE(neither, 1) << "the line ends within a pixel";
  }
}

TEST_P(OVTransportArtworkTest, PressingNeverShiftsTheShape) {
  for (const DrawBezel drawBezel :
       {drawBezelWithFrame, drawLeftTypeButtonWithFrame, drawRightTypeButtonWithFrame}) {
    const QImage normal = draw(drawBezel, false, Qt::transparent);
    const QImage highlighted = draw(drawBezel, true, Qt::transparent);
    for (int y = ratio(); y < normal.height(); ++y) {  // below the separator
      for (int x = 0; x < normal.width(); ++x) {
        ASSERT_EQ(normal.pixelColor(x, y).alpha() > 0, highlighted.pixelColor(x, y).alpha() > 0)
            << x << ", " << y;
      }
    }
  }
}

TEST_P(OVTransportArtworkTest, TheRoundTypesMatchThePlainBezelInEveryRow) {
  for (const bool highlighted : {false, true}) {
    const QImage plain = draw(drawBezelWithFrame, highlighted);
    for (const DrawBezel drawBezel : {drawLeftTypeButtonWithFrame, drawRightTypeButtonWithFrame}) {
      const QImage round = draw(drawBezel, highlighted);
      for (double y = 3.0; y < 29.0; y += 1.0 / ratio()) {
        EXPECT_NEAR(grey(round, 23.0, y), grey(plain, 23.0, y), 3) << "y " << y;
      }
      EXPECT_EQ(grey(round, 23.0, 1.0), grey(plain, 23.0, 1.0));
      EXPECT_EQ(grey(round, 23.0, 0.0), grey(plain, 23.0, 0.0));
    }
  }
}

TEST_P(OVTransportArtworkTest, TheLeftTypeHasASmallCornerOnTheRightAndAHalfCircleOnTheLeft) {
  const QImage picture = draw(drawLeftTypeButtonWithFrame, false, Qt::transparent);
  const auto alpha = [&](double x, double y) {
    return picture.pixelColor(static_cast<int>(x * ratio()), static_cast<int>(y * ratio())).alpha();
  };
  // The half circle has its centre at (15.5, 16) and a radius of 15 points.
  for (const double degrees : {100.0, 120.0, 135.0, 160.0, 180.0, 200.0, 225.0, 260.0}) {
    const double angle = degrees * 3.14159265358979 / 180.0;
    for (double radius = 10.0; radius < 14.5; radius += 0.25) {
      EXPECT_GT(alpha(15.5 + radius * std::cos(angle), 16.0 - radius * std::sin(angle)), 170)
          << degrees << " at " << radius;
    }
  }
  EXPECT_EQ(alpha(0.0, 8.0), 0);
  EXPECT_EQ(alpha(2.0, 5.0), 0);
  EXPECT_EQ(alpha(2.0, 27.0), 0);
  EXPECT_EQ(alpha(4.0, 4.0), 0);
  EXPECT_GT(alpha(42.0, 4.0), 200);
  EXPECT_GT(alpha(42.0, 28.0), 200);
}

TEST_P(OVTransportArtworkTest, TheRoundTypesShowNoSeam) {
  for (const bool highlighted : {false, true}) {
    const QImage picture = draw(drawLeftTypeButtonWithFrame, highlighted);
    for (const double y : {9.0, 13.0, 16.0, 21.0, 24.0}) {
      const int first = grey(picture, 8.0, y);
      for (int x = 8 * ratio(); x < 42 * ratio(); ++x) {
        ASSERT_NEAR(picture.pixelColor(x, static_cast<int>(y * ratio())).green(), first, 1)
            << x << ", " << y;
      }
    }
  }
}

TEST_P(OVTransportArtworkTest, TheRightTypeMirrorsTheLeftType) {
  for (const bool highlighted : {false, true}) {
    const QImage left = draw(drawLeftTypeButtonWithFrame, highlighted);
    const QImage right = draw(drawRightTypeButtonWithFrame, highlighted).mirrored(true, false);
    for (int y = 0; y < left.height(); ++y) {
      for (int x = 0; x < left.width(); ++x) {
        ASSERT_LE(colorDistance(left.pixelColor(x, y), right.pixelColor(x, y)), 5)
            << x << ", " << y;
      }
    }
  }
}

TEST_P(OVTransportArtworkTest, TheArtworkStretchesWithItsFrameButKeepsItsSmallMeasures) {
  QImage picture = makePicture(QSize(80, 60), ratio(), QColor::fromRgbF(0.5F, 0.5F, 0.5F));
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  drawBezelWithFrame(painter, QRectF(5.0, 6.0, 70.0, 50.0), false);
  painter.end();
  EXPECT_NEAR(grey(picture, 40.0, 6.0), level(0.45), 1);   // separator, 1 point
  EXPECT_NEAR(grey(picture, 40.0, 7.0), level(0.45), 1);   // border
  EXPECT_NEAR(grey(picture, 40.0, 54.0), level(0.45), 1);  // border at the bottom
  EXPECT_EQ(grey(picture, 40.0, 55.0), 128);
  EXPECT_NEAR(grey(picture, 6.0, 30.0), level(0.45), 1);
  EXPECT_EQ(grey(picture, 5.0, 30.0), 128);
  // The band ends five points below its top.
  EXPECT_GT(grey(picture, 40.0, 13.0), grey(picture, 40.0, 13.0 - 1.0 / ratio()) + 5);
}

TEST_P(OVTransportArtworkTest, AFrameTooSmallForTheInsetsIsDrawnWithoutHarm) {
  for (const double side : {0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 7.9}) {
    for (const DrawBezel drawBezel :
         {drawBezelWithFrame, drawLeftTypeButtonWithFrame, drawRightTypeButtonWithFrame}) {
      for (const bool highlighted : {false, true}) {
        QImage picture = makePicture(QSize(40, 40), ratio(), Qt::white);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        drawBezel(painter, QRectF(16.0, 4.0, side, 32.0), highlighted);
        drawBezel(painter, QRectF(4.0, 16.0, 32.0, side), highlighted);
        painter.end();
        EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::white)) << side;
      }
    }
  }
}

TEST_P(OVTransportArtworkTest, ThePainterIsLeftAsItWas) {
  QImage picture = makePicture(QSize(46, 32), ratio(), Qt::white);
  QPainter painter(&picture);
  painter.setPen(QPen(Qt::red, 7.0));
  const QTransform transform = painter.transform();
  drawLeftTypeButtonWithFrame(painter, QRectF(0.0, 0.0, 46.0, 32.0), false);
  EXPECT_EQ(painter.pen(), QPen(Qt::red, 7.0));
  EXPECT_EQ(painter.transform(), transform);
  EXPECT_FALSE(painter.hasClipping());
  EXPECT_EQ(painter.compositionMode(), QPainter::CompositionMode_SourceOver);
}

INSTANTIATE_TEST_SUITE_P(AtOneAndTwoPixelsAPoint, OVTransportArtworkTest, testing::Values(1, 2));

}  // namespace
