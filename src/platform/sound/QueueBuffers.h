#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/sound/AudioQueue.h"

namespace platform {

/// The buffers that one queue owns, and which of them are enqueued.
///
/// Threads: one at a time, under the queue's lock. Real-time: not safe.
class QueueBuffers {
 public:
  /// Most buffers of one queue; the rings to and from the real-time thread have this much room.
  static constexpr std::size_t kMaxBuffers = 64;

  /// kInvalidParameterStatus for a size that is 0 or not whole frames, or for too many.
  [[nodiscard]] Result<AudioQueueBuffer*, AudioStatus> allocate(std::uint32_t byteCapacity);

  /// Marks a buffer as enqueued; kInvalidParameterStatus for a foreign one, an enqueued one, or
  /// one that claims more bytes than it has.
  [[nodiscard]] AudioStatus markEnqueued(const AudioQueueBuffer* buffer);
  void markReturned(const AudioQueueBuffer* buffer);

  /// Frames of the smallest buffer; 0 without any.
  [[nodiscard]] std::uint32_t smallestFrames() const;

  void clear() { buffers_.clear(); }

 private:
  struct Owned {
    AudioQueueBuffer buffer;
    std::vector<float> samples;
    bool enqueued = false;
  };

  [[nodiscard]] Owned* find(const AudioQueueBuffer* buffer);

  std::vector<std::unique_ptr<Owned>> buffers_;
};

}  // namespace platform
