// Calls of the system by which the tested code waits for another thread; the linker leads them
// here.
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <ctime>
#include <deque>

#include <linux/futex.h>
#include <sys/syscall.h>

#include "interleavings/AllOrders.h"

namespace {

struct Sleeper {
  const std::uint32_t* word;
  bool isWoken = false;
};
std::deque<Sleeper*> sleepers;  // only one thread runs at a time

// Looks at the word and falls asleep in one step, as the kernel does.
long sleepWhile(const std::uint32_t* word, std::uint32_t seen) {
  interleavings::step();
  if (*word != seen) {
    errno = EAGAIN;
    return -1;
  }
  Sleeper sleeper{.word = word};
  sleepers.push_back(&sleeper);
  interleavings::waitUntil([&sleeper] { return sleeper.isWoken; });
  return 0;
}

long wakeOne(const std::uint32_t* word) {
  interleavings::step();
  for (auto sleeper = sleepers.begin(); sleeper != sleepers.end(); ++sleeper) {
    if ((*sleeper)->word == word) {
      (*sleeper)->isWoken = true;
      sleepers.erase(sleeper);
      return 1;
    }
  }
  return 0;
}

}  // namespace

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp)
long __wrap_syscall(long number, ...) {
  std::va_list arguments;
  va_start(arguments, number);
  const auto* const word = va_arg(arguments, const std::uint32_t*);
  const int operation = va_arg(arguments, int);
  const auto value = va_arg(arguments, std::uint32_t);
  va_end(arguments);
  if (number != SYS_futex) {
    errno = ENOSYS;
    return -1;
  }
  return operation == FUTEX_WAKE_PRIVATE ? wakeOne(word) : sleepWhile(word, value);
}

int __wrap_sched_yield() {
  interleavings::waitForAnotherThread();
  return 0;
}

int __wrap_nanosleep(const timespec* /*time*/, timespec* /*rest*/) {
  interleavings::waitForAnotherThread();
  return 0;
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl50-cpp)

}  // extern "C"
