#include "platform/views/ViewAccessibility.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

/// What assistive technology is sent about a view.
class QtAnnouncerTest : public testing::Test {
 protected:
  struct Event {
    QObject* view;
    QAccessible::Event type;
    QString text;  ///< what a screen reader says for it
    friend bool operator==(const Event&, const Event&) = default;
  };

  QtAnnouncerTest() { platform::describeView(&view_, QString(), platform::kAnnouncerRole); }

  void announce(const QString& text) {
    view_.setAccessibleName(text);
    announcer_.announce(&view_, text);
  }

  QWidget view_;
  std::vector<Event> sent_;

 private:
  void note(QAccessibleEvent* event) {
    QString text = event->accessibleInterface()->text(QAccessible::Name);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    text = event->type() == QAccessible::Announcement
               ? static_cast<QAccessibleAnnouncementEvent*>(event)->message()
               : QString();
#endif
    sent_.push_back({event->object(), event->type(), text});
  }

  platform::QtAnnouncer announcer_{[this](QAccessibleEvent* event) { note(event); }};
};

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)

TEST_F(QtAnnouncerTest, TheTextIsAnnounced) {
  announce("No microphone");
  EXPECT_EQ(sent_, (std::vector<Event>{{&view_, QAccessible::Announcement, "No microphone"}}));
}

#else

TEST_F(QtAnnouncerTest, AViewThatIsNotShownYetAlertsSinceShowingItIsReadOut) {
  announce("No microphone");
  EXPECT_EQ(sent_, (std::vector<Event>{{&view_, QAccessible::Alert, "No microphone"}}));
}

TEST_F(QtAnnouncerTest, AViewThatIsShownAlertsAndIsReadOutAgain) {
  view_.show();
  announce("No microphone");
  EXPECT_EQ(sent_, (std::vector<Event>{{&view_, QAccessible::Alert, "No microphone"},
                                       {&view_, QAccessible::ObjectShow, "No microphone"}}));
}

#endif

TEST(AnnouncerTest, TheOneThatIsUsedUnlessATestInstallsAnotherPassesTextsToAssistiveTechnology) {
  const auto used = platform::Announcer::whenNoneIsInstalled();
  EXPECT_NE(dynamic_cast<platform::QtAnnouncer*>(used.get()), nullptr);
}

}  // namespace

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
