#include "controls/OVPanelDrawing.h"

#include <cmath>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

class OVPanelDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  [[nodiscard]] static QImage draw(bool bottomShadow) {
    QImage picture = makePicture(QSize(40, 58), ratio(), Qt::red);
    QPainter painter(&picture);
    drawPanel(painter, QSizeF(40.0, 58.0), bottomShadow);
    return picture;
  }

  // The grey of a pixel row, counted from the top; the same in every column.
  [[nodiscard]] static int row(const QImage& picture, int y) {
    const QColor color = picture.pixelColor(0, y);
    EXPECT_EQ(color.red(), color.blue());
    EXPECT_EQ(color.red(), color.green());
    EXPECT_LE(colorDistance(picture.pixelColor(picture.width() - 1, y), color), 1);
    return color.green();
  }

  // The gradient in the middle of a pixel row.
  [[nodiscard]] static int gradient(int y) {
    const double fromBottom = 58.0 - (y + 0.5) / ratio();
    return static_cast<int>(std::lround(255.0 * (0.83 + 0.07 * fromBottom / 58.0)));
  }
};

TEST_P(OVPanelDrawingTest, TheGradientIsLighterTowardsTheTop) {
  const QImage picture = draw(false);
  for (const int y : {1, 2, 14, 29, 44, 56}) {
    EXPECT_NEAR(row(picture, y * ratio()), gradient(y * ratio()), 1) << y;
  }
  EXPECT_NEAR(row(picture, picture.height() - 1), 0.83 * 255.0, 1);
}

TEST_P(OVPanelDrawingTest, AWhiteLineOfOnePointRunsAlongTheTop) {
  const QImage picture = draw(false);
  for (int y = 0; y < ratio(); ++y) {
    EXPECT_EQ(row(picture, y), 255);
  }
  EXPECT_LT(row(picture, ratio()), 232);
}

TEST_P(OVPanelDrawingTest, TheShadowIsADarkLineOfOnePointThreeAlongTheBottom) {
  const QImage picture = draw(true);
  const int bottom = picture.height() - 1;
  const double pixels = 1.3 * ratio();
  const int full = static_cast<int>(pixels);
  for (int i = 0; i < full; ++i) {
    EXPECT_NEAR(row(picture, bottom - i), 0.3 * 255.0, 1) << i;
  }
  const double part = pixels - full;
  EXPECT_NEAR(row(picture, bottom - full),
              gradient(bottom - full) * (1.0 - part) + 0.3 * 255.0 * part, 3);
  EXPECT_NEAR(row(picture, bottom - full - 1), gradient(bottom - full - 1), 1);
}

INSTANTIATE_TEST_SUITE_P(AtOneAndTwoPixelsAPoint, OVPanelDrawingTest, testing::Values(1, 2));

}  // namespace
