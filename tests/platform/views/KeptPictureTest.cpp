#include "platform/views/KeptPicture.h"

#include <gtest/gtest.h>

#include "platform/views/RoundShapes.h"
#include "support/Pixels.h"

namespace {

const QColor kPaper(20, 30, 60);
const QColor kInk(250, 160, 10);
const QRectF kArea(4.0, 4.0, 24.0, 24.0);

void fillDisc(QPainter& painter, QColor color) {
  painter.fillPath(platform::discPath(kArea.center(), kArea.width() / 2.0), color);
}

class KeptPictureTest : public testing::Test {
 protected:
  QImage draw(double ratio, QPointF place, double opacity) {
    return drawnPicture({40, 40}, ratio, kPaper, [&](QPainter& painter) {
      painter.translate(place);
      picture_.draw(
          painter, kArea,
          [this](QPainter& first) {
            ++rendered_;
            fillDisc(first, ink_);
          },
          opacity);
    });
  }

  platform::KeptPicture picture_;
  QColor ink_ = kInk;
  int rendered_ = 0;
};

}  // namespace

TEST_F(KeptPictureTest, LooksLikeATranslucentFill) {
  for (const double ratio : {1.0, 1.25, 2.0}) {
    const QImage filled = drawnPicture({40, 40}, ratio, kPaper, [&](QPainter& painter) {
      QColor ink = kInk;
      ink.setAlphaF(0.4F);
      painter.translate(1.3, 2.7);
      fillDisc(painter, ink);
    });
    const QImage drawn = draw(ratio, {1.3, 2.7}, 0.4);
    for (int y = 0; y < filled.height(); ++y) {
      for (int x = 0; x < filled.width(); ++x) {
        ASSERT_LE(colorDistance(filled.pixelColor(x, y), drawn.pixelColor(x, y)), 2)
            << x << ", " << y << " at " << ratio;
      }
    }
  }
}

TEST_F(KeptPictureTest, AnotherOpacityIsOnlyBlended) {
  draw(1.0, {}, 0.3);
  const QImage fuller = draw(1.0, {}, 1.0);
  EXPECT_EQ(rendered_, 1);
  EXPECT_EQ(fuller.pixelColor(16, 23), kInk);
}

TEST_F(KeptPictureTest, AnotherPlaceOrScaleIsRenderedAnew) {
  draw(1.0, {}, 1.0);
  draw(1.0, {0.5, 0.0}, 1.0);
  draw(2.0, {0.5, 0.0}, 1.0);
  EXPECT_EQ(rendered_, 3);
}

TEST_F(KeptPictureTest, WhatIsForgottenIsRenderedAnew) {
  draw(1.0, {}, 1.0);
  ink_ = Qt::white;
  picture_.forget();
  EXPECT_EQ(draw(1.0, {}, 1.0).pixelColor(16, 23), QColor(Qt::white));
  EXPECT_EQ(rendered_, 2);
}

TEST_F(KeptPictureTest, AnEmptyAreaDrawsNothing) {
  const QImage picture = drawnPicture({8, 8}, 1.0, kPaper, [&](QPainter& painter) {
    picture_.draw(
        painter, QRectF(), [](QPainter& first) { fillDisc(first, kInk); }, 1.0);
  });
  EXPECT_EQ(picture, makePicture({8, 8}, 1.0, kPaper));
}
