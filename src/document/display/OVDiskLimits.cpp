#include "document/display/OVDiskLimits.h"

#include <algorithm>

namespace {

constexpr double kMinute = 60.0;

// A limit is told again only after the time has been this far above it, since the space varies a
// little all the time: other programs write, too.
double clearlyAbove(double limit) {
  return limit + std::max(kMinute, 0.1 * limit);
}

}  // namespace

std::optional<int> OVDiskLimits::reached(double secondsLeft) {
  std::optional<int> lowest;
  for (std::size_t i = 0; i < kLimits.size(); ++i) {
    const double limit = kLimits[i] * kMinute;
    if (secondsLeft >= clearlyAbove(limit)) {
      isTold_[i] = false;
    } else if (secondsLeft <= limit && !isTold_[i]) {
      isTold_[i] = true;
      lowest = kLimits[i];
    }
  }
  return lowest;
}
