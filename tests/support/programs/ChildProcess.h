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

/// The part of this process's environment that a program under test gets: PATH, TMPDIR, a UTF-8
/// locale, the sanitizers' options and nothing else: no screen, no sound server, no message bus.
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

/// A started program, in a process group of its own. Nothing is left behind: the destructor kills
/// the whole group, and the system kills the program when the thread that started it ends, also
/// when the test crashes. What it prints is kept in files, so it never waits for a reader.
///
/// Threads: the one that started it, which must outlive it.
class ChildProcess {
 public:
  /// Starts `arguments[0]`, looked up in PATH, with `environment` as its whole environment. Its
  /// standard input is empty; its standard output goes to `outputPath` if one is given. Null with
  /// `error` set (a plain sentence) when it cannot be started.
  [[nodiscard]] static std::unique_ptr<ChildProcess> start(
      const std::vector<std::string>& arguments, const Environment& environment, std::string& error,
      const std::string& outputPath = {});

  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Still there; a frozen program is.
  [[nodiscard]] bool isRunning();

  /// Waits until the program itself has ended. Nothing when it has not within `patience`.
  [[nodiscard]] std::optional<ExitStatus> waitForExit(
      std::chrono::milliseconds patience = kPatience);

  /// Sends a signal to the program alone; nothing once it has ended.
  void signal(int number);
  /// Stops it without its notice (SIGSTOP); returns when the system shows it stopped.
  void freeze();
  void thaw();
  /// Kills the whole group at once and waits for the program's end.
  void kill();
  /// Asks it to end (SIGTERM); kills it when it has not within `patience`.
  ExitStatus end(std::chrono::milliseconds patience = kPatience);

  /// What it has written to standard output so far; empty when that goes to a given path.
  [[nodiscard]] std::string output() const;
  /// What it has written to standard error so far.
  [[nodiscard]] std::string errorOutput() const;

 private:
  ChildProcess() = default;

  pid_t pid_ = -1;
  int outputFile_ = -1;  ///< unlinked file behind the program's standard output; -1 for none
  int errorFile_ = -1;   ///< the same for its standard error
  std::optional<ExitStatus> ended_;
};

/// What a program that ran to its end has said.
struct Finished {
  ExitStatus status;
  std::string output;
  std::string error;  ///< standard error, or why it could not be started or did not end in time
};

/// Starts a program and waits for its end.
[[nodiscard]] Finished runToEnd(const std::vector<std::string>& arguments,
                                const Environment& environment,
                                std::chrono::milliseconds patience = kPatience);

/// Full path of a program, looked up in this process's PATH; empty when there is none.
[[nodiscard]] std::string findProgram(const std::string& name);

/// One-letter state of a process as the system shows it ('R', 'S', 'T' for stopped, 'Z'), or 0
/// when there is no such process.
[[nodiscard]] char processState(pid_t pid);

}  // namespace support
