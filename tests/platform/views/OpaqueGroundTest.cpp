#include "platform/views/OpaqueGround.h"

#include <gtest/gtest.h>

#include "support/Pixels.h"

TEST(OpaqueGround, EveryPixelOfAViewIsCoveredWhereverItsEdgesFall) {
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
