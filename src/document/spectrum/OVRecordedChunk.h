#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/base/Mutex.h"

/// A copy of the last recorded chunk for the spectrum, which reads it in quarters, since a chunk
/// lasts about three ticks of its timer. Four successive calls of nextQuarter() return the four
/// quarters; further calls repeat them until the next chunk.
///
/// Threads: the buffer's writer for capture(), main for nextQuarter(), any for fft_data().
/// Real-time: not safe.
class OVRecordedChunk {
 public:
  /// Replaces the copy with `size` bytes; the next quarter is their first.
  void capture(const void* data, std::uint32_t size);

  /// Copies out the next quarter (size / 4 bytes, rounded down) and advances past it. The 1 to 3
  /// bytes that rounding may leave at the end follow in pieces of at most that size. Empty without
  /// a chunk or with one of fewer than 4 bytes. Valid until the next call.
  [[nodiscard]] std::span<const std::byte> nextQuarter();

  /// The whole copy.
  [[nodiscard]] std::vector<std::byte> fft_data() const;

 private:
  mutable platform::Mutex mutex_;
  std::vector<std::byte> fft_data_ GUARDED_BY(mutex_);
  // Offset of the next quarter, always within fft_data_ or 0.
  std::size_t fft_data_p_ GUARDED_BY(mutex_) = 0;
  std::uint32_t fft_data_p_size_ GUARDED_BY(mutex_) = 0;

  // Main thread only.
  std::vector<std::byte> quarter_;
};
