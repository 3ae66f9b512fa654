#include "controls/OVOverlayView.h"

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

QImage drawn(const QSize& size, const QColor& paper) {
  QImage picture = makePicture(size, 1.0, paper);
  QPainter painter(&picture);
  OVOverlayView::draw(painter, QRectF(QPointF(), QSizeF(size)));
  return picture;
}

TEST(OverlayView, TheRadiusIsSixPointsOrHalfTheSmallerSide) {
  EXPECT_EQ(OVOverlayView::cornerRadius({100, 50}), 6.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({12, 12}), 6.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({100, 8}), 4.0);
  EXPECT_EQ(OVOverlayView::cornerRadius({5, 100}), 2.5);
  EXPECT_EQ(OVOverlayView::cornerRadius({11, 11}), 5.5);
  EXPECT_EQ(OVOverlayView::cornerRadius({0, 0}), 0.0);
}

TEST(OverlayView, LightensWhatLiesBelowByATenth) {
  const QImage picture = drawn({40, 30}, QColor(100, 50, 0));
  EXPECT_LE(colorDistance(picture.pixelColor(20, 15), QColor(116, 71, 26)), 1);
  EXPECT_LE(colorDistance(picture.pixelColor(0, 15), QColor(116, 71, 26)), 1);
  EXPECT_EQ(picture.pixelColor(0, 0), QColor(100, 50, 0));
  EXPECT_LE(colorDistance(picture.pixelColor(7, 0), QColor(116, 71, 26)), 1);
}

TEST(OverlayView, ASmallOverlayIsAPill) {
  const QImage picture = drawn({40, 8}, Qt::black);
  EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::black));
  EXPECT_EQ(picture.pixelColor(0, 7), QColor(Qt::black));
  EXPECT_GT(picture.pixelColor(0, 4).green(), 18);
  EXPECT_GT(picture.pixelColor(5, 0).green(), 20);
}

TEST(OverlayView, TheViewDrawsThePanelOverItsBounds) {
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
