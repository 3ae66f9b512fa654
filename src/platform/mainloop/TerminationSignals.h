#pragma once

#include <functional>
#include <memory>

namespace platform {

/// While it lives, turns termination signals (SIGTERM, SIGINT, SIGHUP) into a call from the main
/// loop. Each signal does so once. The second one of a kind has the system's default effect and
/// ends the program at once, so that a hung program can still be ended. Signals already ignored at
/// construction stay ignored (nohup).
///
/// Does nothing on systems without these signals. Only one may exist at a time.
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
  std::unique_ptr<Handlers> handlers_;  // null without signals
};

}  // namespace platform
