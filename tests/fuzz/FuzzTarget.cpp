#include "fuzz/FuzzTarget.h"

#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

// Of processor time. Without sanitizers everything is about five times as fast.
constexpr std::int64_t kMostMilliseconds = 10'000;
// Held at a time by one execution, as it asked for it: without what the sanitizer adds to each
// piece, keeps of what was freed, and needs for itself. What is mapped directly does not count.
constexpr std::int64_t kMostBytes = std::int64_t{256} << 20;

std::atomic<std::int64_t> held{0};
std::atomic<std::int64_t> most{0};

void allocated(const volatile void*, std::size_t size) {
  const std::int64_t now = held += static_cast<std::int64_t>(size);
  std::int64_t before = most;
  while (before < now && !most.compare_exchange_weak(before, now)) {
  }
}

void freed(const volatile void* piece) {
  if (piece != nullptr) {
    const void* const owned = const_cast<const void*>(piece);
    held -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(owned));
  }
}

struct Totals {
  std::uint64_t executions = 0;
  std::int64_t longest = 0;  // milliseconds
  std::int64_t most = 0;     // bytes
} totals;

// scripts/test reads this line.
void report() {
  std::fprintf(stderr, "fuzzed: %llu executions, longest %lld ms, most memory %lld KiB\n",
               static_cast<unsigned long long>(totals.executions),
               static_cast<long long>(totals.longest), static_cast<long long>(totals.most >> 10));
}

// Milliseconds of processor time that the program has used.
std::int64_t workDone() {
  std::timespec time = {};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

}  // namespace

void fuzz::require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

void fuzz::require(bool holds, const std::string& what) {
  require(holds, what.c_str());
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __sanitizer_install_malloc_and_free_hooks(allocated, freed);
  fuzz::prepare();
  std::atexit(report);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::int64_t begin = workDone();
  const std::int64_t heldBefore = held;
  most = heldBefore;
  fuzz::execute(data, size);
  const std::int64_t time = workDone() - begin;
  const std::int64_t memory = most - heldBefore;
  ++totals.executions;
  totals.longest = std::max(totals.longest, time);
  totals.most = std::max(totals.most, memory);
  fuzz::require(time <= kMostMilliseconds, "an execution takes at most 10 s");
  fuzz::require(memory <= kMostBytes, "an execution holds at most 256 MB");
  return 0;
}
