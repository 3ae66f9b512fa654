#include "platform/views/ViewAccessibility.h"

#include <gtest/gtest.h>

TEST(ViewAccessibilityTest, AViewHasItsNameAndRole) {
  QWidget view;
  platform::describeView(&view, "Spectrum", QAccessible::Graphic);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&view);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Spectrum");
  EXPECT_EQ(accessible->role(), QAccessible::Graphic);
  EXPECT_EQ(accessible->text(QAccessible::Value), "");
}

TEST(ViewAccessibilityTest, AViewReadsItsValueOut) {
  QWidget view;
  platform::describeView(&view, "Time", QAccessible::StaticText);
  view.setProperty("accessibleValue", "00:00:01.00");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&view)->text(QAccessible::Value), "00:00:01.00");
}

TEST(ViewAccessibilityTest, TheValueIsTheDescriptionTooUnlessThereIsAnother) {
  QWidget view;
  platform::describeView(&view, "Time", QAccessible::StaticText);
  view.setProperty("accessibleValue", "00:00:01.00");
  const auto* const accessible = QAccessible::queryAccessibleInterface(&view);
  EXPECT_EQ(accessible->text(QAccessible::Description), "00:00:01.00");
  view.setAccessibleDescription("Hours, minutes, seconds");
  EXPECT_EQ(accessible->text(QAccessible::Description), "Hours, minutes, seconds");
  EXPECT_EQ(accessible->text(QAccessible::Value), "00:00:01.00");
}

TEST(ViewAccessibilityTest, OtherWidgetsKeepTheirOwnRoles) {
  QWidget described;
  platform::describeView(&described, "Time", QAccessible::StaticText);
  QWidget other;
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&other)->role(), QAccessible::Client);
}
