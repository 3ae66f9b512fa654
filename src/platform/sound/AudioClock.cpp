#include "platform/sound/AudioClock.h"

#include <ctime>

namespace platform {

AudioClock::TimePoint SteadyAudioClock::nowWithSleep() const noexcept {
#if defined(__linux__)
  std::timespec time{};
  if (clock_gettime(CLOCK_BOOTTIME, &time) == 0) {
    return TimePoint(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
  }
#endif
  return now();
}

}  // namespace platform
