#include "controls/buttons/OVClippingLamp.h"

#include <gtest/gtest.h>
#include <QAccessible>
#include <QtTest>

#include "support/Pixels.h"
#include "support/ViewOnScreen.h"
#include "support/fakes/RecordingAnnouncer.h"

namespace {

const QColor kWell(35, 45, 66);

class OVClippingLampTest : public testing::Test {
 protected:
  OVClippingLampTest() {
    lamp_->setGeometry(20, 3, 13, 30);
    lamp_->setTarget(target_);
    lamp_->setAction([this](OVTrackingButton*) { lamp_->turnOff(); });
    window_.resize(60, 36);
    window_.show();
  }

  support::RecordingAnnouncer announcer_;
  std::shared_ptr<int> target_ = std::make_shared<int>();
  QWidget window_;
  OVClippingLamp* lamp_ = new OVClippingLamp(&window_);
};

QImage drawn(OVClippingLamp& lamp, double ratio) {
  QImage picture = makePicture(lamp.size(), ratio, kWell);
  lamp.render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
  return picture;
}

}  // namespace

TEST_F(OVClippingLampTest, IsThereOnlyWhileItIsLit) {
  EXPECT_FALSE(lamp_->isLit());
  EXPECT_FALSE(lamp_->isVisible());
  lamp_->light("Too loud");
  EXPECT_TRUE(lamp_->isLit());
  EXPECT_TRUE(lamp_->isVisible());
  EXPECT_EQ(lamp_->toolTip(), "Too loud");
  lamp_->turnOff();
  EXPECT_FALSE(lamp_->isLit());
}

TEST_F(OVClippingLampTest, AClickTurnsItOff) {
  lamp_->light("Too loud");
  QTest::mouseClick(lamp_, Qt::LeftButton);
  EXPECT_FALSE(lamp_->isLit());
}

TEST_F(OVClippingLampTest, TheKeyboardReachesItAndTurnsItOff) {
  lamp_->light("Too loud");
  EXPECT_EQ(lamp_->focusPolicy(), Qt::TabFocus);
  QTest::keyClick(lamp_, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_FALSE(lamp_->isLit());
}

TEST_F(OVClippingLampTest, AssistiveTechnologyNamesItAndTurnsItOff) {
  lamp_->light("Too loud: clipped at 00:00:01.00.");
  EXPECT_EQ(announcer_.texts, std::vector<std::string>{"Too loud: clipped at 00:00:01.00."});
  auto* const accessible = QAccessible::queryAccessibleInterface(lamp_);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Clipping");
  EXPECT_EQ(accessible->text(QAccessible::Description), "Too loud: clipped at 00:00:01.00.");
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(lamp_->isLit());
}

TEST_F(OVClippingLampTest, DrawsARedBallWithAGlowAndNothingAround) {
  for (const int ratio : {1, 2}) {
    support::ViewOnScreen<OVClippingLamp> lamp;
    lamp.ratio = ratio;
    lamp.resize(13, 30);
    const QImage picture = drawn(lamp, ratio);
    const QColor middle = picture.pixelColor(6 * ratio, 15 * ratio);
    EXPECT_GT(middle.red(), 220);
    EXPECT_LT(middle.blue(), 120);
    const QColor glow = picture.pixelColor(6 * ratio, 10 * ratio + ratio / 2);
    EXPECT_GT(glow.red(), kWell.red() + 20);
    EXPECT_LT(glow.red(), middle.red() - 40);
    EXPECT_EQ(picture.pixelColor(6 * ratio, 4 * ratio), kWell);
    EXPECT_EQ(picture.pixelColor(0, 25 * ratio), kWell);
  }
}

TEST_F(OVClippingLampTest, LooksPressedWhileTheMouseHoldsIt) {
  lamp_->light("Too loud");
  const QImage free = drawn(*lamp_, 1.0);
  QTest::mousePress(lamp_, Qt::LeftButton);
  EXPECT_TRUE(lamp_->isLit());
  EXPECT_LT(drawn(*lamp_, 1.0).pixelColor(6, 15).red(), free.pixelColor(6, 15).red());
  QTest::mouseRelease(lamp_, Qt::LeftButton, Qt::NoModifier, QPoint(-50, 0));
  EXPECT_TRUE(lamp_->isLit()) << "released outside";
}
