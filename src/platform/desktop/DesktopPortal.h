#pragma once

#include <QString>

class QDBusConnection;

/// The desktop's portal on the session bus (org.freedesktop.portal.Desktop) and the requests made
/// to it. A request's answer is the signal "Response" of an object whose path the caller knows
/// before it calls, and connects to first, so that no answer is missed.
///
/// Threads: main. Real-time: not safe.
namespace platform::portal {

inline constexpr auto kService = "org.freedesktop.portal.Desktop";
inline constexpr auto kPath = "/org/freedesktop/portal/desktop";
inline constexpr auto kRequestInterface = "org.freedesktop.portal.Request";

/// The codes of a response.
inline constexpr unsigned kGranted = 0;
inline constexpr unsigned kCancelledByUser = 1;

/// A token for a request, unique in the process: a portal refuses one that is in use.
[[nodiscard]] QString nextToken();

/// Where the portal puts the request of a caller.
[[nodiscard]] QString requestPath(const QDBusConnection& bus, const QString& token);

/// Ends a request whose answer is no longer wanted.
void closeRequest(const QDBusConnection& bus, const QString& path);

}  // namespace platform::portal
