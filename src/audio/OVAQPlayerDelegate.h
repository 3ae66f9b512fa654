#pragma once

#include <cstdint>

class OVAQPlayer;

/// A player's reports.
class OVAQPlayerDelegate {
 public:
  virtual ~OVAQPlayerDelegate() = default;

  /// After every buffer enqueued: the frame after its last, ahead of what is heard by the buffers
  /// still queued.
  ///
  /// Threads: the audio queue's, or the caller's while priming. Real-time: not safe.
  virtual void playerAdvancedToFrame(std::uint64_t frame) = 0;

  /// The queue has stopped running by itself: everything was heard, or the device failed.
  ///
  /// Threads: main, asynchronously. Real-time: not safe.
  virtual void playerStoppedPlayback(OVAQPlayer* player) = 0;
};
