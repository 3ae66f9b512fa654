#pragma once

#include <chrono>
#include <functional>

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include "platform/desktop/DesktopBuses.h"

class QDBusPendingCall;
class QDBusPendingCallWatcher;

namespace platform {

/// One request to keep the machine awake, from begin() to release(). Every call is asynchronous: an
/// answer that arrives after release(), or after the login manager was asked instead, is released
/// at once. It deletes itself when it is released and has all answers.
///
/// Threads: main. Real-time: not safe.
class SleepInhibition : public QObject {
  Q_OBJECT

 public:
  using Failed = std::function<void(const QString& reason)>;

  SleepInhibition(DesktopBuses buses, QString reason, QObject* parent);

  /// Call once. `failed` is called if the machine cannot be kept awake.
  void begin(std::chrono::milliseconds portalPatience, Failed failed);
  /// Call once, at any time after begin().
  void release();

 private Q_SLOTS:
  // The portal's signal.
  void portalResponded(uint response, const QVariantMap& results);

 private:  // NOLINT(readability-redundant-access-specifiers): it ends the slots
  using Answered = std::function<void(const QDBusPendingCallWatcher& answer)>;

  void connectTo(const DesktopBuses::Bus& bus,
                 std::function<void(const QDBusConnection&)> connected);
  void await(const QDBusPendingCall& call, Answered answered);
  void askPortal(const QDBusConnection& bus);
  void portalAnswered(const QDBusConnection& bus, const QDBusPendingCallWatcher& answer);
  void askLoginManager();
  void deleteWhenDone();

  const DesktopBuses buses_;
  const QString reason_;
  Failed failed_;
  std::function<void()> releasePortal_;  // while the portal holds the machine awake
  QDBusUnixFileDescriptor
      descriptor_;   // the login manager's: the machine is awake while it is open
  int pending_ = 0;  // answers that are still to come
  bool isLoginManagerAsked_ = false;
  bool isReleased_ = false;
};

}  // namespace platform
