#pragma once

#include <cstdint>
#include <memory>

#include "platform/base/LateModule.h"
#include "platform/sound/AudioDevice.h"

namespace platform {

class CubebConnection;

/// The default microphone and loudspeaker of the machine, through cubeb.
///
/// Input and output have a connection to the sound system each, so that each has an audio thread of
/// its own. A connection on which anything failed is not used again: it may belong to a server that
/// has died, or to a fallback that was chosen while there was none.
///
/// What failed is logged to `consoleLog`, since a status says little; the library's own
/// log stays off, because it would be written on the audio threads.
///
/// Threads: the control thread of the audio queues; every call may block for long (a server that
/// hangs held up a stop for 30 s and a connection for 120 s). Real-time: not safe.
class CubebAudioDevice final : public AudioDevice {
 public:
  /// Frames of latency asked of the sound system, for input and for output: 93 ms. Less brought
  /// dropouts beside other load.
  static constexpr std::uint32_t kLatencyFrames = 4096;

  explicit CubebAudioDevice(ModuleConsole* consoleLog);

  /// Disconnects, once the streams are gone as well.
  ~CubebAudioDevice() override;

  [[nodiscard]] Input openInput(AudioInputClient& client) override;
  [[nodiscard]] Output openOutput(AudioOutputClient& client) override;

  /// Connects the output's side; the input's is connected by opening it.
  void prepare() override;

 private:
  ModuleConsole* const consoleLog_;
  // Control thread only. Null until connected, or when the last one failed.
  std::shared_ptr<CubebConnection> input_;
  std::shared_ptr<CubebConnection> output_;
};

}  // namespace platform
