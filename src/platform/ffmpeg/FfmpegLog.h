#pragma once

#include <string>

#include "platform/base/LateModule.h"

namespace platform {

/// Sends what FFmpeg's libraries log to the diagnostics console, line by line, warnings and worse.
/// A damaged file can be worth thousands of lines: each file has a number of them that it may use
/// up, then one that says so, then none.
///
/// While a scope lives, what the libraries log on this thread belongs to its budget. What they log
/// outside of every scope goes nowhere.
///
/// Threads: any; a budget is used by one thread at a time. Real-time: not safe.
class FfmpegLog {
 public:
  /// Lines that one file may still write.
  class Budget {
   public:
    static constexpr int kLines = 20;

   private:
    friend class FfmpegLog;
    int linesLeft_ = kLines;
    std::string unfinished_;  // the libraries log lines in pieces
    std::string last_;        // repeated lines are left out
  };

  /// Scopes nest; the inner one counts.
  class Scope {
   public:
    explicit Scope(Budget& budget);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Budget* const previous_;
  };

  /// From now on FFmpeg's lines go to `consoleLog`. Once, before the first scope.
  static void install(ModuleConsole* consoleLog);

  /// Adds a piece of text to the current scope's lines, as the libraries' callback does.
  static void append(const std::string& piece);

 private:
  static void flushLine(Budget& budget, std::string line);
};

}  // namespace platform
