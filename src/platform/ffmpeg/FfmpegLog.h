#pragma once

#include <string>

#include "platform/base/LateModule.h"

namespace platform {

/// Sends FFmpeg's log lines of level warning and above to the diagnostics console. A damaged file
/// can cause thousands of lines, so each file has a budget; one more line says that it is used up.
///
/// While a scope lives, FFmpeg's log lines on this thread count against its budget. Lines outside
/// every scope are discarded.
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
    std::string unfinished_;  // FFmpeg logs lines in pieces
    std::string last_;        // repeated lines are left out
  };

  /// Scopes nest; the innermost one applies.
  class Scope {
   public:
    explicit Scope(Budget& budget);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Budget* const previous_;
  };

  /// Routes FFmpeg's lines to `consoleLog`. Call once, before the first scope.
  static void install(ModuleConsole* consoleLog);

  /// Adds a piece of text to the current scope's lines, as FFmpeg's callback does.
  static void append(const std::string& piece);

 private:
  static void flushLine(Budget& budget, std::string line);
};

}  // namespace platform
