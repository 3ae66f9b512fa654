#pragma once

#include <string>
#include <vector>

#include "platform/views/ViewAccessibility.h"

namespace support {

/// Records what would be read out, while it lives.
///
/// Threads: main.
class RecordingAnnouncer final : public platform::Announcer {
 public:
  void announce(QWidget* view, const QString& text) override {
    texts.push_back(text.toStdString());
    last = view;
  }

  std::vector<std::string> texts;
  QWidget* last = nullptr;  ///< the view of the last text

 private:
  platform::Installed<platform::Announcer>::Scope installation_{*this};
};

}  // namespace support
