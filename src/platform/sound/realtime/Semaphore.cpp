#include "platform/sound/realtime/Semaphore.h"

#include <cerrno>
#include <ctime>

namespace platform {

Semaphore::Semaphore() {
  sem_init(&semaphore_, 0, 0);
}

Semaphore::~Semaphore() {
  sem_destroy(&semaphore_);
}

void Semaphore::post() noexcept {
  sem_post(&semaphore_);
}

bool Semaphore::tryWait() noexcept {
  return sem_trywait(&semaphore_) == 0;
}

void Semaphore::wait() noexcept {
  while (sem_wait(&semaphore_) != 0 && errno == EINTR) {
  }
}

bool Semaphore::waitUntil(std::chrono::steady_clock::time_point deadline) noexcept {
  // std::chrono::steady_clock is CLOCK_MONOTONIC.
  const auto sinceEpoch = deadline.time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
  timespec until{};
  until.tv_sec = static_cast<std::time_t>(seconds.count());
  until.tv_nsec = static_cast<long>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch - seconds).count());
  int result = 0;
  do {
    result = sem_clockwait(&semaphore_, CLOCK_MONOTONIC, &until);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

}  // namespace platform
