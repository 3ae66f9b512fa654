#pragma once

#include <cstdint>

#include "platform/base/SerialQueue.h"

/// The two positions of a document, in frames: the marker, where playback reads, and the recording
/// position, where recording writes. Each is accessed through its own serial queue.
///
/// Threads: any. Real-time: not safe.
class OVFramePositions {
 public:
  [[nodiscard]] std::uint64_t playback() const;
  void setPlayback(std::uint64_t frames);
  [[nodiscard]] std::uint64_t recording() const;
  void setRecording(std::uint64_t frames);

 private:
  mutable platform::SerialQueue playbackPosQueue_{"playback queue"};
  mutable platform::SerialQueue recordingPosQueue_{"recording queue"};

  // Guarded by their queues.
  std::uint64_t _playbackPosition = 0;
  std::uint64_t _recordingPosition = 0;
};
