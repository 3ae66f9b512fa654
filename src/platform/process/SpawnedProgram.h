#pragma once

#include <memory>
#include <string>

#include "platform/base/Result.h"

namespace platform {

/// A program that this one has started and that may outlive it: it runs in a session of its own and
/// shares no terminal. Its standard streams lead nowhere. Hang-up, interrupt, quit and termination
/// signals are blocked when it starts, and no others, so that it can first decide about them.
///
/// Threads: one at a time. Real-time: not safe.
class SpawnedProgram {
 public:
  /// The number under which the program finds the descriptor that it inherits.
  static constexpr int kInheritedDescriptor = 3;

  /// Starts the program at a path; it inherits a copy of `descriptor`. Fails with an errno.
  [[nodiscard]] static Result<std::unique_ptr<SpawnedProgram>> start(const std::string& path,
                                                                     int descriptor);
  /// Does not end the program; takes note of its end if it has ended.
  ~SpawnedProgram();
  SpawnedProgram(const SpawnedProgram&) = delete;
  SpawnedProgram& operator=(const SpawnedProgram&) = delete;

  /// The system's number of the process.
  [[nodiscard]] int number() const { return number_; }

  /// Whether it has ended. Never waits.
  [[nodiscard]] bool hasEnded();

  /// Ends it, also while it is stopped; nothing if it has ended. Does not wait.
  void kill();

 private:
  explicit SpawnedProgram(int number) : number_(number) {}

  const int number_;
  bool hasEnded_ = false;
};

}  // namespace platform
