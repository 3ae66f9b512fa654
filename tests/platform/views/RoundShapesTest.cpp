#include "platform/views/RoundShapes.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include <gtest/gtest.h>
#include <QImage>
#include <QPainter>

namespace {

constexpr int kSide = 48;  // device pixels

QImage filled(const QPainterPath& path, double scale) {
  QImage picture(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.fillPath(path, Qt::white);
  return picture;
}

/// Whether a point, in points, belongs to the shape.
using Inside = std::function<bool(double x, double y)>;

/// The share of a pixel that a shape covers, 0 to 255, by sampling.
double coverage(const Inside& inside, int column, int row, double scale) {
  constexpr int kSamples = 16;  // each way
  int count = 0;
  for (int i = 0; i < kSamples; ++i) {
    for (int j = 0; j < kSamples; ++j) {
      count += inside((column + (i + 0.5) / kSamples) / scale, (row + (j + 0.5) / kSamples) / scale)
                   ? 1
                   : 0;
    }
  }
  return 255.0 * count / (kSamples * kSamples);
}

/// Every pixel and all the ink are as the shape's geometry gives them.
void expectExact(const QPainterPath& path, double scale, const Inside& inside) {
  const QImage picture = filled(path, scale);
  double ink = 0.0;
  double wanted = 0.0;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const double share = coverage(inside, x, y, scale);
      const int alpha = picture.pixelColor(x, y).alpha();
      ASSERT_NEAR(alpha, share, 6.0) << x << ", " << y << " at " << scale;
      ink += alpha;
      wanted += share;
    }
  }
  EXPECT_NEAR(ink / wanted, 1.0, 0.015) << "at " << scale;
}

bool isInDisc(double x, double y, QPointF center, double radius) {
  return std::hypot(x - center.x(), y - center.y()) <= radius;
}

bool isInRounded(double x, double y, const QRectF& rect, double left, double right) {
  if (!rect.contains(x, y)) {
    return false;
  }
  const double radius = x < rect.center().x() ? left : right;
  const double dx = std::max({rect.left() + left - x, x - (rect.right() - right), 0.0});
  const double dy = std::max({rect.top() + radius - y, y - (rect.bottom() - radius), 0.0});
  return dx == 0.0 || dy == 0.0 || std::hypot(dx, dy) <= radius;
}

}  // namespace

TEST(RoundShapesTest, ADiscHasAllItsInkAtEveryScale) {
  for (const double scale : {1.0, 1.25, 2.0}) {
    for (const double radius : {1.0, 3.5, 6.0, 10.5}) {
      const QPointF center(11.5, 11.25);
      expectExact(platform::discPath(center, radius), scale,
                  [=](double x, double y) { return isInDisc(x, y, center, radius); });
    }
  }
}

TEST(RoundShapesTest, ARingIsAsWideAsItsLineAllRound) {
  for (const double scale : {1.0, 1.25, 2.0}) {
    for (const double radius : {3.5, 10.5}) {
      const QPointF center(11.5, 11.5);
      expectExact(platform::ringPath(center, radius, 1.0), scale, [=](double x, double y) {
        return isInDisc(x, y, center, radius + 0.5) && !isInDisc(x, y, center, radius - 0.5);
      });
    }
  }
}

TEST(RoundShapesTest, CornersAreCircles) {
  const QRectF rect(2.0, 2.5, 20.0, 15.0);
  for (const double scale : {1.0, 1.5, 2.0}) {
    for (const double radius : {2.4, 3.9, 6.0}) {
      expectExact(platform::roundedPath(rect, radius), scale,
                  [=](double x, double y) { return isInRounded(x, y, rect, radius, radius); });
    }
    expectExact(platform::roundedPath(rect, {7.5, 2.4}), scale,
                [=](double x, double y) { return isInRounded(x, y, rect, 7.5, 2.4); });
    expectExact(platform::roundedRingPath(rect, {7.5, 2.4}, 1.0), scale, [=](double x, double y) {
      return isInRounded(x, y, rect.adjusted(-0.5, -0.5, 0.5, 0.5), 8.0, 2.9) &&
             !isInRounded(x, y, rect.adjusted(0.5, 0.5, -0.5, -0.5), 7.0, 1.9);
    });
  }
}

TEST(RoundShapesTest, RadiiThatDoNotFitAreReduced) {
  const QRectF pill(3.0, 4.0, 18.0, 6.0);
  expectExact(platform::roundedPath(pill, 50.0), 1.0,
              [=](double x, double y) { return isInRounded(x, y, pill, 3.0, 3.0); });
  const QRectF narrow(3.0, 4.0, 6.0, 18.0);
  expectExact(platform::roundedPath(narrow, 50.0), 1.0, [=](double x, double y) {
    const double dy = std::max({narrow.top() + 3.0 - y, y - (narrow.bottom() - 3.0), 0.0});
    return narrow.contains(x, y) && std::hypot(x - narrow.center().x(), dy) <= 3.0;
  });
}

TEST(RoundShapesTest, NothingIsDrawnOfAShapeWithoutArea) {
  EXPECT_TRUE(platform::discPath({5.0, 5.0}, 0.0).isEmpty());
  EXPECT_TRUE(platform::discPath({5.0, 5.0}, -1.0).isEmpty());
  EXPECT_TRUE(platform::roundedPath(QRectF(3.0, 4.0, 0.0, 9.0), 2.0).isEmpty());
  EXPECT_TRUE(platform::roundedPath(QRectF(3.0, 4.0, -4.0, 9.0), 2.0).isEmpty());
}
