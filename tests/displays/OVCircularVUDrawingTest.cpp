#include "displays/OVCircularVUDrawing.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

const QColor kPaper(20, 30, 60);
const QColor kFill(89, 156, 171);

class OVCircularVUDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  [[nodiscard]] static QImage draw(QSize size, const std::vector<float>& levels) {
    return drawnPicture(size, ratio(), kPaper, [&](QPainter& painter) {
      OVCircularVUDrawing().draw(painter, size, levels);
    });
  }

  /// The pixel right of and above a point in view coordinates.
  [[nodiscard]] static QColor at(const QImage& picture, double x, double y) {
    return picture.pixelColor(static_cast<int>(std::floor(x * ratio())),
                              picture.height() - 1 - static_cast<int>(std::floor(y * ratio())));
  }

  static void expectFilled(const QImage& picture, double x, double y, double alpha) {
    EXPECT_LE(colorDistance(at(picture, x, y), blended(kPaper, kFill, alpha)), 1)
        << "at " << x << ", " << y;
  }

  static void expectBlank(const QImage& picture, double x, double y) {
    EXPECT_EQ(at(picture, x, y), kPaper) << "at " << x << ", " << y;
  }
};

}  // namespace

TEST_P(OVCircularVUDrawingTest, AWideViewShowsARowOfEqualCells) {
  // Radius 0.35 × 30 = 10.5; centres at x = 15 and 45 of 60.
  const QImage picture = draw({60, 30}, {0.1F, 0.4F});
  expectFilled(picture, 15.0, 15.0, 0.4);
  expectFilled(picture, 45.0, 15.0, 0.7);
  expectFilled(picture, 15.0 + 8.0, 15.0, 0.4);
  expectBlank(picture, 15.0 + 11.5, 15.0);
  expectBlank(picture, 15.0, 15.0 + 11.5);
  expectBlank(picture, 30.0, 15.0);
}

TEST_P(OVCircularVUDrawingTest, AHighViewShowsAColumnWhoseFirstChannelIsAtTheBottom) {
  const QImage picture = draw({30, 60}, {0.1F, 0.4F});
  expectFilled(picture, 15.0, 15.0, 0.4);
  expectFilled(picture, 15.0, 45.0, 0.7);
  expectBlank(picture, 15.0, 30.0);
}

TEST_P(OVCircularVUDrawingTest, ASquareViewStacksTheCirclesVertically) {
  // Radius 0.35 × 40 = 14 in cells 20 high: the circles overlap in the middle.
  const QImage picture = draw({40, 40}, {0.0F, 0.7F});
  expectFilled(picture, 20.0, 2.0, 0.3);
  expectFilled(picture, 20.0, 38.0, 1.0);
  expectBlank(picture, 2.0, 20.0);
}

TEST_P(OVCircularVUDrawingTest, AMonoSourceDrawsOneCircleCentredInTheView) {
  const QImage picture = draw({60, 30}, {0.2F});
  expectFilled(picture, 30.0, 15.0, 0.5);
  expectBlank(picture, 30.0 - 12.0, 15.0);
  expectBlank(picture, 30.0 + 11.5, 15.0);
}

TEST_P(OVCircularVUDrawingTest, TheRadiusDependsOnTheWholeViewNotOnTheCell) {
  const QImage two = draw({200, 40}, {0.2F, 0.2F});
  const QImage four = draw({200, 40}, {0.2F, 0.2F, 0.2F, 0.2F});
  const auto widthOfFirst = [&](const QImage& picture, double center) {
    int pixels = 0;
    for (int x = static_cast<int>((center - 18) * ratio()); x < (center + 18) * ratio(); ++x) {
      pixels += picture.pixelColor(x, picture.height() / 2) != kPaper ? 1 : 0;
    }
    return pixels;
  };
  EXPECT_EQ(widthOfFirst(two, 50.0), widthOfFirst(four, 25.0));
  EXPECT_NEAR(widthOfFirst(two, 50.0), 29 * ratio(), 1) << "14 points each way and the outline";
}

TEST_P(OVCircularVUDrawingTest, SilenceIsAFaintCircle) {
  const QImage picture = draw({60, 30}, {0.0F, 0.0F});
  expectFilled(picture, 15.0, 15.0, 0.3);
  expectFilled(picture, 45.0, 15.0, 0.3);
}

TEST_P(OVCircularVUDrawingTest, TheFillingIsOpaqueFromSevenTenthsOn) {
  const QImage picture = draw({60, 30}, {0.69F, 0.7F});
  expectFilled(picture, 15.0, 15.0, 0.99);
  expectFilled(picture, 45.0, 15.0, 1.0);
  expectFilled(draw({60, 30}, {40.0F}), 30.0, 15.0, 1.0);
}

TEST_P(OVCircularVUDrawingTest, TheOutlinesOpacityIsTheLevelOver13ButAtLeastThreeTenths) {
  // Radius 35 around (50, 50): right of the centre, the outer half of the outline covers x from 85
  // to 85.5: about half a pixel at 1x, a whole one at 2x.
  const auto lineShareAt = [&](float level) {
    const QColor outer = at(draw({100, 100}, {level}), 85.0, 50.0);
    return (outer.red() - kPaper.red()) / (255.0 - kPaper.red());
  };
  const double opaque = lineShareAt(9.0F);
  EXPECT_NEAR(opaque, 0.5 * ratio(), 0.07);
  EXPECT_NEAR(lineShareAt(0.0F) / opaque, 0.3, 0.015);
  EXPECT_NEAR(lineShareAt(0.39F) / opaque, 0.3, 0.015);
  EXPECT_NEAR(lineShareAt(0.65F) / opaque, 0.5, 0.015);
  EXPECT_NEAR(lineShareAt(1.04F) / opaque, 0.8, 0.015);
  EXPECT_NEAR(lineShareAt(1.3F) / opaque, 1.0, 0.015);
}

TEST_P(OVCircularVUDrawingTest, LevelsThatAreNoNumbersOrNegativeDoNoHarm) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(draw({60, 30}, {nan, 0.5F}), draw({60, 30}, {0.0F, 0.5F}));
  expectFilled(draw({60, 30}, {-2.0F}), 30.0, 15.0, 0.0);
  expectFilled(draw({60, 30}, {std::numeric_limits<float>::infinity()}), 30.0, 15.0, 1.0);
}

TEST_P(OVCircularVUDrawingTest, NoLevelsDrawNothing) {
  EXPECT_EQ(draw({60, 30}, {}), makePicture({60, 30}, ratio(), kPaper));
}

TEST_P(OVCircularVUDrawingTest, WhatIsDrawnAgainIsAsIfDrawnForTheFirstTime) {
  // Another level, size, number of channels and place each need what was kept, or must not use it.
  OVCircularVUDrawing kept;
  const auto draw = [](OVCircularVUDrawing& drawing, QSize size, QPointF moved,
                       const std::vector<float>& levels) {
    return drawnPicture({80, 80}, ratio(), kPaper, [&](QPainter& painter) {
      painter.translate(moved);
      drawing.draw(painter, size, levels);
    });
  };
  const auto expectAsNew = [&](QSize size, QPointF moved, const std::vector<float>& levels) {
    OVCircularVUDrawing fresh;
    EXPECT_EQ(draw(kept, size, moved, levels), draw(fresh, size, moved, levels));
  };
  expectAsNew({60, 30}, {}, {0.1F, 0.4F});
  expectAsNew({60, 30}, {}, {0.7F, 0.0F});
  expectAsNew({60, 30}, {7.25, 3.5}, {0.7F, 0.0F});
  expectAsNew({40, 30}, {7.25, 3.5}, {0.7F, 0.0F});
  expectAsNew({40, 30}, {}, {0.5F});
  expectAsNew({30, 60}, {}, {0.2F, 0.3F, 0.4F});
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVCircularVUDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());
