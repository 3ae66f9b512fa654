#include "platform/base/ThreadStart.h"

#include <thread>
#include <utility>

namespace platform {
namespace {

void startDetached(std::function<void()> body) {
  std::thread(std::move(body)).detach();
}

// Never destroyed: a thread that outlives main may still start another.
ThreadStartInstallation::Start& installed() {
  static auto* start = new ThreadStartInstallation::Start(startDetached);
  return *start;
}

}  // namespace

void startThread(std::function<void()> body) {
  installed()(std::move(body));
}

ThreadStartInstallation::ThreadStartInstallation(Start start)
    : previous_(std::exchange(installed(), std::move(start))) {}

ThreadStartInstallation::~ThreadStartInstallation() {
  installed() = std::move(previous_);
}

}  // namespace platform
