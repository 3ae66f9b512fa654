#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/sound/AudioQueue.h"

namespace platform {

/// The buffers that one queue owns, and whether each is enqueued.
///
/// Threads: one at a time, under the queue's lock. Real-time: not safe.
class QueueBuffers {
 public:
  /// Maximum buffers of one queue; also the capacity of the rings to and from the real-time thread.
  static constexpr std::size_t kMaxBuffers = 64;

  /// kInvalidParameterStatus for a size that is 0 or not whole frames, or for too many buffers.
  [[nodiscard]] Result<AudioQueueBuffer*, AudioStatus> allocate(std::uint32_t byteCapacity);

  /// Marks a buffer as enqueued; kInvalidParameterStatus for a buffer of another queue, one already
  /// enqueued, or one whose byte size exceeds its capacity.
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
