#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include <QObject>
#include <QPointer>
#include <QString>

#include "platform/desktop/DesktopBuses.h"
#include "platform/desktop/SleepInhibitor.h"

namespace platform {

class SleepInhibition;

/// Keeps the machine awake through D-Bus: by the desktop's portal (org.freedesktop.portal.Inhibit),
/// or by the login manager (org.freedesktop.login1) if there is no portal, or it refuses or does
/// not answer. All holds of the process share one request. It ends with the last hold, and by the
/// nature of the bus with the process. If neither service grants it, one line is logged.
///
/// Threads: main. Real-time: not safe.
class DBusSleepInhibitor : public QObject, public SleepInhibitor {
  Q_OBJECT

 public:
  /// The portal is on the session bus, the login manager on the system bus.
  using Buses = DesktopBuses;

  /// How long the portal may take to answer before the login manager is asked.
  static constexpr std::chrono::milliseconds kPortalPatience{5000};

  /// The buses of the desktop and of the machine.
  [[nodiscard]] static Buses usualBuses();

  explicit DBusSleepInhibitor(Buses buses,
                              std::chrono::milliseconds portalPatience = kPortalPatience);
  ~DBusSleepInhibitor() override;

  [[nodiscard]] std::unique_ptr<Hold> hold(const QString& reason) override;

 private:
  class CountedHold;
  void releaseHold();
  void tellFailure(const QString& reason);

  const Buses buses_;
  const std::chrono::milliseconds portalPatience_;
  std::size_t holds_ = 0;
  QPointer<SleepInhibition> inhibition_;  // while there is a hold
  bool hasToldFailure_ = false;
};

}  // namespace platform
