#include "platform/sound/CaptureLossDetector.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/base/AudioTypes.h"

namespace platform {

namespace {
constexpr auto kWindow = std::chrono::seconds(2);
constexpr auto kStall = std::chrono::milliseconds(500);
constexpr auto kWindowAfterStall = std::chrono::seconds(1);
// A burst after a stall arrives in many callbacks; a window must hold enough to see its end.
constexpr std::uint32_t kWindowCalls = 16;
}  // namespace

std::uint64_t CaptureLossDetector::captured(std::uint32_t frames,
                                            AudioClock::TimePoint now) noexcept {
  if (!begun_) {
    begun_ = true;
    origin_ = now;
    windowStart_ = now;
    lastCall_ = now;
    return 0;
  }
  if (now - std::exchange(lastCall_, now) >= kStall) {
    windowStart_ = now;
    windowLag_ = kNone;
    windowCalls_ = 0;
    isAfterStall_ = true;
  }
  captured_ += frames;
  const double seconds = std::chrono::duration<double>(now - origin_).count();
  const auto expected = static_cast<std::int64_t>(seconds * kWorkingRate);
  windowLag_ = std::min(windowLag_, expected - captured_);
  ++windowCalls_;
  const auto length = isAfterStall_ ? kWindowAfterStall : kWindow;
  if (now - windowStart_ < length || windowCalls_ < kWindowCalls) {
    return 0;
  }
  windowStart_ = now;
  isAfterStall_ = false;
  return closeWindow();
}

std::uint64_t CaptureLossDetector::closeWindow() noexcept {
  const std::int64_t lag = windowLag_;
  const std::int64_t before = baselineLag_;
  windowLag_ = kNone;
  windowCalls_ = 0;
  if (windows_++ == 0) {
    return 0;
  }
  baselineLag_ = lag;
  if (before == kNone || lag - before < kThresholdFrames) {
    return 0;
  }
  return static_cast<std::uint64_t>(lag - before);
}

}  // namespace platform
