#include "platform/views/ViewDrawing.h"

#include <cmath>

#include <gtest/gtest.h>
#include <QFont>

#include "support/Pixels.h"

namespace {

class ViewDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }
};

}  // namespace

TEST_P(ViewDrawingTest, TheOriginIsAtTheBottomLeft) {
  const QImage picture = drawnPicture({30, 20}, ratio(), Qt::black, [](QPainter& painter) {
    painter.fillRect(QRectF(0.0, 0.0, 4.0, 2.0), Qt::white);
  });
  EXPECT_EQ(picture.pixelColor(0, picture.height() - 1), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(4 * ratio() - 1, 18 * ratio()), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(4 * ratio(), 18 * ratio()), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(0, 18 * ratio() - 1), QColor(Qt::black));
}

TEST_P(ViewDrawingTest, ALineBetweenPixelsIsSoft) {
  const QImage picture = drawnPicture({30, 20}, ratio(), Qt::black, [](QPainter& painter) {
    painter.setPen(platform::viewPen(Qt::white, 1.0));
    painter.drawLine(QPointF(10.25, 0.0), QPointF(10.25, 20.0));
  });
  const int edge = picture.pixelColor(9 * ratio() + ratio() - 1, 5).red();
  EXPECT_GT(edge, 20);
  EXPECT_LT(edge, 235);
}

TEST_P(ViewDrawingTest, AnUprightBarIsALineOfItsWidth) {
  const QColor color = QColor::fromRgbF(1.0F, 0.5F, 0.0F, 0.7F);
  for (const double left : {10.0, 10.25, 10.5, 10.9, -1.0, 29.5}) {
    const QImage line = drawnPicture({30, 200}, ratio(), Qt::blue, [&](QPainter& painter) {
      painter.setPen(platform::viewPen(color, 2.0));
      painter.drawLine(QPointF(left + 1.0, 0.0), QPointF(left + 1.0, 200.0));
    });
    const QImage bar = drawnPicture({30, 200}, ratio(), Qt::blue, [&](QPainter& painter) {
      platform::fillUprightBar(painter, left, left + 2.0, 200.0, color);
      EXPECT_TRUE(painter.testRenderHint(QPainter::Antialiasing)) << "as it was";
    });
    for (int y = 0; y < bar.height(); ++y) {
      for (int x = 0; x < bar.width(); ++x) {
        ASSERT_LE(colorDistance(bar.pixelColor(x, y), line.pixelColor(x, y)), 2)
            << left << ": " << x << ", " << y;
      }
    }
  }
}

TEST(ViewDrawingUprightBarTest, OfAFractionOfAPixelIsAsFaintAsIsWide) {
  const QImage bar = drawnPicture({8, 80}, 1.25, Qt::black, [](QPainter& painter) {
    platform::fillUprightBar(painter, 2.0, 3.0, 80.0, Qt::white);  // pixels 2.5 to 3.75
  });
  for (int y = 0; y < bar.height(); ++y) {
    EXPECT_EQ(bar.pixelColor(1, y).red(), 0) << y;
    EXPECT_NEAR(bar.pixelColor(2, y).red(), 128, 1) << y;
    EXPECT_NEAR(bar.pixelColor(3, y).red(), 191, 1) << y;
    EXPECT_EQ(bar.pixelColor(4, y).red(), 0) << y;
  }
}

TEST(ViewDrawingUprightBarTest, FarOutsideDrawsNothing) {
  const QImage bar = drawnPicture({8, 8}, 1.0, Qt::black, [](QPainter& painter) {
    platform::fillUprightBar(painter, 1e17, 1e17 + 64.0, 8.0, Qt::white);
    platform::fillUprightBar(painter, -1e300, -1e300, 8.0, Qt::white);
  });
  EXPECT_EQ(bar, makePicture({8, 8}, 1.0, Qt::black));
}

TEST_P(ViewDrawingTest, PensEndWhereTheLineEnds) {
  const QImage picture = drawnPicture({30, 20}, ratio(), Qt::black, [](QPainter& painter) {
    painter.setPen(platform::viewPen(Qt::white, 4.0));
    painter.drawLine(QPointF(10.0, 10.0), QPointF(20.0, 10.0));
  });
  const int middle = picture.height() / 2;
  EXPECT_EQ(picture.pixelColor(10 * ratio() - 1, middle), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(10 * ratio(), middle), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(20 * ratio() - 1, middle), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(20 * ratio(), middle), QColor(Qt::black));
}

TEST_P(ViewDrawingTest, TextStandsUpright) {
  QFont font;
  font.setPixelSize(10);
  QImage expected = makePicture({60, 20}, ratio(), Qt::black);
  QPainter plain(&expected);
  plain.setRenderHint(QPainter::Antialiasing);
  plain.setFont(font);
  plain.setPen(Qt::white);
  plain.drawText(QPointF(5.0, 15.0), "Agf 127");
  plain.end();
  const QImage picture = drawnPicture({60, 20}, ratio(), Qt::black, [&](QPainter& painter) {
    painter.setFont(font);
    painter.setPen(Qt::white);
    platform::drawUprightText(painter, {5.0, 5.0}, "Agf 127");
  });
  EXPECT_NE(picture, makePicture({60, 20}, ratio(), Qt::black));
  EXPECT_EQ(picture, expected);
}

TEST_P(ViewDrawingTest, APainterKnowsTheDevicePixelsOfAPoint) {
  drawnPicture({10, 10}, ratio(), Qt::black, [&](QPainter& painter) {
    EXPECT_DOUBLE_EQ(platform::devicePixelsPerPoint(painter), ratio());
  });
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, ViewDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());

TEST(ViewDrawingGradientTest, FillsThePixelsThatItTouchesAndNoOthers) {
  for (const double scale : {1.25, 1.5, 1.75}) {
    QImage picture(40, 40, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.scale(scale, scale);
    painter.setRenderHint(QPainter::Antialiasing);
    platform::drawViewGradient(painter, {13.0, 9.0}, Qt::white, Qt::white);
    EXPECT_TRUE(painter.testRenderHint(QPainter::Antialiasing)) << "as it was";
    painter.end();
    const int right = static_cast<int>(std::ceil(13.0 * scale));
    const int bottom = static_cast<int>(std::ceil(9.0 * scale));
    EXPECT_EQ(picture.pixelColor(right - 1, bottom - 1), QColor(Qt::white)) << scale;
    EXPECT_EQ(picture.pixelColor(right, 0), QColor(Qt::black)) << scale;
    EXPECT_EQ(picture.pixelColor(0, bottom), QColor(Qt::black)) << scale;
  }
}

TEST(ViewDrawingPenTest, CutsCornersThatAreTooSharpAndKeepsTheTipsOfTheOthers) {
  const auto heightOfTip = [](double spread) {
    const QImage picture = drawnPicture({100, 100}, 1.0, Qt::black, [&](QPainter& painter) {
      painter.setPen(platform::viewPen(Qt::white, 4.0));
      const QPointF corner[] = {{50.0 - spread, 0.0}, {50.0, 60.0}, {50.0 + spread, 0.0}};
      painter.drawPolyline(corner, 3);
    });
    int row = 0;
    while (picture.pixelColor(50, row).red() < 60) {
      ++row;
    }
    return 100 - row - 60;
  };
  // A join is 1 / sin(half its angle) widths long, half of it beyond the corner: 4 points × 6 / 2.
  EXPECT_NEAR(heightOfTip(60.0 / 5.916), 12, 2);
  // 4 points × 12 / 2 would be 24, but exceeds the limit of 10.
  EXPECT_LE(heightOfTip(60.0 / 11.96), 2);
}

TEST(ViewDrawingOpaqueGroundTest, CoversEveryPixelWhereverTheViewsEdgesFall) {
  for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
    for (const int width : {9, 10, 11}) {
      QImage picture = makePicture({30, 30}, ratio, Qt::red);
      const QRect pixels(QPoint(static_cast<int>(3 * ratio), static_cast<int>(3 * ratio)),
                         QPoint(static_cast<int>((3 + width) * ratio), 20));
      QPainter painter(&picture);
      painter.setClipRect(QRectF(QPointF(pixels.topLeft()) / ratio, QSizeF(pixels.size()) / ratio));
      painter.translate(3.0, 3.0);
      platform::paintOpaqueGround(painter, QRect(0, 0, width, 20), Qt::green);
      painter.end();
      for (int x = pixels.left() + 1; x < pixels.right(); ++x) {
        EXPECT_EQ(picture.pixelColor(x, 10), QColor(Qt::green)) << x << " at " << ratio;
      }
      EXPECT_EQ(picture.pixelColor(pixels.left() - 2, 10), QColor(Qt::red)) << "outside the clip";
    }
  }
}
