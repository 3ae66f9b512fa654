#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <cubeb/cubeb.h>

#include "platform/base/LateModule.h"
#include "platform/sound/AudioDevice.h"

namespace platform {

/// A connection to the sound system. Its streams share it; with the last reference it goes to the
/// RetiredConnections.
///
/// Threads: the control thread of the audio queues, except markBroken(). Real-time: markBroken()
/// is safe.
class CubebConnection {
 public:
  /// Null when cubeb finds no sound system. Failures are logged to `consoleLog`.
  [[nodiscard]] static std::unique_ptr<CubebConnection> make(ModuleConsole* consoleLog);

  CubebConnection(cubeb* context, ModuleConsole* consoleLog)
      : context_(context), consoleLog_(consoleLog) {}
  /// Takes the handler of changed inputs back, otherwise cubeb aborts the process. The server must
  /// not notify meanwhile, see RetiredConnections.
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
  void notifyOfInputs(std::function<void()> changed);
  /// `changed` is not called any more, nor is a call under way; cubeb keeps its own handler.
  void endNotices();
  /// Notices of the server so far, also after endNotices().
  [[nodiscard]] std::uint64_t notices() const { return notices_.load(std::memory_order_relaxed); }
  /// Whether cubeb has a handler that the destructor must take back.
  [[nodiscard]] bool hasHandler() const { return hasHandler_; }

  /// The inputs now, in any order; nothing if they cannot be listed.
  [[nodiscard]] std::optional<std::vector<AudioInputDevice>> inputs() const;

  /// Whether this is cubeb's last fallback. Without a server cubeb still succeeds with it, and it
  /// works only where it can reach the hardware directly: the real test is whether a stream opens.
  [[nodiscard]] bool isLastResort() const;

  /// Logs that no stream could be opened.
  void logFailure(const char* direction, AudioStatus status) const;

 private:
  void notice() noexcept;

  cubeb* const context_;
  ModuleConsole* const consoleLog_;
  // Only ever becomes true, by any thread.
  std::atomic<bool> broken_{false};
  bool hasHandler_ = false;  // control thread only
  // Set before cubeb may call it, cleared when no call of it can begin.
  std::function<void()> inputsChanged_;
  // A notice first counts itself, then looks whether they have ended; endNotices() the other way
  // round. So one of the two sees the other.
  std::atomic<bool> noticesEnded_{false};
  std::atomic<int> noticesUnderWay_{0};
  std::atomic<std::uint64_t> notices_{0};
};

}  // namespace platform
