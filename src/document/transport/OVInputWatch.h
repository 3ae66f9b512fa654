#pragma once

#include <cstdint>
#include <memory>

#include "document/transport/OVInputState.h"

class OVTransport;

/// Keeps what a person at the microphone must know of the input and of what has come in. A look
/// copies nothing that has not changed, so it may come at every tick of the displays.
///
/// Threads: main. Real-time: not safe.
class OVInputWatch {
 public:
  /// It outlives this.
  explicit OVInputWatch(const OVTransport& transport) : transport_(transport) {}

  /// Looks at the input. True if the state is another one than after the last look.
  bool look();
  [[nodiscard]] const OVInputState& state() const { return state_; }

 private:
  [[nodiscard]] bool lookAtSource();
  [[nodiscard]] bool lookAtRecording();
  [[nodiscard]] bool lookAtLosses();

  const OVTransport& transport_;
  OVInputState state_;
  bool hasLooked_ = false;
  std::weak_ptr<platform::AudioQueues> queues_;  // whose source is known
  std::uint64_t sourceRevision_ = 0;
  std::uint64_t recording_ = 0;  // whose losses are known
};
