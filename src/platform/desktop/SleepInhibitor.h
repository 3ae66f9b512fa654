#pragma once

#include <memory>

#include <QString>

#include "platform/base/Installed.h"

namespace platform {

/// Keeps the machine from suspending by itself or on a user's command. With none installed, a
/// request is written to standard error and has no effect.
///
/// Threads: main. Real-time: not safe.
class SleepInhibitor {
 public:
  /// Keeps the machine awake while it exists. Holds may overlap.
  class Hold {
   public:
    virtual ~Hold() = default;
  };

  virtual ~SleepInhibitor() = default;
  static std::shared_ptr<SleepInhibitor> whenNoneIsInstalled();

  /// Never null, and never waits: the desktop may grant or refuse it later. `reason` is a short
  /// localised text that the desktop may show.
  [[nodiscard]] virtual std::unique_ptr<Hold> hold(const QString& reason) = 0;
};

inline std::shared_ptr<SleepInhibitor> sleepInhibitor() {
  return Installed<SleepInhibitor>::get();
}

}  // namespace platform
