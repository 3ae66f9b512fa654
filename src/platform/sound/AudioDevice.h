#pragma once

#include <cstdint>
#include <memory>

#include "platform/base/AudioTypes.h"
#include "platform/base/Result.h"

/// The seam between the audio queues and a sound system. The real one is CubebAudioDevice; the
/// scripted one lets a test feed samples, take what was played, turn the clock and make it fail.
namespace platform {

/// Receives what the input device captures.
class AudioInputClient {
 public:
  virtual ~AudioInputClient() = default;

  /// `frames` interleaved frames of kWorkingFormat, valid during the call only. Any count.
  ///
  /// Threads: the device's real-time thread, never two calls at once.
  /// Real-time: must be safe: no lock, no allocation, no file, no log.
  virtual void deviceCaptured(const float* samples, std::uint32_t frames) noexcept = 0;

  /// The stream has ended by itself with this status; no more data will come.
  ///
  /// Threads: any thread of the device. Real-time: must only store and wake.
  virtual void deviceInputFailed(AudioStatus status) noexcept = 0;
};

/// Supplies what the output device plays.
class AudioOutputClient {
 public:
  virtual ~AudioOutputClient() = default;

  /// Fills all `frames` interleaved frames of kWorkingFormat, with silence where nothing is left.
  ///
  /// Threads: the device's real-time thread, never two calls at once.
  /// Real-time: must be safe: no lock, no allocation, no file, no log.
  virtual void deviceWants(float* samples, std::uint32_t frames) noexcept = 0;

  /// The stream has ended by itself with this status; no more data will be asked for.
  ///
  /// Threads: any thread of the device. Real-time: must only store and wake.
  virtual void deviceOutputFailed(AudioStatus status) noexcept = 0;
};

/// An open input stream, running from its creation on; its destruction ends it, after which the
/// client is not called any more.
///
/// Threads: the control thread of the audio queues. Every call may block for long.
class AudioInputStream {
 public:
  virtual ~AudioInputStream() = default;
};

/// An open output stream, stopped at first; its destruction drops what is queued and ends it,
/// after which the client is not called any more.
///
/// Threads: the control thread of the audio queues. Every call may block for long.
class AudioOutputStream {
 public:
  virtual ~AudioOutputStream() = default;

  [[nodiscard]] virtual AudioStatus start() = 0;

  /// Keeps what is queued; start() resumes sample for sample.
  [[nodiscard]] virtual AudioStatus stop() = 0;

  /// Frames heard since the stream was made, silence included. Frames given to the device and not
  /// yet heard are not counted.
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
};

}  // namespace platform
