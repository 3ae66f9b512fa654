#pragma once

#include <QDesktopServices>

#include "platform/desktop/DesktopServices.h"

namespace platform {

/// The real desktop's services, through Qt. Threads: main. Real-time: not safe.
class QtDesktopServices : public DesktopServices {
 public:
  bool open(const QUrl& address) override { return QDesktopServices::openUrl(address); }
};

}  // namespace platform
