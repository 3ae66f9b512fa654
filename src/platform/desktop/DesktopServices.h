#pragma once

#include <QUrl>

namespace platform {

/// Opens pages and files with the desktop's own programs. Threads: main. Real-time: not safe.
class DesktopServices {
 public:
  virtual ~DesktopServices() = default;

  /// False when the desktop knows no program for it.
  virtual bool open(const QUrl& address) = 0;
};

/// The installed services; at first the real desktop's.
DesktopServices& desktopServices();

/// Puts others in for as long as the installation lives. Threads: main.
class DesktopServicesInstallation {
 public:
  explicit DesktopServicesInstallation(DesktopServices& services);
  ~DesktopServicesInstallation();
  DesktopServicesInstallation(const DesktopServicesInstallation&) = delete;
  DesktopServicesInstallation& operator=(const DesktopServicesInstallation&) = delete;

 private:
  DesktopServices* previous_;
};

}  // namespace platform
