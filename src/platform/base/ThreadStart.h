#pragma once

#include <functional>

namespace platform {

/// Runs `body` on a new thread that nobody waits for. Throws std::system_error where the system
/// has no thread to give.
///
/// Threads: any. Real-time: not safe.
void startThread(std::function<void()> body);

/// Starts threads in another way for as long as the installation lives. For tests; install while no
/// other thread starts any.
class ThreadStartInstallation {
 public:
  using Start = std::function<void(std::function<void()> body)>;

  explicit ThreadStartInstallation(Start start);
  ~ThreadStartInstallation();
  ThreadStartInstallation(const ThreadStartInstallation&) = delete;
  ThreadStartInstallation& operator=(const ThreadStartInstallation&) = delete;

 private:
  Start previous_;
};

}  // namespace platform
