#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/base/LateModule.h"
#include "platform/sound/AudioDevice.h"

namespace platform {

class CubebConnection;
class RetiredConnections;

/// The default microphone and loudspeaker of the machine, through cubeb.
///
/// Input and output each have their own connection to the sound system, and so their own audio
/// thread. A connection is discarded once a stream on it failed to open or died: it may belong to a
/// dead server, or to a fallback chosen while no server ran.
///
/// Failures are logged to `consoleLog`, since a status says little. cubeb's own log stays off,
/// because it would be written on the audio threads.
///
/// Threads: the control thread of the audio queues; every call may block for long (a server that
/// hangs held up a stop for 30 s and a connection for 120 s). Real-time: not safe.
class CubebAudioDevice final : public AudioDevice {
 public:
  /// Latency requested from the sound system for input and output, in frames: 93 ms. Less caused
  /// dropouts under load.
  static constexpr std::uint32_t kLatencyFrames = 4096;

  explicit CubebAudioDevice(
      ModuleConsole* consoleLog,
      std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now);

  /// Disconnects the output once its streams are destroyed too. The input stays connected until the
  /// process ends, see RetiredConnections; the handler of changed inputs is not called any more.
  ~CubebAudioDevice() override;

  [[nodiscard]] Input openInput(AudioInputClient& client) override;
  [[nodiscard]] Output openOutput(AudioOutputClient& client) override;

  /// Connects the output; openInput() connects the input.
  void prepare() override;

  void setInputsChangedHandler(std::function<void()> changed) override;
  [[nodiscard]] std::optional<std::vector<AudioInputDevice>> inputs() override;

 private:
  /// Replaces a connection that is missing or broken. True if there is a new one.
  bool connect(std::shared_ptr<CubebConnection>& connection);
  void connectInput();

  ModuleConsole* const consoleLog_;
  const std::shared_ptr<RetiredConnections> retired_;  // its connections share it
  // Control thread only.
  std::function<void()> inputsChanged_;
  // Null until connected, or when the last one failed.
  std::shared_ptr<CubebConnection> input_;
  std::shared_ptr<CubebConnection> output_;
};

}  // namespace platform
