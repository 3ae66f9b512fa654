#pragma once

#include <functional>
#include <memory>

namespace platform {

/// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into a call from the main
/// loop, for as long as it lives. Each does so once: the second time the same signal ends the
/// program at once, as the system has it, so that a program that does not answer can still be
/// ended. A signal that was ignored when it was made stays ignored (nohup).
///
/// Where a system has no such signals nothing is ever called. One at a time.
///
/// Threads: main. Real-time: not safe.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> terminate);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  struct Handlers;
  std::unique_ptr<Handlers> handlers_;  // null where there are none
};

}  // namespace platform
