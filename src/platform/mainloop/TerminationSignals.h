#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

/// While it lives, turns termination signals (SIGTERM, SIGINT, SIGHUP) into a call from the main
/// loop; several that arrive before it are one call. The third signal within kThirdSignalWindow, of
/// whatever kind, ends the program at once, as it would without this object: a hung program can
/// still be ended. Signals already ignored at construction stay ignored (nohup). Programs that are
/// started get the default back.
///
/// Does nothing on systems without these signals. Only one may exist at a time.
///
/// Threads: main. Real-time: not safe.
class TerminationSignals {
 public:
  static constexpr std::chrono::nanoseconds kThirdSignalWindow = std::chrono::seconds(2);

  /// `window` is the time in which the third signal ends the program; 0 for never.
  explicit TerminationSignals(std::function<void()> terminate,
                              std::chrono::nanoseconds window = kThirdSignalWindow);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  struct Handlers;
  std::unique_ptr<Handlers> handlers_;  // null without signals
};

}  // namespace platform
