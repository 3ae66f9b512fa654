#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// moc must see the whole types of a slot's parameters.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDialog>
#include <QHash>
#include <QVariantMap>

#include "platform/desktop/DesktopBuses.h"
#include "platform/desktop/FileDialogs.h"

class QDBusPendingCallWatcher;

namespace platform {

/// The desktop's own dialog for opening files, through its portal
/// (org.freedesktop.portal.FileChooser). Itself it is never seen: it blocks the window while the
/// portal's dialog is on the screen. It deletes itself at the end; the portal's dialog closes if
/// this one, or its window, goes first.
///
/// Paths arrive byte for byte. What the portal offers that is no local file is left out. Only the
/// portal that accepted the request is listened to: any program on the bus can send its signal.
///
/// Threads: main. Real-time: not safe.
class PortalOpenDialog : public QDialog {
  Q_OBJECT

 public:
  enum class End {
    chosen,
    cancelled,
    unavailable,  ///< the desktop has no such dialog, or it failed
  };
  using Ended = std::function<void(End end, const std::vector<std::string>& paths)>;

  /// How long the portal may take to accept the request.
  static constexpr std::chrono::milliseconds kPatience{3000};

  /// `directory` of the request may not be empty. `ended` is called once, from the main loop, but
  /// not if the dialog is destroyed first.
  PortalOpenDialog(const OpenPanelRequest& request, Ended ended);
  ~PortalOpenDialog() override;

  /// Call once.
  void begin(const DesktopBuses::Bus& session, std::chrono::milliseconds patience = kPatience);

 private Q_SLOTS:
  // The portal's signal.
  void portalResponded(uint code, const QVariantMap& results, const QDBusMessage& signal);

 private:  // NOLINT(readability-redundant-access-specifiers): it ends the slots
  void ask(const QDBusConnection& bus);
  [[nodiscard]] bool listenAt(const QString& path);
  void accepted(const QDBusPendingCallWatcher& answer);
  void askForPortalName();
  void responded(uint code, const QVariantMap& results);
  [[nodiscard]] QVariantMap options(const QString& token) const;
  [[nodiscard]] QString parentHandle() const;
  void finish(End end, const std::vector<std::string>& paths = {});

  const OpenPanelRequest request_;
  Ended ended_;  // null once it has been called
  std::optional<QDBusConnection> bus_;
  QString requestPath_;  // while the portal may have a dialog open
  bool isAccepted_ = false;
  QString
      portalName_;  // its own one on the bus, once it has accepted the request and this is known
  struct Response {
    uint code = 0;
    QVariantMap results;
  };
  QHash<QString, Response> early_;  // by sender, until the portal's name is known
};

}  // namespace platform
