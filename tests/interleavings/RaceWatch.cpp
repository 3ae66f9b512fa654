#include "interleavings/RaceWatch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <unordered_map>

#include <execinfo.h>
#include <gtest/gtest.h>

#include "interleavings/AllOrders.h"

// Vector clocks. Only one thread of a run goes on at a time, so that nothing here needs a lock; the
// standard library is used by the watched code, too, but its use here is not compiled for it.
namespace interleavings {
namespace {

constexpr std::size_t kMaximumThreads = 4;
constexpr std::size_t kCellBytes = 8;

// How far each thread has come, as far as somebody knows.
using Clock = std::array<std::uint32_t, kMaximumThreads>;

void join(Clock& clock, const Clock& other) {
  std::transform(clock.begin(), clock.end(), other.begin(), clock.begin(),
                 [](std::uint32_t a, std::uint32_t b) { return std::max(a, b); });
}

// The last uses of one byte.
struct Byte {
  std::size_t writer = 0;
  std::uint32_t written = 0;  // by the writer's clock; 0 for never
  const void* writtenBy = nullptr;
  Clock read{};
};
using Cell = std::array<Byte, kCellBytes>;

struct Watch {
  std::array<Clock, kMaximumThreads> threads{};
  std::unordered_map<std::uintptr_t, Cell> cells;
  std::unordered_map<const volatile void*, Clock> released;
};

Watch watch;
thread_local int unwatched = 0;

bool isWatched() {
  return isInRun() && unwatched == 0;
}

std::string lineOf(const void* caller) {
  void* address = const_cast<void*>(caller);
  const std::unique_ptr<char*, void (*)(void*)> lines(::backtrace_symbols(&address, 1), std::free);
  return lines ? *lines.get() : std::string();
}

void tell(const char* what, const volatile void* place, const void* caller, const void* other) {
  ADD_FAILURE() << what << " of " << const_cast<const void*>(place)
                << " without an order between two threads, by " << lineOf(caller)
                << (other != nullptr ? " after " + lineOf(other) : std::string());
}

}  // namespace

void beginWatch() {
  watch.cells.clear();
  watch.released.clear();
  for (std::size_t number = 0; number < kMaximumThreads; ++number) {
    watch.threads.at(number) = {};
    watch.threads.at(number).at(number) = 1;
  }
}

void use(Use kind, const volatile void* place, std::size_t size, const void* caller) {
  if (!isWatched()) {
    return;
  }
  const Unwatched here;
  const std::size_t self = threadOfRun();
  const Clock& clock = watch.threads.at(self);
  const auto begin = reinterpret_cast<std::uintptr_t>(place);
  for (std::uintptr_t at = begin; at < begin + size; ++at) {
    Byte& byte = watch.cells[at / kCellBytes].at(at % kCellBytes);
    if (byte.written > clock.at(byte.writer)) {
      tell(kind == Use::read ? "A read" : "A write", place, caller, byte.writtenBy);
      return;
    }
    if (kind == Use::read) {
      byte.read.at(self) = clock.at(self);
      continue;
    }
    for (std::size_t other = 0; other < kMaximumThreads; ++other) {
      if (byte.read.at(other) > clock.at(other)) {
        tell("A write after a read", place, caller, nullptr);
        return;
      }
    }
    byte = {.writer = self, .written = clock.at(self), .writtenBy = caller, .read = {}};
  }
}

void forget(const volatile void* place, std::size_t size) {
  if (!isWatched()) {
    return;
  }
  const Unwatched here;
  const auto begin = reinterpret_cast<std::uintptr_t>(place);
  for (std::uintptr_t cell = begin / kCellBytes; cell * kCellBytes < begin + size; ++cell) {
    watch.cells.erase(cell);
  }
  for (auto known = watch.released.begin(); known != watch.released.end();) {
    const auto at = reinterpret_cast<std::uintptr_t>(known->first);
    known = at >= begin && at < begin + size ? watch.released.erase(known) : std::next(known);
  }
}

void release(const volatile void* place) {
  forgetRelease(place);
  releaseToo(place);
}

void releaseToo(const volatile void* place) {
  if (isWatched()) {
    const Unwatched here;
    Clock& clock = watch.threads.at(threadOfRun());
    join(watch.released[place], clock);
    ++clock.at(threadOfRun());
  }
}

void forgetRelease(const volatile void* place) {
  if (isWatched()) {
    const Unwatched here;
    watch.released.erase(place);
  }
}

void acquire(const volatile void* place) {
  if (!isWatched()) {
    return;
  }
  if (const auto known = watch.released.find(place); known != watch.released.end()) {
    join(watch.threads.at(threadOfRun()), known->second);
  }
}

Unwatched::Unwatched() {
  ++unwatched;
}
Unwatched::~Unwatched() {
  --unwatched;
}

}  // namespace interleavings
