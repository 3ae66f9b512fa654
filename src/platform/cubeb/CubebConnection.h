#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <cubeb/cubeb.h>

#include "platform/base/LateModule.h"
#include "platform/sound/AudioDevice.h"

namespace platform {

/// A connection to the sound system. Its streams share it; it ends with the last reference.
///
/// Threads: the control thread of the audio queues, except markBroken(). Real-time: markBroken()
/// is safe.
class CubebConnection {
 public:
  /// Null when cubeb finds no sound system. Failures are logged to `consoleLog`.
  [[nodiscard]] static std::shared_ptr<CubebConnection> make(ModuleConsole* consoleLog);

  CubebConnection(cubeb* context, ModuleConsole* consoleLog)
      : context_(context), consoleLog_(consoleLog) {}
  /// cubeb calls no handler after that.
  ~CubebConnection();
  CubebConnection(const CubebConnection&) = delete;
  CubebConnection& operator=(const CubebConnection&) = delete;

  [[nodiscard]] cubeb* context() const { return context_; }

  /// Marks the connection as failed: it may belong to a dead server, or to a fallback chosen while
  /// no server ran. No new stream is opened on it.
  void markBroken() noexcept { broken_.store(true); }
  [[nodiscard]] bool isBroken() const { return broken_.load(); }

  /// Calls `changed` on a thread of cubeb, at times its real-time one, whenever an input appears or
  /// vanishes. Call at most once. A backend that cannot notify does not call it.
  ///
  /// It stays registered until the end: cubeb would call a null pointer for a notification that is
  /// on its way when the handler is taken back.
  void notifyOfInputs(std::function<void()> changed);

  /// The inputs now, in any order; nothing if they cannot be listed.
  [[nodiscard]] std::optional<std::vector<AudioInputDevice>> inputs() const;

  /// Whether this is cubeb's last fallback. Without a server cubeb still succeeds with it, and it
  /// works only where it can reach the hardware directly: the real test is whether a stream opens.
  [[nodiscard]] bool isLastResort() const;

  /// Logs that no stream could be opened.
  void logFailure(const char* direction, AudioStatus status) const;

 private:
  cubeb* const context_;
  ModuleConsole* const consoleLog_;
  // Only ever becomes true, by any thread.
  std::atomic<bool> broken_{false};
  // Fixed before cubeb may call it.
  std::function<void()> inputsChanged_;
  bool isRegistered_ = false;  // control thread only
};

}  // namespace platform
