#pragma once

#include <functional>

class QDBusConnection;

namespace platform {

/// How to connect to the two buses of D-Bus. Each is called on a background thread, since
/// connecting waits for the bus, and may return a connection that is not connected.
///
/// Threads: any. Real-time: not safe.
struct DesktopBuses {
  using Bus = std::function<QDBusConnection()>;

  Bus session;  ///< of the user's desktop
  Bus system;   ///< of the machine
};

}  // namespace platform
