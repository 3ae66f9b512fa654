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
// The lag of a device at rest varies less, so much of a burst may not be noticed as one.
constexpr std::int64_t kRestingFrames = CaptureLossDetector::kThresholdFrames / 2;
}  // namespace

CaptureLossDetector::Loss CaptureLossDetector::captured(std::uint32_t frames,
                                                        AudioClock::TimePoint now) noexcept {
  const bool isStall = now - std::exchange(lastCall_, now) >= kStall;
  if (!begun_ || (isStall && !isSettled_ && windowCalls_ < kStartCalls)) {
    begin(now);
    return {};
  }
  captured_ += frames;
  const double seconds = std::chrono::duration<double>(now - origin_).count();
  const std::int64_t lag = static_cast<std::int64_t>(seconds * kWorkingRate) - captured_;
  if (isStall) {
    isSettled_ = true;  // with the lag before it
    isShort_ = true;
    beginWindow(now);
  } else if (settle(lag, now)) {
    return {};
  }
  noteLag(lag);
  if (now - windowStart_ < (isShort_ ? kShortWindow : kWindow) || windowCalls_ < kWindowCalls) {
    return {};
  }
  const std::int64_t since = captured_ - frames - restingSince_ - kRestingFrames;
  const Loss loss{.frames = closeWindow(),
                  .capturedSince = static_cast<std::uint64_t>(std::max<std::int64_t>(since, 0))};
  isShort_ = false;
  beginWindow(now);
  return loss;
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
  restingLag_ = kNone;
  windowCalls_ = 0;
}

void CaptureLossDetector::noteLag(std::int64_t lag) noexcept {
  windowLag_ = std::min(windowLag_, lag);
  ++windowCalls_;
  if (restingLag_ == kNone || lag < restingLag_ - kRestingFrames) {
    restingLag_ = lag;
    restingSince_ = captured_;
  }
}

std::uint64_t CaptureLossDetector::closeWindow() noexcept {
  const std::int64_t raised = windowLag_ - std::exchange(baselineLag_, windowLag_);
  return raised < kThresholdFrames ? 0 : static_cast<std::uint64_t>(raised);
}

}  // namespace platform
