#include "controls/buttons/OVHoverButton.h"

#include <gtest/gtest.h>

#include "controls/ControlsWindow.h"
#include "platform/views/NamedImage.h"
#include "support/Pixels.h"

namespace {

const QPoint kInside(14, 14);
const QPoint kElsewhere(-60, 14);

class OVHoverButtonTest : public testing::Test {
 protected:
  void SetUp() override {
    button_ = new OVHoverButton(window_.bar());
    button_->setGeometry(200, 15, 28, 28);
    button_->setOnImage(QStringLiteral("spectrum_on.png"));
    button_->setOffImage(QStringLiteral("spectrum_off.png"));
    button_->setHoverImage(QStringLiteral("spectrum_hover.png"));
    window_.show();
    window_.moveTo(button_, kElsewhere);
  }

  void expectShows(const char* name) {
    for (const int ratio : {1, 2}) {
      ControlsWindow empty;
      QImage expected = empty.picture(empty.bar(), ratio);
      expected.setDevicePixelRatio(ratio);
      QPainter painter(&expected);
      painter.drawImage(QPointF(200, 15),
                        platform::NamedImage(QString::fromLatin1(name)).forRatio(ratio));
      painter.end();
      EXPECT_LT(meanDistance(window_.picture(window_.bar(), ratio), expected), 0.01)
          << name << " at " << ratio;
    }
  }

  ControlsWindow window_;
  OVHoverButton* button_ = nullptr;
};

TEST_F(OVHoverButtonTest, StartsAsAnEnabledSwitchThatIsOff) {
  EXPECT_TRUE(button_->isSwitch());
  EXPECT_TRUE(button_->isEnabled());
  EXPECT_FALSE(button_->isOn());
  EXPECT_FALSE(button_->isHovering());
  expectShows("spectrum_off.png");
}

TEST_F(OVHoverButtonTest, ShowsTheHoverImageWhileTheMouseIsOverIt) {
  window_.moveTo(button_, kInside);
  EXPECT_TRUE(button_->isHovering());
  expectShows("spectrum_hover.png");
  window_.moveTo(button_, kElsewhere);
  EXPECT_FALSE(button_->isHovering());
  expectShows("spectrum_off.png");
}

TEST_F(OVHoverButtonTest, ShowsItsOnImageEvenWhileHovered) {
  button_->setIsOn(true);
  expectShows("spectrum_on.png");
  window_.moveTo(button_, kInside);
  EXPECT_TRUE(button_->isHovering());
  expectShows("spectrum_on.png");
}

TEST_F(OVHoverButtonTest, AClickTogglesAndSends) {
  const auto target = std::make_shared<int>(0);
  int sent = 0;
  button_->setTarget(target);
  button_->setAction([&sent](OVTrackingButton* sender) { sent += sender->isOn() ? 1 : 100; });
  window_.click(button_, kInside);
  EXPECT_EQ(sent, 1);
  window_.click(button_, kInside);
  EXPECT_EQ(sent, 101);
  window_.press(button_, kInside);
  window_.moveTo(button_, kElsewhere);
  window_.release(button_, kElsewhere);
  EXPECT_FALSE(button_->isOn());
  EXPECT_EQ(sent, 101);
}

TEST_F(OVHoverButtonTest, PressedItIsDarker) {
  button_->setIsOn(true);
  const QColor plain = window_.picture(button_).pixelColor(14, 14);
  button_->setIsHighlighted(true);
  const QColor pressed = window_.picture(button_).pixelColor(14, 14);
  EXPECT_LT(pressed.lightness(), plain.lightness());
}

TEST_F(OVHoverButtonTest, DisabledUnderTheMouseItKeepsHoveringUntilItIsEnabledAndLeft) {
  window_.moveTo(button_, kInside);
  button_->setEnabled(false);
  window_.moveTo(button_, kElsewhere);
  EXPECT_TRUE(button_->isHovering());
  expectShows("spectrum_hover.png");  // it does not look disabled
  button_->setEnabled(true);
  window_.moveTo(button_, kInside);
  window_.moveTo(button_, kElsewhere);
  EXPECT_FALSE(button_->isHovering());
}

TEST_F(OVHoverButtonTest, DisabledItIgnoresEnteringAndClicks) {
  button_->setEnabled(false);
  window_.moveTo(button_, kInside);
  window_.click(button_, kInside);
  EXPECT_FALSE(button_->isHovering());
  EXPECT_FALSE(button_->isOn());
  EXPECT_FALSE(button_->isHighlighted());
}

}  // namespace
