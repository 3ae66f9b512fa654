#include "platform/mainloop/WaitingWork.h"

#include <atomic>
#include <system_error>
#include <thread>

namespace platform {
namespace {

// A user who tries one folder after another on a disk that does not answer reaches it.
constexpr int kMaxThreads = 32;

// Threads that have not returned. Changed by every thread; relaxed order would suffice.
std::atomic<int> threads = 0;

}  // namespace

bool beginWaitingWork(std::function<void()> work) {
  if (threads.fetch_add(1) >= kMaxThreads) {
    --threads;
    return false;
  }
  try {
    std::thread([work = std::move(work)]() mutable {
      work();
      work = nullptr;
      --threads;
    }).detach();
    return true;
  } catch (const std::system_error&) {
    --threads;
    return false;
  }
}

}  // namespace platform
