#include "platform/desktop/DesktopServices.h"

#include <cstdio>

namespace platform {
namespace {

class StandardErrorDesktop : public DesktopServices {
 public:
  bool open(const QUrl& address) override {
    std::fprintf(stderr, "no desktop opens %s\n", qUtf8Printable(address.toString()));
    return false;
  }
};

}  // namespace

std::shared_ptr<DesktopServices> DesktopServices::whenNoneIsInstalled() {
  return std::make_shared<StandardErrorDesktop>();
}

}  // namespace platform
