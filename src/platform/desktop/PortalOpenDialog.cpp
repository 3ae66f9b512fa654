#include "platform/desktop/PortalOpenDialog.h"

#include <limits>
#include <utility>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QPointer>
#include <QTimer>

#include "platform/base/GlobalQueue.h"
#include "platform/desktop/DesktopPortal.h"
#include "platform/desktop/FileUri.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/MainQueue.h"

namespace platform {
namespace {

constexpr int kNoTimeout = std::numeric_limits<int>::max();

/// A pattern for file names, as the portal takes it.
struct PortalPattern {
  uint kind = 0;  ///< 0: a shell pattern
  QString pattern;
};

/// A choice of files: its name and its patterns.
struct PortalFilter {
  QString name;
  QList<PortalPattern> patterns;
};

// Found by argument-dependent lookup.
QDBusArgument& operator<<(QDBusArgument& argument, const PortalPattern& pattern) {
  argument.beginStructure();
  argument << pattern.kind << pattern.pattern;
  argument.endStructure();
  return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalPattern& pattern) {
  argument.beginStructure();
  argument >> pattern.kind >> pattern.pattern;
  argument.endStructure();
  return argument;
}
QDBusArgument& operator<<(QDBusArgument& argument, const PortalFilter& filter) {
  argument.beginStructure();
  argument << filter.name << filter.patterns;
  argument.endStructure();
  return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalFilter& filter) {
  argument.beginStructure();
  argument >> filter.name >> filter.patterns;
  argument.endStructure();
  return argument;
}

void registerTypes() {
  [[maybe_unused]] static const bool registered = [] {
    qDBusRegisterMetaType<PortalPattern>();
    qDBusRegisterMetaType<QList<PortalPattern>>();
    qDBusRegisterMetaType<PortalFilter>();
    qDBusRegisterMetaType<QList<PortalFilter>>();
    return true;
  }();
}

// Patterns distinguish capitals: "*.[wW][aA][vV]".
QString patternOf(const std::string& suffix) {
  QString pattern = QStringLiteral("*.");
  for (const QChar c : QString::fromStdString(suffix)) {
    pattern +=
        c.isLetter() ? QStringLiteral("[%1%2]").arg(c.toLower()).arg(c.toUpper()) : QString(c);
  }
  return pattern;
}

QList<PortalFilter> filtersFor(const std::vector<std::string>& suffixes) {
  PortalFilter sounds{.name = localized("Audio Files"), .patterns = {}};
  for (const std::string& suffix : suffixes) {
    sounds.patterns.append(PortalPattern{.kind = 0, .pattern = patternOf(suffix)});
  }
  const PortalFilter all{.name = localized("All Files"),
                         .patterns = {{.kind = 0, .pattern = QStringLiteral("*")}}};
  return {sounds, all};
}

// The portal marks a key letter by an underscore.
QString withPortalKeyLetter(QString label) {
  label.replace(QLatin1Char('_'), QLatin1String("__"));
  return label.replace(QLatin1Char('&'), QLatin1Char('_'));
}

}  // namespace

PortalOpenDialog::PortalOpenDialog(const OpenPanelRequest& request, Ended ended)
    : QDialog(request.window), request_(request), ended_(std::move(ended)) {
  setObjectName("portalOpenDialog");
  setAttribute(Qt::WA_DontShowOnScreen);
  setAttribute(Qt::WA_QuitOnClose, false);
  setWindowModality(request.window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
}

PortalOpenDialog::~PortalOpenDialog() {
  if (bus_ && !requestPath_.isEmpty()) {
    portal::closeRequest(*bus_, requestPath_);
  }
}

// Connecting waits for the bus.
void PortalOpenDialog::begin(const DesktopBuses::Bus& session, std::chrono::milliseconds patience) {
  open();
  auto* const timer = new QTimer(this);
  timer->setSingleShot(true);
  connect(timer, &QTimer::timeout, this, [this] {
    if (!isAccepted_) {
      finish(End::unavailable);
    }
  });
  timer->start(patience);
  globalQueue().async([session, self = QPointer(this)] {
    mainQueue().async([self, connection = session()] {
      if (self && self->ended_) {
        self->ask(connection);
      }
    });
  });
}

void PortalOpenDialog::ask(const QDBusConnection& bus) {
  if (!bus.isConnected()) {
    finish(End::unavailable);
    return;
  }
  registerTypes();
  bus_ = bus;
  const QString token = portal::nextToken();
  if (!listenAt(portal::requestPath(bus, token))) {
    finish(End::unavailable);
    return;
  }
  // A portal that ends does not answer.
  auto* const watcher = new QDBusServiceWatcher(QLatin1String(portal::kService), bus,
                                                QDBusServiceWatcher::WatchForUnregistration, this);
  connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
    requestPath_.clear();
    finish(isAccepted_ ? End::cancelled : End::unavailable);
  });
  QDBusMessage question = QDBusMessage::createMethodCall(
      QLatin1String(portal::kService), QLatin1String(portal::kPath),
      QStringLiteral("org.freedesktop.portal.FileChooser"), QStringLiteral("OpenFile"));
  question.setArguments({parentHandle(), request_.title, options(token)});
  auto* const call = new QDBusPendingCallWatcher(bus_->asyncCall(question, kNoTimeout), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] { accepted(*call); });
}

// Naming the portal instead of no sender would wait for the bus to find it.
bool PortalOpenDialog::listenAt(const QString& path) {
  requestPath_ = path;
  return bus_->connect(QString(), path, QLatin1String(portal::kRequestInterface),
                       QStringLiteral("Response"), this,
                       SLOT(portalResponded(uint, QVariantMap, QDBusMessage)));
}

// An old portal chooses the request's path by itself.
void PortalOpenDialog::accepted(const QDBusPendingCallWatcher& answer) {
  const QDBusPendingReply<QDBusObjectPath> handle = answer;
  if (handle.isError()) {
    requestPath_.clear();
    finish(End::unavailable);
    return;
  }
  isAccepted_ = true;
  if (handle.value().path() != requestPath_ && !listenAt(handle.value().path())) {
    finish(End::unavailable);
    return;
  }
  askForPortalName();
}

// Signals have the sender's own name. A reply has it too, but not every Qt tells it.
void PortalOpenDialog::askForPortalName() {
  QDBusMessage question = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
  question.setArguments({QLatin1String(portal::kService)});
  auto* const call = new QDBusPendingCallWatcher(bus_->asyncCall(question), this);
  connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    const QDBusPendingReply<QString> name = *call;
    if (name.isError()) {
      finish(End::unavailable);
      return;
    }
    portalName_ = name.value();
    if (const auto response = early_.constFind(portalName_); response != early_.cend()) {
      responded(response->code, response->results);
    }
  });
}

QVariantMap PortalOpenDialog::options(const QString& token) const {
  QByteArray folder = QByteArray::fromStdString(request_.directory);
  folder.append('\0');  // as the portal takes a path
  const QList<PortalFilter> filters = filtersFor(request_.fileTypes);
  return {{QStringLiteral("handle_token"), token},
          {QStringLiteral("accept_label"), withPortalKeyLetter(request_.acceptLabel)},
          {QStringLiteral("modal"), true},
          {QStringLiteral("multiple"), request_.allowsMultipleSelection},
          {QStringLiteral("filters"), QVariant::fromValue(filters)},
          {QStringLiteral("current_filter"), QVariant::fromValue(filters.front())},
          {QStringLiteral("current_folder"), folder}};
}

// Without a handle the dialog is not attached to the window; a Wayland compositor would have to be
// asked for one.
QString PortalOpenDialog::parentHandle() const {
  if (request_.window.isNull() || QGuiApplication::platformName() != QLatin1String("xcb")) {
    return {};
  }
  return QStringLiteral("x11:%1").arg(request_.window->window()->winId(), 0, 16);
}

void PortalOpenDialog::portalResponded(uint code, const QVariantMap& results,
                                       const QDBusMessage& signal) {
  if (portalName_.isEmpty()) {
    early_.insert(signal.service(), {.code = code, .results = results});
  } else if (signal.service() == portalName_) {
    responded(code, results);
  }
}

void PortalOpenDialog::responded(uint code, const QVariantMap& results) {
  requestPath_.clear();
  if (code != portal::kGranted) {
    finish(code == portal::kCancelledByUser ? End::cancelled : End::unavailable);
    return;
  }
  std::vector<std::string> paths;
  for (const QString& uri : results.value(QStringLiteral("uris")).toStringList()) {
    if (auto path = pathOfFileUri(uri.toStdString())) {
      paths.push_back(*std::move(path));
    }
  }
  finish(paths.empty() ? End::cancelled : End::chosen, paths);
}

void PortalOpenDialog::finish(End end, const std::vector<std::string>& paths) {
  if (const auto ended = std::exchange(ended_, nullptr)) {
    hide();
    deleteLater();
    ended(end, paths);  // last: it may destroy the window
  }
}

}  // namespace platform
