#pragma once

#include <cstdint>
#include <map>

#include "recovery/RecordingKeeper.h"

namespace support {

/// A keeper that only remembers what it keeps. Install it with platform::Installed.
///
/// Threads: main.
class RememberingKeeper : public RecordingKeeper {
 public:
  [[nodiscard]] bool isAvailable() const override { return available; }
  void keep(std::uint64_t document, const Recording& recording) override {
    kept[document] = recording;
  }
  void letGo(std::uint64_t document) override { kept.erase(document); }

  bool available = true;
  std::map<std::uint64_t, Recording> kept;
};

}  // namespace support
