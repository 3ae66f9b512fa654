#pragma once

#include <memory>
#include <string>

#include <QDBusConnection>
#include <QString>

#include "support/Eventually.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace support {

/// A message bus of a test's own, with as many connections as it likes, each under a name.
///
/// Threads: main; connect(): any.
class PrivateBus {
 public:
  /// Returns once the bus can be connected to; isRunning() is false if that fails.
  PrivateBus() {
    const std::string socket = folder_.file("bus");
    std::string error;
    daemon_ = ChildProcess::start(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=unix:path=" + socket},
        cleanEnvironment(), error);
    address_ = QStringLiteral("unix:path=") + QString::fromStdString(socket);
    isRunning_ = daemon_ != nullptr && eventually([this] {
                   const bool connected = connect("probe").isConnected();
                   disconnect("probe");  // otherwise Qt would cache a failure
                   return connected;
                 });
  }

  [[nodiscard]] bool isRunning() const { return isRunning_; }

  [[nodiscard]] const QString& address() const { return address_; }

  /// The connection of this name, made at the first call.
  [[nodiscard]] QDBusConnection connect(const char* name) const {
    return QDBusConnection::connectToBus(address_, QString::fromLatin1(name));
  }
  /// The program that passes on the messages.
  [[nodiscard]] ChildProcess& daemon() const { return *daemon_; }
  static void disconnect(const char* name) {
    QDBusConnection::disconnectFromBus(QString::fromLatin1(name));
  }

 private:
  TemporaryFolder folder_;
  std::unique_ptr<ChildProcess> daemon_;
  QString address_;
  bool isRunning_ = false;
};

}  // namespace support
