#pragma once

#include <string>
#include <vector>

#include "platform/desktop/DesktopServices.h"

namespace support {

/// A desktop that records what it was asked to open. Threads: main.
class RecordingDesktop : public platform::DesktopServices {
 public:
  bool open(const QUrl& address) override {
    opened.push_back(address.toString().toStdString());
    return knowsPrograms;
  }

  std::vector<std::string> opened;
  bool knowsPrograms = true;

 private:
  platform::Installed<platform::DesktopServices>::Scope installation_{*this};
};

}  // namespace support
