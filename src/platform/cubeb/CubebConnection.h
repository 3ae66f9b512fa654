#pragma once

#include <atomic>
#include <memory>

#include <cubeb/cubeb.h>

#include "platform/base/AudioTypes.h"
#include "platform/base/LateModule.h"

namespace platform {

/// A connection to the sound system. Its streams share it; it ends with the last reference.
///
/// Threads: the control thread of the audio queues, except markBroken(). Real-time: markBroken()
/// is safe.
class CubebConnection {
 public:
  /// Null when cubeb finds no sound system. Logs to `consoleLog`, here and later.
  [[nodiscard]] static std::shared_ptr<CubebConnection> make(ModuleConsole* consoleLog);

  CubebConnection(cubeb* context, ModuleConsole* consoleLog)
      : context_(context), consoleLog_(consoleLog) {}
  ~CubebConnection() { cubeb_destroy(context_); }
  CubebConnection(const CubebConnection&) = delete;
  CubebConnection& operator=(const CubebConnection&) = delete;

  [[nodiscard]] cubeb* context() const { return context_; }

  /// Marks the connection as failed: it may belong to a dead server, or to a fallback chosen while
  /// no server ran. No new stream is opened on it.
  void markBroken() noexcept { broken_.store(true); }
  [[nodiscard]] bool isBroken() const { return broken_.load(); }

  /// Logs that no stream could be opened.
  void logFailure(const char* direction, AudioStatus status) const;

 private:
  cubeb* const context_;
  ModuleConsole* const consoleLog_;
  // Only ever becomes true, by any thread.
  std::atomic<bool> broken_{false};
};

}  // namespace platform
