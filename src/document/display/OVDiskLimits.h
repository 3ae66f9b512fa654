#pragma once

#include <array>
#include <cstddef>
#include <optional>

/// Decides when the time for which a disk still has space is to be told during a recording: once as
/// it falls to each of a few limits, and again after it has clearly risen above that limit.
///
/// Threads: one. Real-time: not safe.
class OVDiskLimits {
 public:
  /// In minutes.
  static constexpr std::array kLimits{30, 10, 5, 1};

  /// The lowest limit that the time has fallen to and that has not been told since; nothing if
  /// there is none. Higher ones count as told.
  [[nodiscard]] std::optional<int> reached(double secondsLeft);

  /// Whether the lowest limit has been told and still holds.
  [[nodiscard]] bool isLowest() const { return isTold_.back(); }

 private:
  std::array<bool, kLimits.size()> isTold_{};
};
