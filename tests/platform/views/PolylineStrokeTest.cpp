#include "platform/views/PolylineStroke.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <QPainterPath>

#include "support/Pixels.h"

namespace {

constexpr int kFiner = 16;  // subdivisions of a reference pixel in each direction

std::vector<QPointF> zigzag(QSize size, int bars, double reach) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> part(0.0, reach);
  std::vector<QPointF> points{{0.0, size.height() / 2.0}};
  for (int i = 1; i <= bars; ++i) {
    const double x = i * size.width() / static_cast<double>(bars);
    const double y = part(random) * size.height() / 2.0;
    points.emplace_back(x, size.height() / 2.0 + y);
    points.emplace_back(x, size.height() / 2.0 - y);
  }
  return points;
}

/// Qt's own stroke without antialiasing, on a picture kFiner times as fine, then averaged. Each
/// corner is stroked separately, which does not change the union of the pieces.
QImage reference(QSize size, int ratio, const std::vector<QPointF>& points, double width) {
  const QImage fine = drawnPicture(size, ratio * kFiner, Qt::black, [&](QPainter& painter) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (std::size_t i = 2; i < points.size(); ++i) {
      QPainterPath corner(points[i - 2]);
      corner.lineTo(points[i - 1]);
      corner.lineTo(points[i]);
      painter.strokePath(corner, platform::viewPen(Qt::white, width));
    }
  });
  QImage averaged = makePicture(size, ratio, Qt::black);
  for (int y = 0; y < averaged.height(); ++y) {
    for (int x = 0; x < averaged.width(); ++x) {
      int sum = 0;
      for (int i = 0; i < kFiner * kFiner; ++i) {
        sum += qRed(fine.pixel(x * kFiner + i % kFiner, y * kFiner + i / kFiner));
      }
      const int level = sum / (kFiner * kFiner);
      averaged.setPixelColor(x, y, QColor(level, level, level));
    }
  }
  return averaged;
}

class PolylineStrokeTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  [[nodiscard]] QImage draw(QSize size, const std::vector<QPointF>& points, double width,
                            const QColor& color = Qt::white) {
    return drawnPicture(size, ratio(), Qt::black, [&](QPainter& painter) {
      stroke_.draw(painter, QRectF(QPointF(), QSizeF(size)), points, color, width);
    });
  }

  void expectLikeReference(QSize size, const std::vector<QPointF>& points, double width) {
    EXPECT_LT(meanDistance(draw(size, points, width), reference(size, ratio(), points, width)),
              2.0);
  }

  platform::PolylineStroke stroke_;
};

}  // namespace

TEST_P(PolylineStrokeTest, DenseHighZigzagsLookAsIfStrokedAsOneShape) {
  expectLikeReference({60, 50}, zigzag({60, 50}, 60, 0.9), 1.0);
}

TEST_P(PolylineStrokeTest, LowZigzagsKeepTheTipsOfTheirJoins) {
  expectLikeReference({60, 30}, zigzag({60, 30}, 30, 0.3), 1.0);
}

TEST_P(PolylineStrokeTest, SparseZigzagsAndWiderPensLookAsIfStrokedAsOneShape) {
  expectLikeReference({60, 50}, zigzag({60, 50}, 6, 0.9), 1.0);
  expectLikeReference({60, 50}, zigzag({60, 50}, 6, 0.9), 4.0);
}

TEST_P(PolylineStrokeTest, LinesThatTurnBackOnThemselvesLookAsIfStrokedAsOneShape) {
  const std::vector<QPointF> star{{5, 5}, {55, 30}, {5, 20}, {40, 45}, {30, 4}, {12, 44}, {50, 8}};
  expectLikeReference({60, 50}, star, 2.0);
}

TEST_P(PolylineStrokeTest, LevelLinesFillWholePixels) {
  const QImage picture = draw({20, 20}, {{2.0, 10.5}, {18.0, 10.5}}, 1.0);
  for (int x = 0; x < picture.width(); ++x) {
    const bool inside = x >= 2 * ratio() && x < 18 * ratio();
    for (int y = 0; y < picture.height(); ++y) {
      const bool onLine = inside && y / ratio() == 9;
      EXPECT_EQ(picture.pixelColor(x, y), onLine ? QColor(Qt::white) : QColor(Qt::black));
    }
  }
}

TEST_P(PolylineStrokeTest, OverlapsAreBlendedOnce) {
  const std::vector<QPointF> backAndForth{{2, 10.5}, {18, 10.5}, {2, 10.5}, {18, 10.5}};
  const QImage picture = draw({20, 20}, backAndForth, 1.0, QColor(255, 255, 255, 128));
  EXPECT_EQ(picture.pixelColor(10 * ratio(), 9 * ratio()), QColor(128, 128, 128));
}

TEST_P(PolylineStrokeTest, WhatLiesOutsideTheAreaIsCutOff) {
  const std::vector<QPointF> far{{-1e6, 10}, {10, 10}, {10, 1e6}, {1e6, -1e6}};
  const QImage picture = draw({20, 20}, far, 2.0);
  EXPECT_EQ(picture.pixelColor(0, 10 * ratio()), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(10 * ratio(), 0), QColor(Qt::white));
  EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::black));
  EXPECT_EQ(draw({20, 20}, {{100, 100}, {200, 150}}, 2.0),
            makePicture({20, 20}, ratio(), Qt::black));
}

TEST_P(PolylineStrokeTest, PointsThatCoincideOrAreNotFiniteAreLeftOut) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<QPointF> plain{{2, 5}, {10, 15}, {18, 5}};
  const std::vector<QPointF> odd{{nan, 5}, {2, 5},        {2, 5},  {10, 15},
                                 {10, 15}, {3, infinity}, {18, 5}, {18, 5}};
  EXPECT_EQ(draw({20, 20}, odd, 1.0), draw({20, 20}, plain, 1.0));
}

TEST_P(PolylineStrokeTest, NoneOrOnePointDrawsNothing) {
  const QImage blank = makePicture({20, 20}, ratio(), Qt::black);
  EXPECT_EQ(draw({20, 20}, {}, 1.0), blank);
  EXPECT_EQ(draw({20, 20}, {{10, 10}}, 1.0), blank);
  EXPECT_EQ(draw({20, 20}, {{10, 10}, {10, 10}}, 1.0), blank);
}

TEST_P(PolylineStrokeTest, AnEarlierStrokeLeavesNoTrace) {
  const std::vector<QPointF> line{{2, 5}, {18, 15}};
  const QImage first = draw({20, 20}, line, 1.0);
  static_cast<void>(draw({40, 30}, zigzag({40, 30}, 40, 1.0), 3.0));
  EXPECT_EQ(draw({20, 20}, line, 1.0), first);
}

TEST_P(PolylineStrokeTest, EachStrokeIsTheSameToTheBitAsOneOfAFreshStroker) {
  std::mt19937 random(3);
  std::vector<QPointF> points = zigzag({40, 30}, 20, 0.8);
  QColor color = Qt::white;
  double width = 1.0;
  QSize size(40, 30);
  for (int step = 0; step < 200; ++step) {
    switch (random() % 6) {
      case 0:
        points[random() % points.size()].ry() += 1e-13;  // equal for Qt's fuzzy comparison
        break;
      case 1:
        points[random() % points.size()].setY(static_cast<double>(random() % 60) - 15.0);
        break;
      case 2:
        color.setAlpha(static_cast<int>(random() % 256));
        break;
      case 3:
        width = 1.0 + static_cast<double>(random() % 3);
        break;
      case 4:
        size.setHeight(30 + static_cast<int>(random() % 2));
        break;
      default:
        break;  // again
    }
    const QImage picture = draw(size, points, width, color);
    platform::PolylineStroke fresh;
    ASSERT_EQ(picture, drawnPicture(size, ratio(), Qt::black,
                                    [&](QPainter& painter) {
                                      fresh.draw(painter, QRectF(QPointF(), QSizeF(size)), points,
                                                 color, width);
                                    }))
        << "step " << step;
  }
}

TEST_P(PolylineStrokeTest, DrawsAtItsPlaceInAMovedPainter) {
  const std::vector<QPointF> line{{2, 5}, {18, 15}};
  const QImage moved = drawnPicture({40, 40}, ratio(), Qt::black, [&](QPainter& painter) {
    painter.translate(20.0, 20.0);
    stroke_.draw(painter, {0.0, 0.0, 20.0, 20.0}, line, Qt::white, 1.0);
  });
  const QImage there = moved.copy(20 * ratio(), 0, 20 * ratio(), 20 * ratio());
  EXPECT_EQ(there, draw({20, 20}, line, 1.0));
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, PolylineStrokeTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
