#include "controls/OVTransportBackgroundView.h"

#include <gtest/gtest.h>

#include "ControlsWindow.h"

namespace {

int bottomGrey(QWidget& view) {
  const QImage picture = view.grab().toImage();
  return picture.pixelColor(5, picture.height() - 1).green();
}

TEST(OVTransportBackgroundViewTest, ShowingAndHidingTheSpectrumTogglesTheDarkLine) {
  OVTransportBackgroundView view;
  view.resize(40, 58);
  EXPECT_FALSE(view.renderBottomShadow());
  EXPECT_GT(bottomGrey(view), 200);
  view.setRenderBottomShadow(true);
  EXPECT_LT(bottomGrey(view), 80);
  view.setRenderBottomShadow(false);
  EXPECT_GT(bottomGrey(view), 200);
}

TEST(OVTransportBackgroundViewTest, SettingTheShadowDoesNotRedraw) {
  ControlsWindow window;
  window.show();
  auto* view = new OVTransportBackgroundView(window.bar());
  view->setGeometry(100, 10, 40, 20);
  view->show();
  PaintCounter paints(view);
  static_cast<void>(paints.take());
  view->setRenderBottomShadow(true);
  EXPECT_EQ(paints.take(), 0);
}

TEST(OVTransportBackgroundViewTest, AResizeRedrawsTheWholeGradient) {
  OVTransportBackgroundView view;
  view.resize(40, 58);
  const int before = view.grab().toImage().pixelColor(5, 30).green();
  view.resize(40, 200);
  EXPECT_GT(view.grab().toImage().pixelColor(5, 30).green(), before);
  EXPECT_FALSE(view.testAttribute(Qt::WA_StaticContents));
}

}  // namespace
