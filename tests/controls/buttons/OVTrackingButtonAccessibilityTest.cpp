#include <memory>

#include <QAccessible>

#include <gtest/gtest.h>

#include "controls/buttons/OVHoverButton.h"
#include "controls/buttons/OVTransportButton.h"

namespace {

QAccessibleInterface* interfaceOf(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget);
}

TEST(OVTrackingButtonAccessibilityTest, AButtonHasItsNameAndRole) {
  OVTransportButton button;
  button.setAccessibleName(QStringLiteral("Stop"));
  const auto* accessible = interfaceOf(button);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Stop"));
  EXPECT_FALSE(accessible->state().checkable);
  EXPECT_TRUE(accessible->state().focusable);
}

TEST(OVTrackingButtonAccessibilityTest, ASwitchIsCheckableAndSaysWhetherItIsOn) {
  OVHoverButton button;
  const auto* accessible = interfaceOf(button);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->role(), QAccessible::Button);
  EXPECT_TRUE(accessible->state().checkable);
  EXPECT_FALSE(accessible->state().checked);
  button.setIsOn(true);
  EXPECT_TRUE(accessible->state().checked);
  button.setIsHighlighted(true);
  EXPECT_TRUE(accessible->state().pressed);
}

TEST(OVTrackingButtonAccessibilityTest, ThePressActionClicks) {
  OVTransportButton button;
  button.setIsSwitch(true);
  const auto target = std::make_shared<int>(0);
  int sent = 0;
  button.setTarget(target);
  button.setAction([&sent](OVTrackingButton* sender) { sent += sender->isOn() ? 1 : 100; });
  auto* actions = interfaceOf(button)->actionInterface();
  ASSERT_NE(actions, nullptr);
  EXPECT_EQ(actions->actionNames().value(0), QAccessibleActionInterface::pressAction());
  EXPECT_EQ(actions->keyBindingsForAction(QAccessibleActionInterface::pressAction()),
            QStringList{"Ctrl+Return"});
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(sent, 1);
  actions->doAction(QStringLiteral("something else"));
  EXPECT_EQ(sent, 1);
}

TEST(OVTrackingButtonAccessibilityTest, ADisabledButtonOffersNoActionAndIgnoresOne) {
  OVTransportButton button;
  button.setIsSwitch(true);
  button.setEnabled(false);
  auto* accessible = interfaceOf(button);
  EXPECT_TRUE(accessible->state().disabled);
  EXPECT_TRUE(accessible->actionInterface()->actionNames().isEmpty());
  accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(button.isOn());
}

}  // namespace
