#include "platform/desktop/DesktopColours.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>

#include "support/MainLoop.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

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
    const std::string socket = folder_.file("bus");
    std::string error;
    daemon_ = support::ChildProcess::start(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=unix:path=" + socket},
        support::cleanEnvironment(), error);
    ASSERT_NE(daemon_, nullptr) << error;
    address_ = QStringLiteral("unix:path=") + QString::fromStdString(socket);
    ASSERT_TRUE(support::eventually([&] { return connectTo("program").isConnected(); }));
    ASSERT_TRUE(connectTo("portal").isConnected());
  }
  void TearDown() override {
    colours_.reset();
    QApplication::setPalette(QPalette());
    for (const char* name : {"program", "portal"}) {
      QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
  }

  QDBusConnection connectTo(const char* name) {
    const QString connectionName = QString::fromLatin1(name);
    const QDBusConnection connection = QDBusConnection::connectToBus(address_, connectionName);
    if (!connection.isConnected()) {
      QDBusConnection::disconnectFromBus(connectionName);  // otherwise Qt would cache the failure
    }
    return connection;
  }

  void offerPortal() {
    QDBusConnection bus = connectTo("portal");
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal_,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
  }

  void follow() { colours_ = std::make_unique<platform::DesktopColours>(connectTo("program")); }

  static bool looksDark() {
    return QApplication::palette().color(QPalette::Window).lightness() < 100;
  }

  support::TemporaryFolder folder_;
  std::unique_ptr<support::ChildProcess> daemon_;
  QString address_;
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
