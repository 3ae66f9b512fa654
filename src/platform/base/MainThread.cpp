#include "platform/base/MainThread.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace platform {

namespace {

// Static initialisation runs on the main thread.
const std::thread::id kMainThread = std::this_thread::get_id();

}  // namespace

bool isMainThread() {
  return std::this_thread::get_id() == kMainThread;
}

void assertMainThread(const char* operation) {
  if (!isMainThread()) {
    std::fprintf(stderr, "%s called off the main thread\n", operation);
    std::abort();
  }
}

}  // namespace platform
