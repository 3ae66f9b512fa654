// Light and dark desktops: the recorder looks the same in both; what belongs to the desktop follows
// it.
#include <memory>

#include <gtest/gtest.h>
#include <QMenuBar>

#include "controls/buttons/OVTransportButtonCell.h"
#include "gallery/GalleryPages.h"
#include "gallery/GalleryScreen.h"
#include "support/DarkPalette.h"
#include "support/Pixels.h"
#include "support/fakes/FakeWaveformSummary.h"
#include "ui_VNRecorderWindow.h"

namespace {

struct Shown {
  QImage content;
  QImage menuBar;
};

Shown showWindow(double scale) {
  OVRecorderWindow window;
  window.setAttribute(Qt::WA_DeleteOnClose, false);
  Ui::VNRecorderWindow ui;
  ui.setupUi(&window);
  window.menuBar()->addMenu(QStringLiteral("MMMMMMMM"));
  ui.wfView->setWaveForm(std::make_shared<FakeWaveformSummary>(std::vector<float>(1024, 0.5F)));
  ui.loadingIndicator->setValue(40);
  ui.loadingIndicator->show();
  ui.loadingPanel->show();
  ui.loadingPanel->setActivity(QStringLiteral("Saving"));
  ui.fftStrip->setFixedHeight(200);
  EXPECT_TRUE(showOnScreenOfScale(window, scale));
  return {pictureOfWindow(*window.centralWidget()), pictureOfWindow(*window.menuBar())};
}

/// The highest and the lowest green value of a picture.
std::pair<int, int> range(const QImage& picture) {
  int lightest = 0;
  int darkest = 255;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      const int green = picture.pixelColor(x, y).green();
      lightest = std::max(lightest, green);
      darkest = std::min(darkest, green);
    }
  }
  return {lightest, darkest};
}

/// A page without its last row and column, which it may cover only in part.
QImage wholePixelsOf(QWidget& page) {
  const QImage picture = pictureOfWindow(page);
  return picture.copy(0, 0, picture.width() - 1, picture.height() - 1);
}

class DesktopColoursTest : public testing::TestWithParam<double> {};

}  // namespace

TEST_P(DesktopColoursTest, TheInstrumentLooksTheSameOnALightAndADarkDesktop) {
  const QImage light = showWindow(GetParam()).content;
  const support::DarkPalette dark;
  EXPECT_EQ(showWindow(GetParam()).content, light);
}

TEST_P(DesktopColoursTest, TheMenuBarFollowsTheDesktopAndStaysReadable) {
  const QImage light = showWindow(GetParam()).menuBar;
  EXPECT_GT(light.pixelColor(light.width() - 3, 3).green(), 180);
  EXPECT_LT(range(light).second, 100) << "dark text";
  const support::DarkPalette palette;
  const QImage dark = showWindow(GetParam()).menuBar;
  EXPECT_LT(dark.pixelColor(dark.width() - 3, 3).green(), 90);
  EXPECT_GT(range(dark).first, 180) << "light text";
}

TEST_P(DesktopColoursTest, EveryViewOfTheGalleryLooksTheSame) {
  std::vector<QImage> light;
  for (const auto& page : makeGalleryPages()) {
    ASSERT_TRUE(showOnScreenOfScale(*page, GetParam()));
    light.push_back(wholePixelsOf(*page));
  }
  ASSERT_FALSE(light.empty());
  const support::DarkPalette dark;
  const GalleryPages pages = makeGalleryPages();
  for (std::size_t i = 0; i < pages.size(); ++i) {
    ASSERT_TRUE(showOnScreenOfScale(*pages[i], GetParam()));
    EXPECT_EQ(wholePixelsOf(*pages[i]), light[i]) << pages[i]->name().toStdString();
  }
}

INSTANTIATE_TEST_SUITE_P(ScaleFactors, DesktopColoursTest, testing::ValuesIn(kScaleFactors));
