#include "platform/desktop/DesktopServices.h"

#include <utility>

#include <QDesktopServices>

namespace platform {
namespace {

class QtDesktopServices : public DesktopServices {
 public:
  bool open(const QUrl& address) override { return QDesktopServices::openUrl(address); }
};

DesktopServices*& installed() {
  static QtDesktopServices real;
  static DesktopServices* services = &real;
  return services;
}

}  // namespace

DesktopServices& desktopServices() {
  return *installed();
}

DesktopServicesInstallation::DesktopServicesInstallation(DesktopServices& services)
    : previous_(std::exchange(installed(), &services)) {}

DesktopServicesInstallation::~DesktopServicesInstallation() {
  installed() = previous_;
}

}  // namespace platform
