#include "platform/desktop/PortalOpenDialog.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QLabel>

#include "platform/desktop/OpenPanel.h"
#include "platform/desktop/QtFileDialogs.h"
#include "support/MainLoop.h"
#include "support/Sanitizers.h"
#include "support/programs/PrivateBus.h"

namespace {

using Paths = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

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

/// A desktop's portal with a dialog for files.
class Portal : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")

 public:
  enum class Answer { accepted, refused, none };

  Answer answer = Answer::accepted;
  /// Chooses the request's path by itself, as old portals do.
  bool choosesPath = false;
  int calls = 0;
  QString title;
  QVariantMap options;
  QString path;
  std::unique_ptr<Request> request;
  /// The filters by name, with their patterns.
  std::map<std::string, std::vector<std::string>> filters;

  /// The user is done.
  void respond(uint code, const QStringList& uris = {}, const char* sender = "portal") const {
    QDBusMessage signal = QDBusMessage::createSignal(
        path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
    signal.setArguments({code, QVariantMap{{QStringLiteral("uris"), uris}}});
    QDBusConnection(QString::fromLatin1(sender)).send(signal);
  }

  /// Answers a call that was left without an answer.
  void accept() const {
    QDBusConnection(QStringLiteral("portal")).send(call_.createReply(QDBusObjectPath(path)));
  }

 public Q_SLOTS:
  QDBusObjectPath OpenFile(const QString& parent, const QString& asked, const QVariantMap& given) {
    static_cast<void>(parent);
    ++calls;
    title = asked;
    options = given;
    readFilters();
    QString caller = message().service().mid(1);
    caller.replace(QLatin1Char('.'), QLatin1Char('_'));
    path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
               .arg(caller, choosesPath ? QStringLiteral("its_own")
                                        : given.value(QStringLiteral("handle_token")).toString());
    request = std::make_unique<Request>();
    connection().registerObject(path, request.get(), QDBusConnection::ExportAllSlots);
    if (answer == Answer::refused) {
      sendErrorReply(QDBusError::UnknownMethod, QStringLiteral("no such interface"));
    } else if (answer == Answer::none) {
      setDelayedReply(true);
      call_ = message();
    }
    return QDBusObjectPath(path);
  }

 private:
  void readFilters() {
    filters.clear();
    const auto all = options.value(QStringLiteral("filters")).value<QDBusArgument>();
    all.beginArray();
    while (!all.atEnd()) {
      QString name;
      all.beginStructure();
      all >> name;
      all.beginArray();
      while (!all.atEnd()) {
        uint kind = 0;
        QString pattern;
        all.beginStructure();
        all >> kind >> pattern;
        all.endStructure();
        filters[name.toStdString()].push_back(pattern.toStdString());
      }
      all.endArray();
      all.endStructure();
    }
    all.endArray();
  }

  QDBusMessage call_;
};

class PortalOpenDialogTest : public testing::Test {
 protected:
  void SetUp() override {
    if (support::kThreadSanitizer) {
      GTEST_SKIP() << "Qt's thread for the bus is not built for ThreadSanitizer";
    }
    bus_ = std::make_unique<support::PrivateBus>();
    ASSERT_TRUE(bus_->isRunning());
    ASSERT_TRUE(bus_->connect("program").isConnected());
    window_ = std::make_unique<QWidget>();
    window_->show();
  }
  void TearDown() override {
    window_.reset();
    static_cast<void>(drainMainQueue());
    for (const char* name : {"program", "portal", "intruder"}) {
      support::PrivateBus::disconnect(name);
    }
  }

  void offerPortal() {
    QDBusConnection bus = bus_->connect("portal");
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal_,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
  }

  void begin(std::chrono::milliseconds patience = kForEver, QWidget* accessory = nullptr) {
    panels_ = std::make_unique<platform::QtFileDialogs>([this] { return bus_->connect("program"); },
                                                        patience);
    panels_->beginOpenPanel({.window = window_.get(),
                             .title = "Open",
                             .acceptLabel = "&Open",
                             .directory = "/music \xFF",
                             .allowsMultipleSelection = true,
                             .fileTypes = {"wav", "mp3"},
                             .accessoryView = accessory},
                            [this](const Paths& paths) { answers_.push_back(paths); });
  }

  bool awaitCall() {
    return runMainLoopUntil([this] { return portal_.calls == 1; });
  }
  /// What these connections sent has arrived at the dialog.
  bool awaitDelivery(std::initializer_list<const char*> senders) {
    for (const char* const sender : senders) {  // it has arrived at the bus
      if (bus_->connect(sender).call(ping()).type() != QDBusMessage::ReplyMessage) {
        return false;
      }
    }
    bool hasArrived = false;
    const QDBusPendingCallWatcher answer(bus_->connect("program").asyncCall(ping()));
    QObject::connect(&answer, &QDBusPendingCallWatcher::finished, [&] { hasArrived = true; });
    return runMainLoopUntil([&] { return hasArrived; });
  }
  static QDBusMessage ping() {
    return QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
  }
  bool awaitAnswer() {
    return runMainLoopUntil([this] { return !answers_.empty(); });
  }
  bool awaitOwnPanel() {
    return runMainLoopUntil(
        [this] { return window_->findChild<platform::OpenPanel*>("openPanel") != nullptr; });
  }
  bool hasOwnPanel() { return window_->findChild<platform::OpenPanel*>("openPanel") != nullptr; }

  std::unique_ptr<support::PrivateBus> bus_;
  Portal portal_;
  std::unique_ptr<platform::QtFileDialogs> panels_;
  std::unique_ptr<QWidget> window_;
  std::vector<Paths> answers_;
};

TEST_F(PortalOpenDialogTest, TheDesktopsDialogGivesPathsByteForByte) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  portal_.respond(
      0, {"file:///music/one%20%FF.wav", "https://elsewhere/x.wav", "file:///music/two.mp3"});
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(ElementsAre("/music/one \xFF.wav", "/music/two.mp3")));
  EXPECT_FALSE(hasOwnPanel());
}

TEST_F(PortalOpenDialogTest, ItIsToldWhatIsAskedFor) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  EXPECT_EQ(portal_.title, "Open");
  EXPECT_EQ(portal_.options.value("accept_label").toString(), "_Open");
  EXPECT_TRUE(portal_.options.value("multiple").toBool());
  EXPECT_TRUE(portal_.options.value("modal").toBool());
  EXPECT_EQ(portal_.options.value("current_folder").toByteArray(), QByteArray("/music \xFF\0", 9));
  EXPECT_THAT(portal_.filters["Audio Files"], ElementsAre("*.[wW][aA][vV]", "*.[mM][pP]3"));
  EXPECT_THAT(portal_.filters["All Files"], ElementsAre("*"));
}

TEST_F(PortalOpenDialogTest, TheWindowIsBlockedUntilTheEnd) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  ASSERT_NE(QApplication::activeModalWidget(), nullptr);
  EXPECT_EQ(QApplication::activeModalWidget()->objectName(), "portalOpenDialog");
  portal_.respond(1);
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(IsEmpty())) << "cancelled";
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_FALSE(hasOwnPanel());
}

TEST_F(PortalOpenDialogTest, WithoutAPortalTheProgramsOwnPanelIsShown) {
  begin();
  EXPECT_TRUE(awaitOwnPanel());
  EXPECT_THAT(answers_, IsEmpty());
}

TEST_F(PortalOpenDialogTest, WithoutABusTheProgramsOwnPanelIsShown) {
  panels_ = std::make_unique<platform::QtFileDialogs>(
      [] { return QDBusConnection(QStringLiteral("no such connection")); });
  panels_->beginOpenPanel(
      {.window = window_.get(), .title = "Open", .acceptLabel = "Open", .fileTypes = {"wav"}},
      [](const Paths&) {});
  EXPECT_TRUE(awaitOwnPanel());
}

TEST_F(PortalOpenDialogTest, APortalWithoutADialogForFilesGivesTheProgramsOwn) {
  portal_.answer = Portal::Answer::refused;
  offerPortal();
  begin();
  EXPECT_TRUE(awaitOwnPanel());
}

TEST_F(PortalOpenDialogTest, ADialogThatFailsGivesTheProgramsOwn) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  portal_.respond(2);
  EXPECT_TRUE(awaitOwnPanel());
}

TEST_F(PortalOpenDialogTest, APortalThatDoesNotAnswerGivesTheProgramsOwnAndIsToldToStop) {
  portal_.answer = Portal::Answer::none;
  offerPortal();
  // The patience may end before the portal is called, on a busy machine.
  for (std::chrono::milliseconds patience{50}; portal_.calls == 0; patience *= 2) {
    window_ = std::make_unique<QWidget>();
    begin(patience);
    ASSERT_TRUE(awaitOwnPanel());
    ASSERT_TRUE(awaitDelivery({"program", "portal"}));
  }
  EXPECT_TRUE(runMainLoopUntil([this] { return portal_.request->closed == 1; }));
}

TEST_F(PortalOpenDialogTest, APortalThatChoosesThePathOfTheRequestIsHeardThere) {
  portal_.choosesPath = true;
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  ASSERT_TRUE(awaitDelivery({"portal"}));
  ASSERT_TRUE(awaitDelivery({"program"})) << "it listens there now";
  portal_.respond(0, {"file:///music/one.wav"});
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(ElementsAre("/music/one.wav")));
}

TEST_F(PortalOpenDialogTest, AnotherProgramCannotChooseTheFiles) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  ASSERT_TRUE(bus_->connect("intruder").isConnected());
  portal_.respond(0, {"file:///forged.wav"}, "intruder");
  ASSERT_TRUE(awaitDelivery({"portal", "intruder"}));
  EXPECT_THAT(answers_, IsEmpty());
  portal_.respond(0, {"file:///music/one.wav"});
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(ElementsAre("/music/one.wav")));
}

TEST_F(PortalOpenDialogTest, OfAnswersBeforeTheCallReturnsThePortalsCounts) {
  portal_.answer = Portal::Answer::none;
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  ASSERT_TRUE(bus_->connect("intruder").isConnected());
  portal_.respond(0, {"file:///forged.wav"}, "intruder");
  portal_.respond(0, {"file:///music/one.wav"});
  ASSERT_TRUE(awaitDelivery({"portal", "intruder"}));
  EXPECT_THAT(answers_, IsEmpty());
  portal_.accept();
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(ElementsAre("/music/one.wav")));
}

TEST_F(PortalOpenDialogTest, APortalThatEndsWhileItsDialogIsOpenCancels) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  ASSERT_TRUE(awaitDelivery({"portal"})) << "it has accepted the call";
  bus_->connect("portal").unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
  ASSERT_TRUE(awaitAnswer());
  EXPECT_THAT(answers_, ElementsAre(IsEmpty()));
  EXPECT_FALSE(hasOwnPanel());
}

TEST_F(PortalOpenDialogTest, AWindowThatGoesTakesTheDialogWithItAndIsNotAnswered) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  window_ = std::make_unique<QWidget>();
  EXPECT_TRUE(runMainLoopUntil([this] { return portal_.request->closed == 1; }));
  EXPECT_THAT(answers_, IsEmpty());
}

TEST_F(PortalOpenDialogTest, APanelWithAnAccessoryIsTheProgramsOwn) {
  offerPortal();
  begin(kForEver, new QLabel("Goes in at the end."));
  EXPECT_TRUE(hasOwnPanel());
  EXPECT_EQ(portal_.calls, 0);
}

TEST_F(PortalOpenDialogTest, TheNextPanelBeginsWhereFilesWereChosen) {
  offerPortal();
  begin();
  ASSERT_TRUE(awaitCall());
  portal_.respond(0, {"file:///music/one.wav"});
  ASSERT_TRUE(awaitAnswer());
  panels_->beginOpenPanel(
      {.window = window_.get(), .title = "Open", .acceptLabel = "Open", .fileTypes = {"wav"}},
      [](const Paths&) {});
  ASSERT_TRUE(runMainLoopUntil([this] { return portal_.calls == 2; }));
  EXPECT_EQ(portal_.options.value("current_folder").toByteArray(), QByteArray("/music\0", 7));
}

}  // namespace

#include "PortalOpenDialogTest.moc"
