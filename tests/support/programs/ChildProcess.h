#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "support/Eventually.h"

namespace support {

/// Names and values of environment variables.
using Environment = std::map<std::string, std::string>;

/// The environment of a program under test: PATH, TMPDIR, a UTF-8 locale and the sanitizers'
/// options, but no screen, sound server or message bus.
[[nodiscard]] Environment cleanEnvironment();

/// `base` with the variables of `additions` added or replaced.
[[nodiscard]] Environment with(Environment base, const Environment& additions);

/// How a process ended.
struct ExitStatus {
  int code = 0;    ///< exit code; 0 when a signal ended it
  int signal = 0;  ///< the signal that ended it; 0 for none

  [[nodiscard]] bool succeeded() const { return code == 0 && signal == 0; }
  friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
};

/// A started program in its own process group. The destructor kills the whole group, and the system
/// kills the program when the thread that started it ends, even if the test crashes. Its output
/// goes to files, so it never waits for a reader.
///
/// Threads: the one that started it, which must outlive it.
class ChildProcess {
 public:
  /// Starts `arguments[0]`, looked up in PATH, with exactly `environment`. Its standard input is
  /// empty; its standard output goes to `outputPath`, if given. Null with `error` set (a plain
  /// sentence) if it cannot be started.
  [[nodiscard]] static std::unique_ptr<ChildProcess> start(
      const std::vector<std::string>& arguments, const Environment& environment, std::string& error,
      const std::string& outputPath = {});

  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Also true for a frozen program.
  [[nodiscard]] bool isRunning();

  /// Waits until the program itself has ended; nothing if it has not within `patience`.
  [[nodiscard]] std::optional<ExitStatus> waitForExit(
      std::chrono::milliseconds patience = kPatience);

  /// Sends a signal to the program alone; does nothing once it has ended.
  void signal(int number);
  /// Suspends it (SIGSTOP); returns once the system reports it as stopped.
  void freeze();
  void thaw();
  /// Kills the group at once and waits for the program's end.
  void kill();
  /// Asks it to end (SIGTERM); kills it if it has not ended within `patience`.
  ExitStatus end(std::chrono::milliseconds patience = kPatience);

  /// Its standard output so far; empty if that goes to a given path.
  [[nodiscard]] std::string output() const;
  /// Its standard error so far.
  [[nodiscard]] std::string errorOutput() const;

 private:
  ChildProcess() = default;

  pid_t pid_ = -1;
  int outputFile_ = -1;  ///< unlinked file that receives standard output; -1 for none
  int errorFile_ = -1;   ///< the same for its standard error
  std::optional<ExitStatus> ended_;
};

/// The results of a program that ran to its end.
struct Finished {
  ExitStatus status;
  std::string output;
  std::string error;  ///< standard error, or why it did not start or end in time
};

/// Starts a program and waits for its end.
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& arguments,
                                const Environment& environment,
                                std::chrono::milliseconds patience = kPatience);

/// Full path of a program, looked up in this process's PATH; empty if not found.
[[nodiscard]] std::string findProgram(const std::string& name);

/// One-letter state of a process as the system reports it ('R', 'S', 'T' for stopped, 'Z'); 0 if
/// the process does not exist.
[[nodiscard]] char processState(pid_t pid);

/// Whether a process has ended, also if nobody has taken note of it yet.
[[nodiscard]] bool hasEnded(pid_t pid);

}  // namespace support
