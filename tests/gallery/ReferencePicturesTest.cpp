// A second line of defence: compares the views with reference pictures that were reviewed by eye.
// scripts/gallery --renew regenerates them after an intended change.
#include <gtest/gtest.h>

#include "gallery/GalleryPages.h"
#include "gallery/GalleryScreen.h"
#include "support/Pixels.h"

namespace {

// Of 255, over a tile. Other rasterisers or fonts differ by less, a visible change by more.
constexpr double kTolerance = 0.6;

class ReferencePicturesTest : public testing::TestWithParam<double> {};

}  // namespace

TEST_P(ReferencePicturesTest, EveryTileOfEveryPageLooksAsItDid) {
  const double scale = GetParam();
  const GalleryPages pages = makeGalleryPages();
  ASSERT_FALSE(pages.empty());
  for (const auto& page : pages) {
    ASSERT_FALSE(page->tiles().empty());
    ASSERT_TRUE(showOnScreenOfScale(*page, scale));
    const QImage now = pictureOfWindow(*page);
    const QString file =
        QStringLiteral(ORVO_REFERENCE_PICTURES "/%1-%2x.png").arg(page->name()).arg(scale);
    const QImage before = QImage(file).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(before.size(), now.size()) << file.toStdString();
    for (const auto& tile : page->tiles()) {
      const QRectF points(tile.frame);
      const QRect pixels(QPointF(points.topLeft() * scale).toPoint(),
                         QSizeF(points.size() * scale).toSize());
      EXPECT_LT(meanDistance(before.copy(pixels), now.copy(pixels)), kTolerance)
          << page->name().toStdString() << ": " << tile.label.toStdString();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Desktop, ReferencePicturesTest, testing::ValuesIn(kScaleFactors));
