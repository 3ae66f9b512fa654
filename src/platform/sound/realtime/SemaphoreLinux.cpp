#if defined(__linux__)

#include <climits>
#include <optional>

#include <linux/futex.h>
#include <linux/time_types.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/sound/realtime/Semaphore.h"

namespace platform {

namespace {

using TimePoint = std::chrono::steady_clock::time_point;

constexpr std::uint32_t kWaiter = std::uint32_t{1} << 24;
constexpr std::uint32_t kPosts = kWaiter - 1;

// 32-bit machines have two calls; this is the one with 64-bit seconds.
#if defined(SYS_futex_time64)
constexpr long kFutex = SYS_futex_time64;
#else
constexpr long kFutex = SYS_futex;
#endif

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t) &&
              std::atomic<std::uint32_t>::is_always_lock_free);

// Sleeps while the word is `seen`, at most until the deadline. May return spuriously.
void sleepWhile(const std::atomic<std::uint32_t>& word, std::uint32_t seen,
                const std::optional<TimePoint>& deadline) noexcept {
  __kernel_timespec until{};
  if (deadline) {
    // std::chrono::steady_clock is CLOCK_MONOTONIC, and so is an absolute time of this call.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(deadline->time_since_epoch());
    const std::chrono::nanoseconds rest = deadline->time_since_epoch() - seconds;
    until = {.tv_sec = seconds.count(), .tv_nsec = rest.count()};
  }
  syscall(kFutex, &word, FUTEX_WAIT_BITSET_PRIVATE, seen, deadline ? &until : nullptr, nullptr,
          FUTEX_BITSET_MATCH_ANY);
}

// Takes a post; waits for one until the deadline, if any.
bool take(std::atomic<std::uint32_t>& word, const std::optional<TimePoint>& deadline) noexcept {
  std::uint32_t seen = word.fetch_add(kWaiter, std::memory_order_relaxed) + kWaiter;
  for (;;) {
    // Also decides when a post and the deadline coincide.
    while ((seen & kPosts) != 0) {
      if (word.compare_exchange_weak(seen, seen - kWaiter - 1, std::memory_order_acquire,
                                     std::memory_order_relaxed)) {
        return true;
      }
    }
    if (deadline && *deadline <= std::chrono::steady_clock::now()) {
      if (word.compare_exchange_strong(seen, seen - kWaiter, std::memory_order_relaxed)) {
        return false;
      }
      continue;
    }
    sleepWhile(word, seen, deadline);
    seen = word.load(std::memory_order_relaxed);
  }
}

}  // namespace

Semaphore::Semaphore() = default;
Semaphore::~Semaphore() = default;

void Semaphore::post() noexcept {
  const std::uint32_t before = state_.fetch_add(1, std::memory_order_release);
  if (before >= kWaiter) {
    syscall(kFutex, &state_, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
  }
}

bool Semaphore::tryWait() noexcept {
  std::uint32_t seen = state_.load(std::memory_order_relaxed);
  while ((seen & kPosts) != 0) {
    if (state_.compare_exchange_weak(seen, seen - 1, std::memory_order_acquire,
                                     std::memory_order_relaxed)) {
      return true;
    }
  }
  return false;
}

void Semaphore::wait() noexcept {
  static_cast<void>(take(state_, std::nullopt));
}

bool Semaphore::waitUntil(TimePoint deadline) noexcept {
  return take(state_, deadline);
}

}  // namespace platform

#endif
