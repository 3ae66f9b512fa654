#include "controls/OVDisplayWell.h"

#include <gtest/gtest.h>

#include "ControlsWindow.h"

namespace {

TEST(OVDisplayWellTest, IsDarkWithRoundCornersThatShowTheBar) {
  ControlsWindow window;
  const QImage bar = window.picture(window.bar());
  OVDisplayWell well(window.bar());
  well.setGeometry(40, 11, 236, 36);
  const QImage picture = window.picture(window.bar());
  EXPECT_LT(picture.pixelColor(40 + 118, 11 + 18).lightness(), 70);
  EXPECT_LT(picture.pixelColor(41, 11 + 18).lightness(), 70);
  EXPECT_EQ(picture.pixelColor(40, 11), bar.pixelColor(40, 11));
  EXPECT_EQ(picture.pixelColor(275, 11), bar.pixelColor(275, 11));
  EXPECT_EQ(picture.pixelColor(39, 29), bar.pixelColor(39, 29));
}

TEST(OVDisplayWellTest, ALightRimLiesBelowIt) {
  ControlsWindow window;
  const QImage bar = window.picture(window.bar());
  OVDisplayWell well(window.bar());
  well.setGeometry(40, 11, 236, 36);
  const QImage picture = window.picture(window.bar());
  EXPECT_GT(picture.pixelColor(158, 46).lightness(), bar.pixelColor(158, 46).lightness());
}

}  // namespace
