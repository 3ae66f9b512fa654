#include "platform/desktop/DBusSleepInhibitor.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>

#include "support/Gate.h"
#include "support/MainLoop.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/LoginManager.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/ChildProcess.h"

namespace {

using platform::DBusSleepInhibitor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::chrono::milliseconds kForEver{3'600'000};

/// One request of a portal's caller.
class Request : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

 public:
  int closed = 0;

 public Q_SLOTS:
  void Close() { ++closed; }
};

/// A desktop's portal that answers at once, later or never.
class Portal : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Inhibit")

 public:
  struct Call {
    QString window;
    uint flags = 0;
    QString reason;
    QString path;
    QDBusMessage message;
  };
  enum class Answer { granted, error, none };

  Answer answer = Answer::granted;
  std::vector<Call> calls;
  std::vector<std::unique_ptr<Request>> requests;

  void answerLate() const {
    const Call& call = calls.back();
    QDBusConnection(QStringLiteral("portal"))
        .send(call.message.createReply(QVariant::fromValue(QDBusObjectPath(call.path))));
  }

  void respond(uint response) const {
    QDBusMessage signal = QDBusMessage::createSignal(
        calls.back().path, QStringLiteral("org.freedesktop.portal.Request"),
        QStringLiteral("Response"));
    signal.setArguments({response, QVariantMap()});
    QDBusConnection(QStringLiteral("portal")).send(signal);
  }

  int closed() const {
    int result = 0;
    for (const auto& request : requests) {
      result += request->closed;
    }
    return result;
  }

 public Q_SLOTS:
  QDBusObjectPath Inhibit(const QString& window, uint flags, const QVariantMap& options) {
    QString caller = message().service().mid(1);
    caller.replace(QLatin1Char('.'), QLatin1Char('_'));
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                             .arg(caller, options.value("handle_token").toString());
    calls.push_back({window, flags, options.value("reason").toString(), path, message()});
    requests.push_back(std::make_unique<Request>());
    connection().registerObject(path, requests.back().get(), QDBusConnection::ExportAllSlots);
    if (answer == Answer::error) {
      sendErrorReply(QDBusError::UnknownMethod, "no such interface");
    } else if (answer == Answer::none) {
      setDelayedReply(true);
    }
    return QDBusObjectPath(path);
  }
};

class DBusSleepInhibitorTest : public testing::Test {
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
    ASSERT_TRUE(support::eventually([&] { return connectTo("portal").isConnected(); }));
    ASSERT_TRUE(connectTo("login").isConnected());
  }
  void TearDown() override {
    gate_.open();
    EXPECT_TRUE(awaitGlobalQueue());
    EXPECT_TRUE(drainMainQueue());
    inhibitor_.reset();
    for (const char* name : {"program", "system", "portal", "login"}) {
      QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
    }
  }

  QDBusConnection connectTo(const char* name) const {
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
  void offerLoginManager() { ASSERT_TRUE(login_.offerOn(connectTo("login"))); }

  void makeInhibitor(std::chrono::milliseconds portalPatience = kForEver) {
    inhibitor_ = std::make_unique<DBusSleepInhibitor>(
        DBusSleepInhibitor::Buses{.session = [this] { return connectTo("program"); },
                                  .system =
                                      [this] {
                                        hasAskedForSystemBus_ = true;
                                        if (isSystemBusSlow_) {
                                          gate_.pass();
                                        }
                                        return hasSystemBus_ ? connectTo("system")
                                                             : QDBusConnection("no such bus");
                                      }},
        portalPatience);
  }

  std::unique_ptr<platform::SleepInhibitor::Hold> hold() {
    return inhibitor_->hold(QStringLiteral("Orvo is recording"));
  }
  bool portalAsked(std::size_t times = 1) {
    return runMainLoopUntil([&] { return portal_.calls.size() == times; });
  }
  bool loginAsked() {
    return runMainLoopUntil([&] { return login_.calls.size() == 1; });
  }
  bool loginHeld(int count) {
    return runMainLoopUntil([&] { return login_.held() == count; });
  }
  bool portalClosed(int count) {
    return runMainLoopUntil([&] { return portal_.closed() == count; });
  }
  /// A round trip to the portal: what was sent before it has arrived.
  void roundTrip() {
    bool done = false;
    const auto call = connectTo("program").asyncCall(QDBusMessage::createMethodCall(
        "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
        "org.freedesktop.DBus.Peer", "Ping"));
    EXPECT_TRUE(runMainLoopUntil([&] {
      done = call.isFinished();
      return done;
    }));
    EXPECT_TRUE(drainMainQueue());
  }

  support::InstalledRecordingServices services_;
  support::TemporaryFolder folder_;
  std::unique_ptr<support::ChildProcess> daemon_;
  QString address_;
  Portal portal_;
  support::LoginManager login_;
  support::Gate gate_;
  std::atomic<bool> hasSystemBus_ = true;
  std::atomic<bool> isSystemBusSlow_ = false;
  std::atomic<bool> hasAskedForSystemBus_ = false;
  std::unique_ptr<DBusSleepInhibitor> inhibitor_;
};

// The portal ------------------------------------------------------------------------------------

TEST_F(DBusSleepInhibitorTest, AsksThePortalNotToSuspendAndClosesTheRequestAtTheEnd) {
  offerPortal();
  offerLoginManager();
  makeInhibitor();
  auto held = hold();
  EXPECT_THAT(portal_.calls, IsEmpty()) << "nothing is waited for";
  ASSERT_TRUE(portalAsked());
  EXPECT_EQ(portal_.calls[0].flags, 4U);
  EXPECT_EQ(portal_.calls[0].window, "");
  EXPECT_EQ(portal_.calls[0].reason, "Orvo is recording");
  portal_.respond(0);
  roundTrip();
  EXPECT_EQ(portal_.closed(), 0);
  held.reset();
  EXPECT_TRUE(portalClosed(1));
  EXPECT_THAT(login_.calls, IsEmpty());
  EXPECT_THAT(services_->consoleLines(), IsEmpty());
}

TEST_F(DBusSleepInhibitorTest, AllHoldsShareOneRequestUntilTheLastEnds) {
  offerPortal();
  makeInhibitor();
  auto first = hold();
  auto second = hold();
  ASSERT_TRUE(portalAsked());
  first.reset();
  roundTrip();
  EXPECT_EQ(portal_.closed(), 0);
  second.reset();
  ASSERT_TRUE(portalClosed(1));
  auto third = hold();
  ASSERT_TRUE(portalAsked(2));
  EXPECT_NE(portal_.calls[0].path, portal_.calls[1].path);
  roundTrip();
  third.reset();
  EXPECT_TRUE(portalClosed(2));
}

TEST_F(DBusSleepInhibitorTest, AnAnswerThatComesAfterTheEndIsReleasedAtOnce) {
  portal_.answer = Portal::Answer::none;
  offerPortal();
  makeInhibitor();
  auto held = hold();
  ASSERT_TRUE(portalAsked());
  held.reset();
  roundTrip();
  EXPECT_EQ(portal_.closed(), 0);
  portal_.answerLate();
  EXPECT_TRUE(portalClosed(1));
  EXPECT_THAT(login_.calls, IsEmpty());
}

TEST_F(DBusSleepInhibitorTest, AHoldThatEndsBeforeTheBusIsThereAsksNothing) {
  offerPortal();
  makeInhibitor();
  hold().reset();
  ASSERT_TRUE(awaitGlobalQueue());
  roundTrip();
  EXPECT_THAT(portal_.calls, IsEmpty());
}

// The login manager -----------------------------------------------------------------------------

TEST_F(DBusSleepInhibitorTest, WithoutAPortalTheLoginManagersDescriptorIsHeld) {
  offerLoginManager();
  makeInhibitor();
  auto held = hold();
  ASSERT_TRUE(loginAsked());
  EXPECT_EQ(login_.calls[0], (QStringList{"sleep", "Orvo", "Orvo is recording", "block"}));
  EXPECT_TRUE(loginHeld(1));
  held.reset();
  EXPECT_TRUE(loginHeld(0));
}

TEST_F(DBusSleepInhibitorTest, APortalThatFailsOrRefusesLeavesItToTheLoginManager) {
  for (const bool refuses : {false, true}) {
    portal_.answer = refuses ? Portal::Answer::granted : Portal::Answer::error;
    portal_.calls.clear();
    login_.calls.clear();
    if (!refuses) {
      offerPortal();
      offerLoginManager();
    }
    makeInhibitor();
    auto held = hold();
    ASSERT_TRUE(portalAsked());
    if (refuses) {
      portal_.respond(2);
    }
    ASSERT_TRUE(loginAsked());
    held.reset();
    EXPECT_TRUE(loginHeld(0));
  }
}

TEST_F(DBusSleepInhibitorTest, APortalThatDoesNotAnswerLeavesItToTheLoginManager) {
  portal_.answer = Portal::Answer::none;
  offerPortal();
  offerLoginManager();
  makeInhibitor(std::chrono::milliseconds(1));
  auto held = hold();
  ASSERT_TRUE(loginAsked());
  ASSERT_TRUE(loginHeld(1));
  ASSERT_TRUE(portalAsked());
  portal_.answerLate();
  roundTrip();
  held.reset();
  EXPECT_TRUE(loginHeld(0));
  EXPECT_TRUE(portalClosed(1)) << "what it granted late ends with the rest";
}

TEST_F(DBusSleepInhibitorTest, ADescriptorThatComesAfterTheEndIsClosedAtOnce) {
  login_.answersLate = true;
  offerLoginManager();
  makeInhibitor();
  auto held = hold();
  ASSERT_TRUE(loginAsked());
  held.reset();
  login_.answerLate(connectTo("login"));
  EXPECT_TRUE(loginHeld(0));
}

TEST_F(DBusSleepInhibitorTest, ABusThatTakesLongToConnectHoldsUpNothing) {
  isSystemBusSlow_ = true;
  offerLoginManager();
  makeInhibitor();
  auto held = hold();
  ASSERT_TRUE(runMainLoopUntil([this] { return hasAskedForSystemBus_.load(); }));
  held.reset();
  gate_.open();
  ASSERT_TRUE(awaitGlobalQueue());
  ASSERT_TRUE(drainMainQueue());
  EXPECT_THAT(login_.calls, IsEmpty());
}

TEST_F(DBusSleepInhibitorTest, WhereNothingKeepsTheMachineAwakeOneLineIsLogged) {
  login_.refuses = true;
  offerLoginManager();
  makeInhibitor();
  for (int i = 0; i < 2; ++i) {
    const auto held = hold();
    ASSERT_TRUE(
        runMainLoopUntil([&] { return login_.calls.size() == static_cast<std::size_t>(i) + 1; }));
    ASSERT_TRUE(runMainLoopUntil([&] { return services_->consoleLines().size() == 1; }));
  }
  EXPECT_EQ(services_->consoleLinesWith("not allowed"), 1U);
}

TEST_F(DBusSleepInhibitorTest, WithoutAnyBusRecordingGoesOn) {
  hasSystemBus_ = false;
  inhibitor_ = std::make_unique<DBusSleepInhibitor>(
      DBusSleepInhibitor::Buses{.session = [] { return QDBusConnection("no such bus"); },
                                .system = [] { return QDBusConnection("no such bus"); }});
  const auto held = hold();
  EXPECT_TRUE(runMainLoopUntil([&] { return services_->consoleLines().size() == 1; }));
}

TEST_F(DBusSleepInhibitorTest, AHoldMayOutliveTheInhibitorWhichReleasesEverything) {
  offerPortal();
  makeInhibitor();
  auto held = hold();
  ASSERT_TRUE(portalAsked());
  roundTrip();
  inhibitor_.reset();
  EXPECT_TRUE(portalClosed(1));
  held.reset();
}

}  // namespace

#include "DBusSleepInhibitorTest.moc"
