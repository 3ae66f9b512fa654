#include "failures/FailingCalls.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace failing {

namespace {

std::atomic<bool> isCounting{false};

std::mutex mutex;  // guards everything below
std::uint64_t calls = 0;
std::uint64_t chosen = 0;
std::string failedCall;
std::function<void()> hook;

}  // namespace

void begin(std::uint64_t number) {
  const std::lock_guard lock(mutex);
  calls = 0;
  chosen = number;
  failedCall.clear();
  hook = nullptr;
  isCounting = true;
}

std::uint64_t end() {
  const std::lock_guard lock(mutex);
  isCounting = false;
  hook = nullptr;
  return calls;
}

bool hasFailed() {
  const std::lock_guard lock(mutex);
  return !failedCall.empty();
}

std::string failed() {
  const std::lock_guard lock(mutex);
  return failedCall;
}

void whenFailing(std::function<void()> function) {
  const std::lock_guard lock(mutex);
  hook = std::move(function);
}

bool fails(const char* call) {
  if (!isCounting) {
    return false;
  }
  std::function<void()> run;
  {
    const std::lock_guard lock(mutex);
    if (!isCounting || ++calls != chosen) {
      return false;
    }
    failedCall = call;
    run = std::exchange(hook, nullptr);
  }
  if (run) {
    run();
  }
  return true;
}

}  // namespace failing
