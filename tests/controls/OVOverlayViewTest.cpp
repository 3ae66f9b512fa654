#include "controls/OVOverlayView.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

QImage drawn(const QSize& size, const QColor& paper, int ratio = 1) {
  QImage picture = makePicture(size, ratio, paper);
  QPainter painter(&picture);
  OVOverlayView::draw(painter, QRectF(QPointF(), QSizeF(size)));
  return picture;
}

TEST(OVOverlayViewTest, TheRadiusIsSixPointsOrHalfTheSmallerSide) {
  EXPECT_EQ(OVOverlayView::cornerRadius({100, 50}), 6.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({12, 12}), 6.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({100, 8}), 4.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({5, 100}), 2.5);
  EXPECT_EQ(OVOverlayView::cornerRadius({11, 11}), 5.5);
  EXPECT_EQ(OVOverlayView::cornerRadius({0, 0}), 0.0);
}

TEST(OVOverlayViewTest, LightensWhatLiesBelowByATenth) {
  const QImage picture = drawn({40, 30}, QColor(100, 50, 0));
  EXPECT_LE(colorDistance(picture.pixelColor(20, 15), QColor(116, 71, 26)), 1);
  EXPECT_LE(colorDistance(picture.pixelColor(0, 15), QColor(116, 71, 26)), 1);
  EXPECT_EQ(picture.pixelColor(0, 0), QColor(100, 50, 0));
  EXPECT_LE(colorDistance(picture.pixelColor(7, 0), QColor(116, 71, 26)), 1);
}

/// The fraction of a pixel that a panel with the corner radius covers, sampled.
double coverage(const QSizeF& size, double radius, int x, int y, int ratio) {
  constexpr int kSamples = 16;
  int inside = 0;
  for (int i = 0; i < kSamples * kSamples; ++i) {
    const double px = (x + (i % kSamples + 0.5) / kSamples) / ratio;
    const double py = (y + (i / kSamples + 0.5) / kSamples) / ratio;
    const double dx = std::max({radius - px, px - (size.width() - radius), 0.0});
    const double dy = std::max({radius - py, py - (size.height() - radius), 0.0});
    inside += dx * dx + dy * dy <= radius * radius ? 1 : 0;
  }
  return inside / static_cast<double>(kSamples * kSamples);
}

TEST(OVOverlayViewTest, EveryPixelIsWhiteAtATenthWithinTheRoundCorners) {
  for (const int ratio : {1, 2}) {
    for (const QSize size : {QSize(40, 30), QSize(40, 8), QSize(5, 30), QSize(11, 11)}) {
      const double radius = std::min({size.width() / 2.0, size.height() / 2.0, 6.0});
      const QImage picture = drawn(size, Qt::black, ratio);
      for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
          ASSERT_NEAR(picture.pixelColor(x, y).green(), 25.5 * coverage(size, radius, x, y, ratio),
                      3.0)
              << x << ", " << y << " of " << size.width() << " x " << size.height();
        }
      }
    }
  }
}

TEST(OVOverlayViewTest, ASmallOverlayIsAPill) {
  const QImage picture = drawn({40, 8}, Qt::black);
  EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(0, 7), QColor(Qt::black));
  EXPECT_GT(picture.pixelColor(0, 4).green(), 18);
  EXPECT_GT(picture.pixelColor(5, 0).green(), 20);
}

TEST(OVOverlayViewTest, TheViewDrawsThePanelOverItsBounds) {
  QWidget parent;
  QPalette palette;
  palette.setColor(QPalette::Window, Qt::black);
  parent.setPalette(palette);
  parent.resize(60, 40);
  OVOverlayView view(&parent);
  view.setGeometry(10, 5, 40, 30);
  const QImage picture = parent.grab().toImage();
  EXPECT_NEAR(picture.pixelColor(30, 20).green(), 26, 1);
  EXPECT_EQ(picture.pixelColor(5, 20), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(10, 5), QColor(Qt::black));
}

}  // namespace
