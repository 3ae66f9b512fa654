#pragma once

#include <chrono>
#include <future>
#include <memory>

#include "support/fakes/MemoryTestBuffer.h"

/// Stops the thread that makes the first read of a buffer in the midst of it, until it is opened.
class ReadGate {
 public:
  static constexpr std::chrono::seconds kDeadline{60};

  explicit ReadGate(MemoryTestBuffer& audio) {
    audio.beforeRead = [this, first = true](std::uint64_t) mutable {
      if (first) {
        first = false;
        reached_.set_value();
        opened_.get_future().wait_for(kDeadline);
      }
    };
  }
  ReadGate(const ReadGate&) = delete;
  ReadGate& operator=(const ReadGate&) = delete;

  /// True when a reader stands at the gate; false after the deadline.
  [[nodiscard]] bool waitUntilReached() {
    return reached_.get_future().wait_for(kDeadline) == std::future_status::ready;
  }
  void open() { opened_.set_value(); }

 private:
  std::promise<void> reached_;
  std::promise<void> opened_;
};
