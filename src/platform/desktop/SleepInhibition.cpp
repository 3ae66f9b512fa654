#include "platform/desktop/SleepInhibition.h"

#include <limits>
#include <utility>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>
#include <QTimer>

#include "platform/base/GlobalQueue.h"
#include "platform/desktop/DesktopPortal.h"
#include "platform/mainloop/MainQueue.h"

namespace platform {
namespace {

constexpr uint kSuspend = 4;  // of the portal's flags
constexpr int kNoTimeout = std::numeric_limits<int>::max();

}  // namespace

SleepInhibition::SleepInhibition(DesktopBuses buses, QString reason, QObject* parent)
    : QObject(parent), buses_(std::move(buses)), reason_(std::move(reason)) {}

void SleepInhibition::begin(std::chrono::milliseconds portalPatience, Failed failed) {
  failed_ = std::move(failed);
  auto* const timer = new QTimer(this);
  timer->setSingleShot(true);
  connect(timer, &QTimer::timeout, this, [this] {
    if (!releasePortal_) {
      askLoginManager();
    }
  });
  timer->start(portalPatience);
  connectTo(buses_.session, [this](const QDBusConnection& bus) {
    if (!bus.isConnected()) {
      askLoginManager();
    } else if (!isReleased_) {
      askPortal(bus);
    }
  });
}

void SleepInhibition::release() {
  isReleased_ = true;
  if (releasePortal_) {
    std::exchange(releasePortal_, nullptr)();
  }
  descriptor_ = QDBusUnixFileDescriptor();
  deleteWhenDone();
}

void SleepInhibition::deleteWhenDone() {
  if (isReleased_ && pending_ == 0) {
    deleteLater();
  }
}

void SleepInhibition::connectTo(const DesktopBuses::Bus& bus,
                                std::function<void(const QDBusConnection&)> connected) {
  ++pending_;
  globalQueue().async([bus, connected = std::move(connected), self = QPointer(this)] {
    mainQueue().async([connected, self, connection = bus()] {
      if (self) {
        --self->pending_;
        connected(connection);
        self->deleteWhenDone();
      }
    });
  });
}

void SleepInhibition::await(const QDBusPendingCall& call, Answered answered) {
  ++pending_;
  auto* const watcher = new QDBusPendingCallWatcher(call, this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this,
                   [this, watcher, answered = std::move(answered)] {
                     --pending_;
                     answered(*watcher);
                     watcher->deleteLater();
                     deleteWhenDone();
                   });
}

// Portal ----------------------------------------------------------------------------------------

// An answer is waited for without a limit: one that came after a limit could not be released.
void SleepInhibition::askPortal(const QDBusConnection& bus) {
  QDBusConnection connection = bus;
  const QString token = portal::nextToken();
  // Before the request is made, so that no response is missed. Without a service's name, which
  // would have to be looked up first; the path is this request's alone.
  connection.connect(QString(), portal::requestPath(bus, token),
                     QLatin1String(portal::kRequestInterface), QStringLiteral("Response"), this,
                     SLOT(portalResponded(uint, QVariantMap)));
  QDBusMessage request = QDBusMessage::createMethodCall(
      QLatin1String(portal::kService), QLatin1String(portal::kPath),
      QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
  const QVariantMap options{{QStringLiteral("handle_token"), token},
                            {QStringLiteral("reason"), reason_}};
  request.setArguments({QString(), kSuspend, options});
  await(connection.asyncCall(request, kNoTimeout),
        [this, bus](const QDBusPendingCallWatcher& answer) { portalAnswered(bus, answer); });
}

// Both may hold it: a portal that answers late is as good as the login manager.
void SleepInhibition::portalAnswered(const QDBusConnection& bus,
                                     const QDBusPendingCallWatcher& answer) {
  const QDBusPendingReply<QDBusObjectPath> handle = answer;
  if (handle.isError()) {
    askLoginManager();
    return;
  }
  releasePortal_ = [bus, path = handle.value().path()] { portal::closeRequest(bus, path); };
  if (isReleased_) {
    std::exchange(releasePortal_, nullptr)();
  }
}

// The portal gives the handle at once and says here whether the desktop agreed.
void SleepInhibition::portalResponded(uint response, const QVariantMap&) {
  if (response != portal::kGranted) {
    releasePortal_ = nullptr;
    askLoginManager();
  }
}

// Login manager ---------------------------------------------------------------------------------

void SleepInhibition::askLoginManager() {
  if (isReleased_ || std::exchange(isLoginManagerAsked_, true)) {
    return;
  }
  connectTo(buses_.system, [this](const QDBusConnection& bus) {
    if (isReleased_) {
      return;
    }
    if (!bus.isConnected()) {
      failed_(bus.lastError().message());
      return;
    }
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    request.setArguments(
        {QStringLiteral("sleep"), QStringLiteral("Orvo"), reason_, QStringLiteral("block")});
    await(bus.asyncCall(request, kNoTimeout), [this](const QDBusPendingCallWatcher& answer) {
      const QDBusPendingReply<QDBusUnixFileDescriptor> descriptor = answer;
      if (isReleased_) {
        return;  // closes it
      }
      if (descriptor.isError()) {
        failed_(descriptor.error().message());
      } else {
        descriptor_ = descriptor.value();
      }
    });
  });
}

}  // namespace platform
