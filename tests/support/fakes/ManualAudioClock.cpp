#include "support/fakes/ManualAudioClock.h"

#include <thread>

#include "support/Eventually.h"

namespace platform {

namespace {
constexpr auto kLook = std::chrono::milliseconds(1);  // real time between two checks of the clock
}  // namespace

AudioClock::TimePoint ManualAudioClock::now() const noexcept {
  const std::lock_guard lock(mutex_);
  return now_;
}

AudioClock::TimePoint ManualAudioClock::nowWithSleep() const noexcept {
  const std::lock_guard lock(mutex_);
  return now_ + slept_;
}

void ManualAudioClock::sleep(std::chrono::nanoseconds duration) {
  const std::lock_guard lock(mutex_);
  slept_ += duration;
}

bool ManualAudioClock::waitUntil(Semaphore& semaphore, TimePoint deadline) {
  decltype(deadlines_)::iterator mine;
  {
    const std::lock_guard lock(mutex_);
    mine = deadlines_.insert(deadline);
  }
  bool signalled = false;
  do {
    signalled = semaphore.waitUntil(std::chrono::steady_clock::now() + kLook);
  } while (!signalled && now() < deadline);
  const std::lock_guard lock(mutex_);
  deadlines_.erase(mine);
  return signalled;
}

void ManualAudioClock::advance(std::chrono::nanoseconds duration) {
  const std::lock_guard lock(mutex_);
  now_ += std::chrono::duration_cast<TimePoint::duration>(duration);
}

bool ManualAudioClock::awaitWaiter(std::chrono::nanoseconds duration) const {
  const auto giveUp = std::chrono::steady_clock::now() + support::kPatience;
  while (std::chrono::steady_clock::now() < giveUp) {
    {
      const std::lock_guard lock(mutex_);
      const auto first = deadlines_.upper_bound(now_);  // those already due are waking
      if (first != deadlines_.end() && *first - now_ <= duration) {
        return true;
      }
    }
    std::this_thread::sleep_for(kLook);
  }
  return false;
}

}  // namespace platform
