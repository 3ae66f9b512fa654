#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/base/Mutex.h"

/// A copy of the last recorded chunk for the spectrum, which reads it in quarters, since a chunk
/// lasts for about three of its ticks. Each chunk feeds four successive calls of nextQuarter(),
/// then repeats from its start until the next chunk.
///
/// Threads: capture() is the buffer's writer's, nextQuarter() the main thread's, fft_data() any.
/// Real-time: not safe.
class OVRecordedChunk {
 public:
  /// Replaces the copy by `size` bytes; the next quarter is the first of them.
  void capture(const void* data, std::uint32_t size);

  /// Copies out the next quarter (size / 4 bytes, rounded down) and moves on by as much. The 1 to 3
  /// bytes that rounding may leave at the end follow in pieces that are no larger. Empty without a
  /// chunk, and with one of fewer than 4 bytes. Valid until the next call.
  [[nodiscard]] std::span<const std::byte> nextQuarter();

  /// The whole copy.
  [[nodiscard]] std::vector<std::byte> fft_data() const;

 private:
  mutable platform::Mutex mutex_;
  std::vector<std::byte> fft_data_ GUARDED_BY(mutex_);
  // Offset of the next quarter, always inside fft_data_ or 0.
  std::size_t fft_data_p_ GUARDED_BY(mutex_) = 0;
  std::uint32_t fft_data_p_size_ GUARDED_BY(mutex_) = 0;

  // Main thread only.
  std::vector<std::byte> quarter_;
};
