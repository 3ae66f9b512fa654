#pragma once

#include <algorithm>
#include <cstdint>

/// Index of the element at a fraction of `elementCount` elements, at least 1. The fraction is
/// clamped to 0..1 (NaN counts as 0), the index to the last element.
[[nodiscard]] inline std::uint64_t elementIndex(double fraction, std::uint64_t elementCount) {
  const double clamped = fraction > 0.0 ? std::min(fraction, 1.0) : 0.0;
  const auto index = static_cast<std::uint64_t>(static_cast<double>(elementCount) * clamped);
  return std::min(index, elementCount - 1);
}
