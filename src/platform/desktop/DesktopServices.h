#pragma once

#include <memory>

#include <QUrl>

#include "platform/base/Installed.h"

namespace platform {

/// Opens pages and files with the desktop's programs. With none installed, an address is only
/// written to standard error.
///
/// Threads: main. Real-time: not safe.
class DesktopServices {
 public:
  virtual ~DesktopServices() = default;
  static std::shared_ptr<DesktopServices> whenNoneIsInstalled();

  /// False when the desktop knows no program for it.
  virtual bool open(const QUrl& address) = 0;
};

inline std::shared_ptr<DesktopServices> desktopServices() {
  return Installed<DesktopServices>::get();
}

}  // namespace platform
