#pragma once

#include <cstdint>

class OVAQPlayer;

/// Notified of a player's progress and end.
class OVAQPlayerDelegate {
 public:
  virtual ~OVAQPlayerDelegate() = default;

  /// Called after every buffer enqueued with the frame after its last one. That is ahead of the
  /// audio heard by the buffers still queued.
  ///
  /// Threads: the audio queue's, or the caller's while priming. Real-time: not safe.
  virtual void playerAdvancedToFrame(std::uint64_t frame) = 0;

  /// The queue has stopped without stop(): everything was heard, or the device failed.
  ///
  /// Threads: main, asynchronously. Real-time: not safe.
  virtual void playerStoppedPlayback(OVAQPlayer* player) = 0;
};
