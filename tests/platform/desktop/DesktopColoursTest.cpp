#include "platform/desktop/DesktopColours.h"

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QWidget>

#include "support/MainLoop.h"
#include "support/Sanitizers.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/PrivateBus.h"

namespace {

/// Less than Qt waits for an answer of the bus.
constexpr std::chrono::seconds kPatienceOfACall{15};

/// A desktop's settings portal.
class Portal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  uint colorScheme = 0;
  int questions = 0;

 public Q_SLOTS:
  QDBusVariant Read(const QString& group, const QString& key) {
    ++questions;
    const bool known = group == QLatin1String("org.freedesktop.appearance") &&
                       key == QLatin1String("color-scheme");
    return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? colorScheme : 99U)));
  }
};

class DesktopColoursTest : public testing::Test {
 protected:
  void SetUp() override {
    if (support::kThreadSanitizer) {
      GTEST_SKIP() << "Qt's thread for the bus is not built for ThreadSanitizer";
    }
    bus_ = std::make_unique<support::PrivateBus>();
    ASSERT_TRUE(bus_->isRunning());
    ASSERT_TRUE(bus_->connect("program").isConnected());
    ASSERT_TRUE(bus_->connect("portal").isConnected());
  }
  void TearDown() override {
    colours_.reset();
    QApplication::setPalette(QPalette());
    for (const char* name : {"program", "portal"}) {
      support::PrivateBus::disconnect(name);
    }
  }

  void offerPortal() {
    QDBusConnection bus = bus_->connect("portal");
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal_,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
  }

  void follow() { colours_ = std::make_unique<platform::DesktopColours>(bus_->connect("program")); }

  /// The desktop's user chooses another scheme.
  void changeTo(uint colorScheme, const char* key = "color-scheme") {
    portal_.colorScheme = colorScheme;
    QDBusMessage signal = QDBusMessage::createSignal(
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
    signal.setArguments({QStringLiteral("org.freedesktop.appearance"), QString::fromLatin1(key),
                         QVariant::fromValue(QDBusVariant(colorScheme))});
    ASSERT_TRUE(bus_->connect("portal").send(signal));
  }

  static bool looksDark() {
    return QApplication::palette().color(QPalette::Window).lightness() < 100;
  }

  std::unique_ptr<support::PrivateBus> bus_;
  Portal portal_;
  std::unique_ptr<platform::DesktopColours> colours_;
};

TEST_F(DesktopColoursTest, ADarkDesktopGivesDarkColours) {
  portal_.colorScheme = 1;
  offerPortal();
  follow();
  EXPECT_FALSE(colours_->isDark()) << "the answer is not waited for";
  ASSERT_TRUE(runMainLoopUntil([&] { return colours_->isDark(); }));
  EXPECT_TRUE(looksDark());
}

TEST_F(DesktopColoursTest, ALightDesktopOrOneWithoutAWishKeepsTheColours) {
  offerPortal();
  const QPalette before = QApplication::palette();
  for (const uint scheme : {0U, 2U}) {
    portal_.colorScheme = scheme;
    portal_.questions = 0;
    follow();
    ASSERT_TRUE(runMainLoopUntil([&] { return portal_.questions == 1; }));
    ASSERT_TRUE(drainMainQueue());
    EXPECT_FALSE(colours_->isDark());
    EXPECT_EQ(QApplication::palette(), before);
  }
}

TEST_F(DesktopColoursTest, ARunningProgramFollowsEveryChange) {
  offerPortal();
  const support::InstalledRecordingServices services;
  const QPalette light = QApplication::palette();
  QWidget window;
  window.show();
  follow();
  ASSERT_TRUE(runMainLoopUntil([&] { return portal_.questions == 1; }));
  for (int round = 0; round < 2; ++round) {
    changeTo(1);
    ASSERT_TRUE(runMainLoopUntil([&] { return colours_->isDark(); })) << round;
    EXPECT_TRUE(looksDark());
    EXPECT_LT(window.palette().color(QPalette::Window).lightness(), 100);
    changeTo(round == 0 ? 2 : 0);
    ASSERT_TRUE(runMainLoopUntil([&] { return !colours_->isDark(); })) << round;
    EXPECT_EQ(QApplication::palette(), light);
  }
  EXPECT_EQ(services->consoleLinesWith("light and dark"), 0U);
}

TEST_F(DesktopColoursTest, OtherSettingsChangeNoColours) {
  offerPortal();
  follow();
  ASSERT_TRUE(runMainLoopUntil([&] { return portal_.questions == 1; }));
  changeTo(2);
  changeTo(1, "accent-color");
  changeTo(2);  // arrives after it
  ASSERT_TRUE(drainMainQueue());
  EXPECT_FALSE(colours_->isDark());
  changeTo(1);
  ASSERT_TRUE(runMainLoopUntil([&] { return colours_->isDark(); }));
}

TEST_F(DesktopColoursTest, AToolkitThatIsDarkByItselfIsLeftAlone) {
  QPalette own(QColor(20, 20, 20));
  own.setColor(QPalette::WindowText, Qt::white);
  QApplication::setPalette(own);
  portal_.colorScheme = 1;
  offerPortal();
  follow();
  ASSERT_TRUE(runMainLoopUntil([&] { return portal_.questions == 1; }));
  ASSERT_TRUE(drainMainQueue());
  EXPECT_FALSE(colours_->isDark());
  EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(20, 20, 20));
}

TEST_F(DesktopColoursTest, WithoutAPortalOrWithoutABusNothingHappens) {
  const QPalette before = QApplication::palette();
  follow();
  ASSERT_TRUE(drainMainQueue());
  const platform::DesktopColours alone(QDBusConnection(QStringLiteral("no such connection")));
  ASSERT_TRUE(drainMainQueue());
  EXPECT_FALSE(colours_->isDark());
  EXPECT_FALSE(alone.isDark());
  EXPECT_EQ(QApplication::palette(), before);
}

TEST_F(DesktopColoursTest, ABusThatDoesNotAnswerIsNotWaitedFor) {
  portal_.colorScheme = 1;
  offerPortal();
  ASSERT_TRUE(bus_->connect("program").isConnected());
  bus_->daemon().freeze();
  const auto before = std::chrono::steady_clock::now();
  follow();
  EXPECT_LT(std::chrono::steady_clock::now() - before, kPatienceOfACall);
  bus_->daemon().thaw();
  EXPECT_TRUE(runMainLoopUntil([&] { return colours_->isDark(); }));
}

TEST(DesktopColoursPaletteTest, TheHighlightIsTheSameInLightAndDark) {
  const QPalette light = QApplication::palette();
  const QPalette dark = platform::DesktopColours::darkPalette();
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText}) {
      EXPECT_EQ(dark.color(group, role), light.color(group, role)) << group << ' ' << role;
    }
  }
}

TEST(DesktopColoursPaletteTest, EveryTextStandsOutFromItsGround) {
  const QPalette dark = platform::DesktopColours::darkPalette();
  const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
      {QPalette::WindowText, QPalette::Window},
      {QPalette::Text, QPalette::Base},
      {QPalette::ButtonText, QPalette::Button},
      {QPalette::ToolTipText, QPalette::ToolTipBase},
      {QPalette::HighlightedText, QPalette::Highlight},
      {QPalette::Link, QPalette::Window}};
  for (const auto& [text, ground] : pairs) {
    EXPECT_GT(dark.color(text).lightness() - dark.color(ground).lightness(), 90) << text;
  }
}

}  // namespace

#include "DesktopColoursTest.moc"
