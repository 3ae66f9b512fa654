#pragma once

#include <algorithm>
#include <cstdint>

/// The smallest and the largest magnitude of the samples examined. Initially inverted (full scale
/// and silence), so that the first sample up to full scale sets both.
struct MagnitudeExtent {
  float smallest = 1.0F;
  float largest = 0.0F;

  void include(const MagnitudeExtent& other) {
    smallest = std::min(smallest, other.smallest);
    largest = std::max(largest, other.largest);
  }

  /// The value of a summary's element: 0 to 1 for audio up to full scale.
  [[nodiscard]] float spread() const { return largest - smallest; }
};

/// Examines every second float below `indexLimit`: indexes 0, 2, 4, …
///
/// For a block of n interleaved stereo frames a summary passes all 2n floats and n as the limit,
/// which selects the left channel of the first half of the frames. Both summaries deliberately
/// sample one float in four this way. NaN samples count as 0.
///
/// Threads: any. Real-time: safe.
[[nodiscard]] MagnitudeExtent leftMagnitudeExtent(const float* samples, std::uint64_t indexLimit);
