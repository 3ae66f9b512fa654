#include "controls/buttons/OVIconDrawing.h"

#include <gtest/gtest.h>

#include "platform/views/NamedImage.h"
#include "support/Pixels.h"

namespace {

QImage square(int side, const QColor& color) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(color);
  return image;
}

QImage drawn(QSize size, double ratio, const QColor& paper, const platform::NamedImage& icon,
             OVIconBlend blend, double opacity) {
  QImage picture = makePicture(size, ratio, paper);
  QPainter painter(&picture);
  drawCentredIcon(painter, size, icon, blend, opacity);
  return picture;
}

TEST(OVIconDrawingTest, AnIconThatFitsEvenlyIsCentred) {
  EXPECT_EQ(centredIconOrigin({46, 32}, {18, 18}), QPointF(14, 7));
}

TEST(OVIconDrawingTest, AnOddIconLandsHalfAPixelRightOfAndBelowTheCentre) {
  // y points upward, so a smaller y is lower.
  EXPECT_EQ(centredIconOrigin({46, 32}, {17, 17}), QPointF(15, 7));
  EXPECT_EQ(centredIconOrigin({46, 32}, {17, 18}), QPointF(15, 7));
  EXPECT_EQ(centredIconOrigin({46, 32}, {18, 17}), QPointF(14, 7));
  EXPECT_EQ(centredIconOrigin({45, 31}, {18, 18}), QPointF(14, 6));
}

TEST(OVIconDrawingTest, AnIconLargerThanItsButtonIsSnappedTheSameWay) {
  EXPECT_EQ(centredIconOrigin({10, 10}, {13, 13}), QPointF(-1, -2));
}

TEST(OVIconDrawingTest, AnOddIconCoversWholePixels) {
  const platform::NamedImage icon(square(5, Qt::black));
  const QImage picture = drawn({10, 10}, 1.0, Qt::white, icon, OVIconBlend::sourceAtop, 1.0);
  // x 2.5 becomes 3; y 2.5 becomes 2, five rows above the bottom edge plus two.
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inside = x >= 3 && x < 8 && y >= 3 && y < 8;
      EXPECT_EQ(picture.pixelColor(x, y), QColor(inside ? Qt::black : Qt::white)) << x << "," << y;
    }
  }
}

TEST(OVIconDrawingTest, TheDoubleSizeVersionIsDrawnPixelForPixelAtTwoPixelsAPoint) {
  QImage doubled = square(8, Qt::black);
  doubled.setPixelColor(3, 5, Qt::red);
  const platform::NamedImage icon(square(4, Qt::blue), doubled);
  const QImage picture = drawn({10, 10}, 2.0, Qt::white, icon, OVIconBlend::sourceAtop, 1.0);
  EXPECT_EQ(picture.pixelColor(5, 5), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(6, 6), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(6 + 3, 6 + 5), QColor(Qt::red));
  EXPECT_EQ(picture.pixelColor(13, 13), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(14, 14), QColor(Qt::white));
}

TEST(OVIconDrawingTest, OpacityBlendsTheIconWithWhatIsBelow) {
  const platform::NamedImage icon(square(4, QColor(200, 40, 0)));
  const QImage picture =
      drawn({10, 10}, 1.0, QColor(100, 100, 100), icon, OVIconBlend::sourceAtop, 0.5);
  EXPECT_LE(colorDistance(picture.pixelColor(5, 5), QColor(150, 70, 50)), 1);
}

TEST(OVIconDrawingTest, SourceAtopLeavesTransparentPlacesTransparent) {
  const platform::NamedImage icon(square(4, Qt::black));
  const QImage picture = drawn({10, 10}, 1.0, Qt::transparent, icon, OVIconBlend::sourceAtop, 1.0);
  EXPECT_EQ(picture.pixelColor(5, 5).alpha(), 0);
}

TEST(OVIconDrawingTest, PlusDarkerAddsTheDarknessesOfBoth) {
  const platform::NamedImage icon(square(4, QColor(200, 155, 0)));
  const QImage picture =
      drawn({10, 10}, 1.0, QColor(230, 100, 150), icon, OVIconBlend::plusDarker, 1.0);
  // 255 - (255 - below) - (255 - icon), at least 0
  EXPECT_EQ(picture.pixelColor(5, 5), QColor(175, 0, 0));
  EXPECT_EQ(picture.pixelColor(1, 1), QColor(230, 100, 150));
}

TEST(OVIconDrawingTest, PlusDarkerCountsATranslucentIconByItsAlpha) {
  const platform::NamedImage icon(square(4, QColor(55, 155, 255, 128)));
  const QImage picture =
      drawn({10, 10}, 1.0, QColor(230, 230, 230), icon, OVIconBlend::plusDarker, 1.0);
  EXPECT_LE(colorDistance(picture.pixelColor(5, 5), QColor(130, 180, 230)), 1);
}

TEST(OVIconDrawingTest, PlusDarkerIgnoresTheOpacityAndLeavesTheTransparentPartsOfAnIconAlone) {
  QImage image = square(4, Qt::transparent);
  image.setPixelColor(1, 1, QColor(155, 155, 155));
  const QImage picture = drawn({10, 10}, 1.0, QColor(230, 230, 230), platform::NamedImage(image),
                               OVIconBlend::plusDarker, 0.25);
  EXPECT_EQ(picture.pixelColor(4, 4), QColor(130, 130, 130));
  EXPECT_EQ(picture.pixelColor(5, 5), QColor(230, 230, 230));
}

TEST(OVIconDrawingTest, PlusDarkerOfATransparentIconChangesNoPixelWhereverItStands) {
  const platform::NamedImage icon(square(4, Qt::transparent));
  const QColor paper(230, 100, 150);
  for (const double ratio : {1.0, 1.25, 1.5, 1.7, 2.0, 3.0}) {
    for (const double offset : {0.0, 0.3, 0.5, 0.9}) {
      QImage picture = makePicture({12, 12}, ratio, paper);
      const QImage before = picture.copy();
      QPainter painter(&picture);
      painter.setRenderHint(QPainter::Antialiasing);
      painter.translate(offset, offset);
      drawCentredIcon(painter, QSizeF(11, 11), icon, OVIconBlend::plusDarker, 1.0);
      painter.end();
      EXPECT_EQ(picture, before) << ratio << ", " << offset;
    }
  }
}

TEST(OVIconDrawingTest, PlusDarkerStaysInsideTheClip) {
  const platform::NamedImage icon(square(6, Qt::black));
  QImage picture = makePicture({10, 10}, 1.5, QColor(230, 230, 230));
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipRect(QRect(0, 0, 4, 10));
  drawCentredIcon(painter, QSizeF(10, 10), icon, OVIconBlend::plusDarker, 1.0);
  painter.end();
  EXPECT_EQ(picture.pixelColor(5, 7), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(6, 7), QColor(230, 230, 230));
  EXPECT_EQ(picture.pixelColor(10, 7), QColor(230, 230, 230));
}

TEST(OVIconDrawingTest, ANullIconDrawsNothing) {
  for (const auto blend : {OVIconBlend::sourceAtop, OVIconBlend::plusDarker}) {
    const QImage picture = drawn({10, 10}, 1.0, Qt::gray, platform::NamedImage(), blend, 1.0);
    EXPECT_EQ(picture, makePicture({10, 10}, 1.0, Qt::gray));
  }
}

}  // namespace
