#include "controls/OVBackgroundBox.h"

#include <gtest/gtest.h>

#include "controls/OVTransportBackgroundView.h"

TEST(OVBackgroundBoxTest, LooksLikeThePanelWithoutItsShadowAndIsOpaque) {
  OVTransportBackgroundView view;
  OVBackgroundBox box;
  view.resize(40, 58);
  box.resize(40, 58);
  EXPECT_EQ(box.grab().toImage(), view.grab().toImage());
  EXPECT_TRUE(box.isOpaque());
}
