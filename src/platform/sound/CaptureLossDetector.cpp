#include "platform/sound/CaptureLossDetector.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/base/AudioTypes.h"

namespace platform {

namespace {
constexpr auto kSettling = std::chrono::milliseconds(500);
constexpr auto kWindow = std::chrono::seconds(2);
constexpr auto kStall = std::chrono::milliseconds(500);
constexpr auto kShortWindow = std::chrono::seconds(1);
// A burst after a stall arrives in many callbacks; a window must hold enough to see its end.
constexpr std::uint32_t kWindowCalls = 16;
// A pause before that many callbacks belongs to the start of the stream.
constexpr std::uint32_t kStartCalls = 4;
}  // namespace

std::uint64_t CaptureLossDetector::captured(std::uint32_t frames,
                                            AudioClock::TimePoint now) noexcept {
  const bool isStall = now - std::exchange(lastCall_, now) >= kStall;
  if (!begun_ || (isStall && !isSettled_ && windowCalls_ < kStartCalls)) {
    begin(now);
    return 0;
  }
  captured_ += frames;
  const double seconds = std::chrono::duration<double>(now - origin_).count();
  const std::int64_t lag = static_cast<std::int64_t>(seconds * kWorkingRate) - captured_;
  if (isStall) {
    isSettled_ = true;  // with the lag before it
    isShort_ = true;
    beginWindow(now);
  } else if (settle(lag, now)) {
    return 0;
  }
  windowLag_ = std::min(windowLag_, lag);
  ++windowCalls_;
  if (now - windowStart_ < (isShort_ ? kShortWindow : kWindow) || windowCalls_ < kWindowCalls) {
    return 0;
  }
  const std::uint64_t lost = closeWindow();
  isShort_ = false;
  beginWindow(now);
  return lost;
}

void CaptureLossDetector::begin(AudioClock::TimePoint now) noexcept {
  reset();
  begun_ = true;
  origin_ = now;
  lastCall_ = now;
  beginWindow(now);
}

bool CaptureLossDetector::settle(std::int64_t lag, AudioClock::TimePoint now) noexcept {
  if (isSettled_) {
    return false;
  }
  ++windowCalls_;
  baselineLag_ = std::max(baselineLag_, lag);
  if (now - origin_ >= kSettling) {
    isSettled_ = true;
    beginWindow(now);
  }
  return true;
}

void CaptureLossDetector::beginWindow(AudioClock::TimePoint now) noexcept {
  windowStart_ = now;
  windowLag_ = kNone;
  windowCalls_ = 0;
}

std::uint64_t CaptureLossDetector::closeWindow() noexcept {
  const std::int64_t raised = windowLag_ - std::exchange(baselineLag_, windowLag_);
  return raised < kThresholdFrames ? 0 : static_cast<std::uint64_t>(raised);
}

}  // namespace platform
