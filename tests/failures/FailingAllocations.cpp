#include "failures/FailingAllocations.h"

#include <atomic>
#include <cstddef>
#include <new>
#include <thread>

namespace failing::allocations {
namespace {

// No lock: what is counted may hold any.
std::atomic<bool> isCounting{false};
std::atomic<std::uint64_t> count{0};
std::atomic<std::uint64_t> chosen{0};
std::atomic<bool> failed{false};
// How many threads are in an allocation that may be the chosen one.
std::atomic<int> deciding{0};

class Deciding {
 public:
  Deciding() { ++deciding; }
  ~Deciding() { --deciding; }
  Deciding(const Deciding&) = delete;
  Deciding& operator=(const Deciding&) = delete;
};

// What `new` does when malloc has failed; then it tries again.
void failOnce() {
  const Deciding decides;
  if (!isCounting || ++count != chosen) {
    return;
  }
  failed = true;
  const std::new_handler handler = std::get_new_handler();
  if (handler == nullptr) {
    throw std::bad_alloc();
  }
  handler();
}

}  // namespace

void begin(std::uint64_t number) {
  count = 0;
  chosen = number;
  failed = false;
  isCounting = true;
}

void end() {
  isCounting = false;
  // Another thread may have failed and not yet been helped.
  while (deciding != 0) {
    std::this_thread::yield();
  }
}

bool hasFailed() {
  return failed;
}

}  // namespace failing::allocations

// What the linker puts in the place of the operators.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
#define FAILING_NEW(NAME, PARAMETERS, ARGUMENTS) \
  extern "C" void* __real_##NAME PARAMETERS;     \
  extern "C" void* __wrap_##NAME PARAMETERS;     \
  void* __wrap_##NAME PARAMETERS {               \
    failing::allocations::failOnce();            \
    return __real_##NAME ARGUMENTS;              \
  }

FAILING_NEW(_Znwm, (std::size_t size), (size))
FAILING_NEW(_Znam, (std::size_t size), (size))
FAILING_NEW(_ZnwmSt11align_val_t, (std::size_t size, std::align_val_t to), (size, to))
FAILING_NEW(_ZnamSt11align_val_t, (std::size_t size, std::align_val_t to), (size, to))
FAILING_NEW(_ZnwmRKSt9nothrow_t, (std::size_t size, const std::nothrow_t& tag), (size, tag))
FAILING_NEW(_ZnamRKSt9nothrow_t, (std::size_t size, const std::nothrow_t& tag), (size, tag))
#undef FAILING_NEW
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
