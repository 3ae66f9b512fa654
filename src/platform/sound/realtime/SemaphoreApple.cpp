#if defined(__APPLE__)

#include <algorithm>

#include "platform/sound/realtime/Semaphore.h"

namespace platform {

Semaphore::Semaphore() : semaphore_(dispatch_semaphore_create(0)) {}

Semaphore::~Semaphore() {
  dispatch_release(semaphore_);
}

void Semaphore::post() noexcept {
  dispatch_semaphore_signal(semaphore_);
}

bool Semaphore::tryWait() noexcept {
  return dispatch_semaphore_wait(semaphore_, DISPATCH_TIME_NOW) == 0;
}

void Semaphore::wait() noexcept {
  dispatch_semaphore_wait(semaphore_, DISPATCH_TIME_FOREVER);
}

bool Semaphore::waitUntil(std::chrono::steady_clock::time_point deadline) noexcept {
  using std::chrono::nanoseconds;
  const auto left =
      std::chrono::duration_cast<nanoseconds>(deadline - std::chrono::steady_clock::now());
  // Relative to now, which dispatch_time() counts on a clock that does not jump.
  const auto until = dispatch_time(DISPATCH_TIME_NOW, std::max(left, nanoseconds(0)).count());
  return dispatch_semaphore_wait(semaphore_, until) == 0;
}

}  // namespace platform

#endif
