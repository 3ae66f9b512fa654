#include "controls/buttons/OVTrackingButton.h"

#include <memory>
#include <vector>

#include <QPointer>

#include <gtest/gtest.h>

#include "controls/ControlsWindow.h"
#include "controls/buttons/OVTransportButton.h"

namespace {

const QPoint kInside(20, 10);
const QPoint kOutside(80, 10);

class OVTrackingButtonTest : public testing::Test {
 protected:
  void SetUp() override {
    button_ = new OVTransportButton(window_.bar());
    button_->setGeometry(57, 13, 46, 32);
    button_->setTarget(target_);
    button_->setAction([this](OVTrackingButton* sender) {
      EXPECT_EQ(sender, button_);
      sentWhile_.push_back(sender->isOn());
    });
    window_.show();
  }

  ControlsWindow window_;
  OVTransportButton* button_ = nullptr;
  std::shared_ptr<int> target_ = std::make_shared<int>(0);
  std::vector<bool> sentWhile_;  // isOn() at each action
};

TEST_F(OVTrackingButtonTest, StartsAsAnEnabledPushButtonThatIsOff) {
  EXPECT_TRUE(button_->isEnabled());
  EXPECT_FALSE(button_->isOn());
  EXPECT_FALSE(button_->isSwitch());
  EXPECT_FALSE(button_->isHighlighted());
}

TEST_F(OVTrackingButtonTest, ClickingAPushButtonSendsTheActionAndNeverTurnsItOn) {
  window_.press(button_, kInside);
  EXPECT_TRUE(button_->isHighlighted());
  EXPECT_FALSE(button_->isOn());
  EXPECT_TRUE(sentWhile_.empty());
  window_.release(button_, kInside);
  EXPECT_FALSE(button_->isHighlighted());
  EXPECT_FALSE(button_->isOn());
  EXPECT_EQ(sentWhile_, std::vector<bool>{false});
}

TEST_F(OVTrackingButtonTest, ASwitchTurnsAtOnceAndTheTargetReadsTheNewState) {
  button_->setIsSwitch(true);
  window_.press(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  EXPECT_TRUE(button_->isHighlighted());
  window_.release(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  window_.click(button_, kInside);
  EXPECT_FALSE(button_->isOn());
  EXPECT_EQ(sentWhile_, (std::vector<bool>{true, false}));
}

TEST_F(OVTrackingButtonTest, DraggingOutAndBackPreviewsTheToggle) {
  button_->setIsSwitch(true);
  window_.press(button_, kInside);
  window_.moveTo(button_, kOutside);
  EXPECT_FALSE(button_->isOn());
  EXPECT_FALSE(button_->isHighlighted());
  window_.moveTo(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  EXPECT_TRUE(button_->isHighlighted());
  window_.release(button_, kInside);
  EXPECT_EQ(sentWhile_, std::vector<bool>{true});
}

TEST_F(OVTrackingButtonTest, AClickOnASwitchThatEndsOutsideLeavesItUnchangedAndSendsNothing) {
  button_->setIsSwitch(true);
  for (const bool before : {false, true}) {
    button_->setIsOn(before);
    window_.press(button_, kInside);
    window_.moveTo(button_, kOutside);
    window_.release(button_, kOutside);
    EXPECT_EQ(button_->isOn(), before);
    EXPECT_FALSE(button_->isHighlighted());
  }
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, AClickOnAPushButtonThatEndsOutsideSendsNothing) {
  window_.press(button_, kInside);
  window_.moveTo(button_, kOutside);
  EXPECT_FALSE(button_->isHighlighted());
  window_.release(button_, kOutside);
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, TheEdgesCountAsInsideOnTheLeftAndTopOnly) {
  window_.press(button_, kInside);
  for (const auto& [point, inside] : std::vector<std::pair<QPoint, bool>>{{{0, 0}, true},
                                                                          {{45, 31}, true},
                                                                          {{-1, 10}, false},
                                                                          {{46, 10}, false},
                                                                          {{20, -1}, false},
                                                                          {{20, 32}, false}}) {
    window_.moveTo(button_, point);
    EXPECT_EQ(button_->isHighlighted(), inside) << point.x() << ", " << point.y();
  }
  window_.release(button_, kOutside);
}

TEST_F(OVTrackingButtonTest, ADisabledButtonIgnoresTheMouseAndKeepsItsState) {
  button_->setIsSwitch(true);
  button_->setIsOn(true);
  button_->setEnabled(false);
  window_.press(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  EXPECT_FALSE(button_->isHighlighted());
  window_.moveTo(button_, kOutside);
  window_.moveTo(button_, kInside);
  window_.release(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  EXPECT_FALSE(button_->isHighlighted());
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, DisabledWhilePressedItKeepsLookingPressedAndSendsNothing) {
  window_.press(button_, kInside);
  button_->setEnabled(false);
  window_.release(button_, kInside);
  EXPECT_TRUE(button_->isHighlighted());
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, ACancelledPressShowsTheOldStateAndSendsNothingUntilTheNextPress) {
  button_->setIsSwitch(true);
  for (const bool before : {false, true}) {
    button_->setIsOn(before);
    window_.press(button_, kInside);
    button_->cancelPress();
    EXPECT_EQ(button_->isOn(), before);
    EXPECT_FALSE(button_->isHighlighted());
    window_.moveTo(button_, kOutside);
    window_.moveTo(button_, kInside);
    window_.release(button_, kInside);
    EXPECT_EQ(button_->isOn(), before);
    EXPECT_FALSE(button_->isHighlighted());
  }
  EXPECT_TRUE(sentWhile_.empty());
  window_.click(button_, kInside);
  EXPECT_EQ(sentWhile_, std::vector<bool>{false});
}

TEST_F(OVTrackingButtonTest, APressDuringWhichItWasCancelledAndDisabledForAWhileSendsNothing) {
  window_.press(button_, kInside);
  button_->cancelPress();
  button_->setEnabled(false);
  button_->setEnabled(true);
  window_.release(button_, kInside);
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, OnlyTheLeftMouseButtonPresses) {
  for (const auto other : {Qt::RightButton, Qt::MiddleButton}) {
    window_.press(button_, kInside, other);
    EXPECT_FALSE(button_->isHighlighted());
    window_.release(button_, kInside, other);
  }
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, EveryClickOfADoubleClickCounts) {
  button_->setIsSwitch(true);
  window_.click(button_, kInside);
  QTest::mouseDClick(button_, Qt::LeftButton, {}, kInside);  // in place of the second press
  EXPECT_TRUE(button_->isHighlighted());
  QTest::mouseRelease(button_, Qt::LeftButton, {}, kInside);
  EXPECT_FALSE(button_->isOn());
  EXPECT_EQ(sentWhile_, (std::vector<bool>{true, false}));
}

TEST_F(OVTrackingButtonTest, WithoutALivingTargetTheSwitchTurnsButNothingIsSent) {
  button_->setIsSwitch(true);
  target_.reset();
  window_.click(button_, kInside);
  EXPECT_TRUE(button_->isOn());
  EXPECT_TRUE(sentWhile_.empty());
  EXPECT_EQ(button_->target().lock(), nullptr);
}

TEST_F(OVTrackingButtonTest, TheTargetLivesThroughTheAction) {
  button_->setAction([this](OVTrackingButton* sender) {
    target_.reset();
    EXPECT_NE(sender->target().lock(), nullptr);
  });
  window_.click(button_, kInside);
  EXPECT_EQ(button_->target().lock(), nullptr);
}

TEST_F(OVTrackingButtonTest, TheActionMayDeleteTheButtonOrReplaceItself) {
  QPointer<OVTransportButton> button = button_;
  button_->setAction([](OVTrackingButton* sender) {
    sender->setAction(nullptr);
    delete sender;
  });
  window_.press(button_, kInside);
  window_.release(window_.bar(), QPoint(57, 13) + kInside);
  EXPECT_TRUE(button.isNull());
}

TEST_F(OVTrackingButtonTest, AClickWithoutAMouseTurnsASwitchAndSends) {
  button_->setIsSwitch(true);
  button_->performClick();
  EXPECT_EQ(sentWhile_, std::vector<bool>{true});
  button_->setEnabled(false);
  button_->performClick();
  EXPECT_TRUE(button_->isOn());
  EXPECT_EQ(sentWhile_.size(), 1U);
}

TEST_F(OVTrackingButtonTest, TurningAndEnablingRedrawAndTheOtherSettersDoNot) {
  PaintCounter paints(button_);
  static_cast<void>(paints.take());
  button_->setIsOn(true);
  EXPECT_GT(paints.take(), 0);
  button_->setEnabled(false);
  EXPECT_GT(paints.take(), 0);
  button_->setIsHighlighted(true);
  button_->setIsSwitch(true);
  button_->setTarget({});
  button_->setAction(nullptr);
  EXPECT_EQ(paints.take(), 0);
}

TEST_F(OVTrackingButtonTest, PressingDraggingAndReleasingRedraw) {
  PaintCounter paints(button_);
  static_cast<void>(paints.take());
  window_.press(button_, kInside);
  EXPECT_GT(paints.take(), 0);
  window_.moveTo(button_, kOutside);
  EXPECT_GT(paints.take(), 0);
  window_.release(button_, kOutside);
  EXPECT_GT(paints.take(), 0);
}

TEST_F(OVTrackingButtonTest, AClickDoesNotTakeTheKeyboard) {
  button_->clearFocus();  // an active window gives the focus to its first view
  window_.click(button_, kInside);
  EXPECT_FALSE(button_->hasFocus());
  EXPECT_EQ(button_->focusPolicy(), Qt::TabFocus);
}

TEST_F(OVTrackingButtonTest, CtrlReturnPressesIt) {
  button_->setIsSwitch(true);
  QTest::keyClick(button_, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(sentWhile_, std::vector<bool>{true});
  QTest::keyClick(button_, Qt::Key_Enter, Qt::ControlModifier);
  EXPECT_EQ(sentWhile_, (std::vector<bool>{true, false}));
  button_->setEnabled(false);
  QTest::keyClick(button_, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(sentWhile_.size(), 2U);
}

TEST_F(OVTrackingButtonTest, AHeldCtrlReturnPressesItOnce) {
  const auto send = [&](QEvent::Type type, bool repeated) {
    QKeyEvent event(type, Qt::Key_Return, Qt::ControlModifier, QString(), repeated);
    QCoreApplication::sendEvent(button_, &event);
    return event.isAccepted();
  };
  EXPECT_TRUE(send(QEvent::KeyPress, false));
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(send(QEvent::KeyRelease, true));
    EXPECT_TRUE(send(QEvent::KeyPress, true));
  }
  EXPECT_TRUE(send(QEvent::KeyRelease, false));
  EXPECT_EQ(sentWhile_.size(), 1U);
  EXPECT_FALSE(send(QEvent::KeyRelease, false)) << "not its own press";
}

TEST_F(OVTrackingButtonTest, PlainKeysGoOnToTheWindow) {
  for (const int key : {Qt::Key_R, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, key, Qt::NoModifier);
      QCoreApplication::sendEvent(button_, &event);
      EXPECT_FALSE(event.isAccepted()) << key;
    }
  }
  EXPECT_TRUE(sentWhile_.empty());
}

TEST_F(OVTrackingButtonTest, ARingShowsThatTheKeyboardIsThere) {
  const QImage before = window_.picture(button_);
  button_->setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(window_.picture(button_), before);
  button_->clearFocus();
  button_->setFocus(Qt::TabFocusReason);
  EXPECT_NE(window_.picture(button_), before);
  button_->clearFocus();
  EXPECT_EQ(window_.picture(button_), before);
}

}  // namespace
