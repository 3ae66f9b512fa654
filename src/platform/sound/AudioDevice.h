#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/AudioTypes.h"
#include "platform/base/Result.h"

/// The interface between the audio queues and a sound system. CubebAudioDevice is the real one; the
/// scripted one lets a test feed samples, take the played ones, advance the clock and inject
/// failures.
namespace platform {

/// Receives the input device's samples; implemented by SharedInput.
class AudioInputClient {
 public:
  virtual ~AudioInputClient() = default;

  /// `frames` interleaved frames of kWorkingFormat, any number, valid only during the call.
  ///
  /// Threads: the device's real-time thread, never two calls at once.
  /// Real-time: must be safe: no lock, no allocation, no file, no log.
  virtual void deviceCaptured(const float* samples, std::uint32_t frames) noexcept = 0;

  /// The stream failed with this status; no more data will come.
  ///
  /// Threads: any thread of the device. Real-time: must only store and wake.
  virtual void deviceInputFailed(AudioStatus status) noexcept = 0;
};

/// Supplies the output device's samples; implemented by OutputQueueCore.
class AudioOutputClient {
 public:
  virtual ~AudioOutputClient() = default;

  /// Fills all `frames` interleaved frames of kWorkingFormat, with silence once no audio is left.
  ///
  /// Threads: the device's real-time thread, never two calls at once.
  /// Real-time: must be safe: no lock, no allocation, no file, no log.
  virtual void deviceWants(float* samples, std::uint32_t frames) noexcept = 0;

  /// The stream failed with this status; no more data will be requested.
  ///
  /// Threads: any thread of the device. Real-time: must only store and wake.
  virtual void deviceOutputFailed(AudioStatus status) noexcept = 0;
};

/// A sound input of the system.
struct AudioInputDevice {
  std::string id;          ///< unique while it exists
  std::string name;        ///< for users; any characters and any length, also none
  bool isMonitor = false;  ///< captures what an output plays
  bool isDefault = false;
};

/// An open, running input stream. Destruction ends it; the client is not called after that.
///
/// Threads: the control thread of the audio queues. Every call may block for long.
class AudioInputStream {
 public:
  virtual ~AudioInputStream() = default;

  /// The id of the input that the stream captures from now: the sound system may move it. Empty if
  /// it is unknown.
  [[nodiscard]] virtual std::string currentInput() { return {}; }
};

/// An open output stream, initially stopped. Destruction drops queued audio and ends it; the client
/// is not called after that.
///
/// Threads: the control thread of the audio queues. Every call may block for long.
class AudioOutputStream {
 public:
  virtual ~AudioOutputStream() = default;

  [[nodiscard]] virtual AudioStatus start() = 0;

  /// Keeps queued audio; start() resumes at the exact sample.
  [[nodiscard]] virtual AudioStatus stop() = 0;

  /// Frames played since the stream was created, including silence. Frames passed to the device but
  /// not yet audible are not counted.
  [[nodiscard]] virtual std::uint64_t position() = 0;
};

/// A sound system with a default input and a default output, both in kWorkingFormat.
///
/// Threads: the control thread of the audio queues. Every call may block for long.
class AudioDevice {
 public:
  virtual ~AudioDevice() = default;

  using Input = Result<std::unique_ptr<AudioInputStream>, AudioStatus>;
  using Output = Result<std::unique_ptr<AudioOutputStream>, AudioStatus>;

  /// Opens and starts the default input. The client must outlive the stream.
  [[nodiscard]] virtual Input openInput(AudioInputClient& client) = 0;

  /// Opens the default output, not yet started. The client must outlive the stream.
  [[nodiscard]] virtual Output openOutput(AudioOutputClient& client) = 0;

  /// Connects to the sound system ahead of the first stream. Failure is not reported: opening a
  /// stream tries again.
  virtual void prepare() {}

  /// `changed` is called whenever an input appears or vanishes, as far as the sound system
  /// notifies, on any thread of the device; it must be real-time safe. Set before the first stream
  /// opens.
  virtual void setInputsChangedHandler(std::function<void()> /*changed*/) {}

  /// The inputs that exist now; nothing if the sound system does not answer or cannot list them.
  [[nodiscard]] virtual std::optional<std::vector<AudioInputDevice>> inputs() {
    return std::nullopt;
  }
};

}  // namespace platform
