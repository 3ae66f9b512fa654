#include "waveform/views/OVWaveFormDrawing.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/Pixels.h"

namespace {

const QColor kBottom(36, 54, 71);
const QColor kTop(35, 37, 62);
const QColor kGrid(37, 82, 91);
const QColor kWave(41, 111, 125);
const QColor kPaper(10, 20, 30);

/// Every drawing test runs on an ordinary screen and on a doubly fine one.
class OVWaveFormDrawingTest : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] static int ratio() { return GetParam(); }

  template <typename Draw>
  [[nodiscard]] static QImage draw(QSize size, Draw layer) {
    return drawnPicture(size, ratio(), kPaper, layer);
  }

  /// The row of pixels that holds a height above the bottom edge, points.
  [[nodiscard]] static int rowAt(const QImage& picture, double y) {
    return picture.height() - 1 - static_cast<int>(std::floor(y * ratio()));
  }

  [[nodiscard]] static QImage drawWaveform(QSize size, const std::vector<float>& elements,
                                           double alpha = 1.0) {
    return draw(size, [&](QPainter& painter) {
      OVWaveFormDrawing().drawWaveform(painter, size, elements, alpha);
    });
  }
};

}  // namespace

TEST_P(OVWaveFormDrawingTest, GradientRunsFromTheBottomColourToTheTopColour) {
  const QSize size(40, 272);
  const QImage picture = draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawGradient(p, size); });
  for (int row = 0; row < picture.height(); ++row) {
    const double height = 1.0 - (row + 0.5) / picture.height();
    for (const int x : {0, picture.width() - 1}) {
      ASSERT_LE(colorDistance(picture.pixelColor(x, row), blended(kBottom, kTop, height)), 1)
          << "row " << row;
    }
  }
}

TEST_P(OVWaveFormDrawingTest, VerticalGridLinesFillWholePixelsEvery24Points) {
  const QSize size(100, 60);
  const QImage picture =
      draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawGrid(p, size, 3.0); });
  const int row = rowAt(picture, 30.5);
  for (int x = 0; x < picture.width(); ++x) {
    const bool onLine = (x / ratio()) % 24 == 3;
    EXPECT_LE(colorDistance(picture.pixelColor(x, row), onLine ? kGrid : kPaper), 1) << x;
  }
}

TEST_P(OVWaveFormDrawingTest, HorizontalGridLinesEndHalfAPointLowerThanTheyBegin) {
  const QSize size(640, 60);
  const QImage picture =
      draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawGrid(p, size, 20.0); });
  for (const double line : {12.0, 36.0}) {
    const auto center = [&](int column) {
      double weight = 0.0;
      double sum = 0.0;
      for (double y = line - 3.0; y < line + 4.0; y += 1.0 / ratio()) {
        const QColor pixel = picture.pixelColor(column, rowAt(picture, y));
        const double coverage =
            (pixel.green() - kPaper.green()) / static_cast<double>(kGrid.green() - kPaper.green());
        weight += coverage;
        sum += coverage * (y + 0.5 / ratio());
      }
      EXPECT_NEAR(weight / ratio(), 1.0, 0.05) << "a line one point thick";
      return sum / weight;
    };
    EXPECT_NEAR(center(1), line + 0.5, 0.06);
    EXPECT_NEAR(center(picture.width() / 2), line + 0.25, 0.06);
    EXPECT_NEAR(center(picture.width() - 1), line, 0.06);
  }
}

TEST_P(OVWaveFormDrawingTest, TheTopmostHorizontalLineLiesBelowTheTopEdge) {
  // 24 points: one line only, at 12; a further one would begin at y = 24, which is no longer < 24.
  const QSize size(30, 24);
  const QImage picture =
      draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawGrid(p, size, 20.0); });
  EXPECT_EQ(picture.pixelColor(5, 0), kPaper);
  EXPECT_LE(colorDistance(picture.pixelColor(5, rowAt(picture, 12.25)), kGrid), 20);
}

TEST_P(OVWaveFormDrawingTest, AnElementReachesFortyPercentOfTheHeightAboveAndBelowTheMiddle) {
  const QSize size(100, 100);
  // The bar of the first of two elements stands at x = 50.
  for (const float element : {1.0F, 0.5F, 0.25F}) {
    const QImage picture = drawWaveform(size, {element, 0.0F});
    int first = picture.height();
    int last = -1;
    for (int row = 0; row < picture.height(); ++row) {
      if (picture.pixelColor(50 * ratio(), row).green() > kPaper.green() + 20) {
        first = std::min(first, row);
        last = std::max(last, row);
      }
    }
    EXPECT_NEAR(first, (50.0 - element * 40.0) * ratio(), 1.0 * ratio()) << element;
    EXPECT_NEAR(last + 1, (50.0 + element * 40.0) * ratio(), 1.0 * ratio()) << element;
  }
}

TEST_P(OVWaveFormDrawingTest, ABarIsOnePointWideAndStandsAtItsElementsPlace) {
  const QSize size(90, 100);
  const QImage picture = drawWaveform(size, {0.0F, 1.0F, 0.0F});
  // Row at 89: within the bar's upper end, away from the slanted lines that lead to its tips.
  const int row = rowAt(picture, 25.0);
  double coverage = 0.0;
  for (int x = 0; x < picture.width(); ++x) {
    const double part = (picture.pixelColor(x, row).green() - kPaper.green()) /
                        static_cast<double>(kWave.green() - kPaper.green());
    if (std::abs(x + 0.5 - 60.0 * ratio()) < 3.0 * ratio()) {
      coverage += part;
    }
  }
  EXPECT_NEAR(coverage / ratio(), 1.0, 0.05);
  EXPECT_GT(picture.pixelColor(60 * ratio(), row).green(), kPaper.green() + 40);
  EXPECT_GT(picture.pixelColor(60 * ratio() - 1, row).green(), kPaper.green() + 40);
}

TEST_P(OVWaveFormDrawingTest, SilenceIsAStraightLineAtTheMiddle) {
  const QSize size(64, 41);
  const QImage picture = drawWaveform(size, std::vector<float>(16, 0.0F));
  for (int x = 0; x < picture.width(); ++x) {
    EXPECT_LE(colorDistance(picture.pixelColor(x, rowAt(picture, 20.25)), kWave), 1) << x;
    EXPECT_EQ(picture.pixelColor(x, rowAt(picture, 21.25)), kPaper) << x;
    EXPECT_EQ(picture.pixelColor(x, rowAt(picture, 19.25)), kPaper) << x;
  }
}

TEST_P(OVWaveFormDrawingTest, NoElementsDrawNothing) {
  const QSize size(40, 40);
  EXPECT_EQ(drawWaveform(size, {}), makePicture(size, ratio(), kPaper));
}

TEST_P(OVWaveFormDrawingTest, AlphaHoldsForTheZigzagAsAWhole) {
  const QSize size(32, 60);
  // Bars half a point apart overlap several times; none of that may show.
  const std::vector<float> elements(64, 1.0F);
  const QImage opaque = drawWaveform(size, elements, 1.0);
  const QImage half = drawWaveform(size, elements, 0.5);
  for (int x = 4; x < half.width(); ++x) {
    const QColor solid = opaque.pixelColor(x, half.height() / 2);
    EXPECT_LE(colorDistance(half.pixelColor(x, half.height() / 2), blended(kPaper, solid, 0.5)), 2)
        << x;
  }
  EXPECT_EQ(drawWaveform(size, elements, 0.0), makePicture(size, ratio(), kPaper));
}

TEST_P(OVWaveFormDrawingTest, ElementsThatAreNoNumbersOrBeyondAllBoundsDoNoHarm) {
  const QSize size(60, 40);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(drawWaveform(size, {nan, 0.5F}), drawWaveform(size, {0.0F, 0.5F}));
  const QImage huge = drawWaveform(size, {infinity, -infinity, 1e30F, 0.0F});
  EXPECT_GT(huge.pixelColor(15 * ratio(), 0).green(), kPaper.green() + 20);
}

TEST_P(OVWaveFormDrawingTest, TimescaleTicksStandOnTheBottomEdge) {
  const QSize size(200, 40);
  const QImage picture =
      draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawTimescale(p, size); });
  const QColor tick = blended(kPaper, Qt::white, 0.6);
  const auto heightAt = [&](int x) {
    int rows = 0;
    while (colorDistance(picture.pixelColor(x * ratio(), picture.height() - 1 - rows), tick) <= 1) {
      ++rows;
    }
    return rows / ratio();
  };
  for (int i = 0; i < 20; ++i) {
    const int x = i * 10;
    EXPECT_EQ(heightAt(x), (x % 20) / 2 + 5) << x;
    EXPECT_EQ(heightAt(x + 3), 0) << x;
  }
  EXPECT_EQ(heightAt(199), 10);
}

TEST_P(OVWaveFormDrawingTest, OnlyTheDirtyPartIsCopiedAndNothingIsBlended) {
  const QSize size(60, 40);
  QImage rendered = makePicture(size, ratio(), QColor(200, 0, 0, 128));
  rendered.setPixelColor(25 * ratio(), 5 * ratio(), QColor(0, 255, 0));
  QImage screen = makePicture(size, ratio(), kPaper);
  QPainter painter(&screen);
  OVWaveFormDrawing::copyPicture(painter, size, QRegion(20, 0, 8, 40), rendered);
  painter.end();
  for (int x = 0; x < screen.width(); ++x) {
    const bool dirty = x >= 20 * ratio() && x < 28 * ratio();
    EXPECT_EQ(screen.pixel(x, 7 * ratio()), dirty ? rendered.pixel(x, 7 * ratio()) : kPaper.rgba())
        << x;
  }
  EXPECT_EQ(screen.pixelColor(25 * ratio(), 5 * ratio()), QColor(0, 255, 0));
}

TEST_P(OVWaveFormDrawingTest, APictureOfAnotherSizeIsStretchedOverTheWholeView) {
  const QImage rendered = makePicture({30, 20}, ratio(), QColor(1, 200, 3));
  QImage screen = makePicture({60, 40}, ratio(), kPaper);
  QPainter painter(&screen);
  OVWaveFormDrawing::copyPicture(painter, {60, 40}, QRegion(0, 0, 60, 40), rendered);
  painter.end();
  EXPECT_EQ(screen, makePicture({60, 40}, ratio(), QColor(1, 200, 3)));
}

TEST_P(OVWaveFormDrawingTest, UprightGridLinesAreTheSameToTheBitAsWhenStroked) {
  const QSize size(100, 10);  // no level line in it
  for (const double offset : {0.0, 5.0, 23.0}) {
    const QImage stroked = draw(size, [&](QPainter& painter) {
      painter.setPen(platform::viewPen(QColor::fromRgbF(0.145F, 0.32F, 0.356F), 1.0));
      for (double x = offset + 0.5; x < size.width() + offset; x += 24.0) {
        painter.drawLine(QLineF(x, 0.0, x, size.height()));
      }
    });
    ASSERT_EQ(draw(size, [&](QPainter& p) { OVWaveFormDrawing::drawGrid(p, size, offset); }),
              stroked);
  }
}

INSTANTIATE_TEST_SUITE_P(PixelRatios, OVWaveFormDrawingTest, testing::Values(1, 2),
                         testing::PrintToStringParamName());

TEST(OVWaveFormDrawingGridTest, OffsetWrapsFrom23To0) {
  EXPECT_EQ(OVWaveFormDrawing::nextGridOffset(0.0), 1.0);
  EXPECT_EQ(OVWaveFormDrawing::nextGridOffset(22.0), 23.0);
  EXPECT_EQ(OVWaveFormDrawing::nextGridOffset(23.0), 0.0);
  EXPECT_EQ(OVWaveFormDrawing::nextGridOffset(-5.0), 0.0);
}

TEST(OVWaveFormDrawingPictureTest, IsCopiedPixelForPixelAtARatioThatIsNoWholeNumber) {
  const double ratio = 1.5;
  QImage rendered(62, 31, QImage::Format_ARGB32_Premultiplied);  // 41 x 20.5 points, covered
  for (int y = 0; y < rendered.height(); ++y) {
    for (int x = 0; x < rendered.width(); ++x) {
      rendered.setPixelColor(x, y, QColor(x * 4, y * 8, (x + y) % 2 * 255));
    }
  }
  rendered.setDevicePixelRatio(ratio);
  QImage screen(rendered.size(), rendered.format());
  screen.fill(kPaper);
  screen.setDevicePixelRatio(ratio);
  QPainter painter(&screen);
  OVWaveFormDrawing::copyPicture(painter, {41, 20}, QRegion(0, 0, 42, 21), rendered);
  painter.end();
  EXPECT_EQ(screen, rendered);
}

// As a paint event has them: the strip that a marker left and the one that it reached, a tick, a
// notice. All that they cover is as in a whole copy, whatever Qt makes of a point between pixels.
TEST(OVWaveFormDrawingPictureTest, IsCopiedInPartsAsInOnePiece) {
  for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
    const QSize points(81, 43);
    const QSize pixels(static_cast<int>(std::ceil(points.width() * ratio)),
                       static_cast<int>(std::ceil(points.height() * ratio)));
    QImage rendered(pixels, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pixels.height(); ++y) {
      for (int x = 0; x < pixels.width(); ++x) {
        rendered.setPixelColor(x, y, QColor(x, y, (x + y) % 2 * 255));
      }
    }
    rendered.setDevicePixelRatio(ratio);
    QImage screen = rendered;
    screen.fill(kPaper);
    const QRegion parts = QRegion(7, 0, 5, 43) + QRegion(33, 0, 3, 43) + QRegion(50, 1, 7, 9) +
                          QRegion(2, 31, 70, 11);
    ASSERT_GT(parts.rectCount(), 3);
    QPainter painter(&screen);
    OVWaveFormDrawing::copyPicture(painter, points, parts, rendered);
    painter.end();
    for (const QRect& part : parts) {
      // Pixels that the part covers whole.
      for (int y = static_cast<int>(std::ceil(part.top() * ratio));
           y < static_cast<int>((part.bottom() + 1) * ratio); ++y) {
        for (int x = static_cast<int>(std::ceil(part.left() * ratio));
             x < static_cast<int>((part.right() + 1) * ratio); ++x) {
          ASSERT_EQ(screen.pixel(x, y), rendered.pixel(x, y)) << ratio << ": " << x << ", " << y;
        }
      }
    }
    EXPECT_EQ(screen.pixelColor(static_cast<int>(22 * ratio), static_cast<int>(15 * ratio)),
              kPaper);
  }
}

TEST(OVWaveFormDrawingPictureTest, IsTheSameToTheBitAsDrawnFromScratchWhateverWasDrawnBefore) {
  std::mt19937 random(11);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  OVWaveFormDrawing kept;
  QSize size(120, 60);
  double ratio = 1.0;
  double offset = 0.0;
  std::vector<float> elements;
  for (int step = 0; step < 300; ++step) {
    switch (below(8)) {
      case 0:
        size = {60 + below(3) * 40, 40 + below(3) * 20};
        break;
      case 1:
        ratio = 1.0 + below(3) * 0.5;
        break;
      case 2:
        elements.resize(elements.size() / 2);
        break;
      case 3:
        if (!elements.empty()) {
          elements[static_cast<std::size_t>(below(static_cast<int>(elements.size())))] =
              static_cast<float>(below(100)) / 50.0F;
        }
        break;
      case 4:
        elements.push_back(static_cast<float>(below(100)) / 100.0F);
        break;
      default:
        offset = OVWaveFormDrawing::nextGridOffset(offset);
    }
    const QImage picture = drawnPicture(size, ratio, Qt::black, [&](QPainter& painter) {
      kept.drawBackground(painter, size, offset);
      kept.drawWaveform(painter, size, elements, 1.0);
    });
    const QImage afresh = drawnPicture(size, ratio, Qt::black, [&](QPainter& painter) {
      OVWaveFormDrawing drawing;
      OVWaveFormDrawing::drawGradient(painter, size);
      OVWaveFormDrawing::drawGrid(painter, size, offset);
      drawing.drawWaveform(painter, size, elements, 1.0);
    });
    ASSERT_EQ(picture, afresh) << "step " << step;
  }
}
