#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/sound/AudioDevice.h"

namespace platform {

/// A sound device that a test drives: the test feeds captured samples, takes played samples, moves
/// the playing position, and makes the device fail or hang.
///
///     auto device = std::make_shared<ScriptedAudioDevice>();
///     auto queues = std::make_shared<DeviceAudioQueues>(device);
///     Installed<AudioQueues>::Scope installation(queues);
///     … make a recorder …
///     ASSERT_TRUE(device->awaitInputOpen());
///     device->feed(samples);          // whole blocks of 4096 frames reach the recorder
///
///     … make a player, play() …
///     ASSERT_TRUE(device->awaitOutputRunning());
///     auto played = device->pull(1024);   // the player's callback runs for these frames
///     device->hearEverything();           // and a drain ends
///
/// feed() and pull() run the real-time callback on the calling thread and return after it. The
/// queue's own thread runs the recorder's or player's callback a moment later, so a test waits for
/// the result (AudioInputQueue::waitUntilDelivered(), or a condition). The queues' control thread
/// opens, starts and closes streams asynchronously: the await… functions wait for that, up to 20 s
/// of real time, and return whether it happened.
///
/// Output streams are numbered from 0 in the order of opening; kNewest is the last one still open.
///
/// Threads: any, concurrently; feed() on one thread at a time, as with a real device.
/// Real-time: not safe.
class ScriptedAudioDevice final : public AudioDevice {
 public:
  static constexpr std::size_t kNewest = static_cast<std::size_t>(-1);

  ScriptedAudioDevice();
  ~ScriptedAudioDevice() override;

  // --- Called by the queues.

  [[nodiscard]] Input openInput(AudioInputClient& client) override;
  [[nodiscard]] Output openOutput(AudioOutputClient& client) override;
  void prepare() override;
  void setInputsChangedHandler(std::function<void()> changed) override;
  [[nodiscard]] std::optional<std::vector<AudioInputDevice>> inputs() override;

  // --- Inputs. There is one at the beginning, the default, "mic" with the name "Microphone".

  /// Replaces the list of inputs, and notifies of it. Nothing: the sound system does not answer.
  void setInputs(std::optional<std::vector<AudioInputDevice>> inputs);
  /// The same without a notice.
  void setInputsSilently(std::optional<std::vector<AudioInputDevice>> inputs);
  /// The open stream, and every one opened from now on, captures from the input with this id. Not
  /// notified: the sound system moves a stream silently.
  void moveInput(const std::string& id);
  /// From now on inputs() alone blocks until release().
  void hangListing();
  /// Calls of inputs().
  [[nodiscard]] std::size_t looksAtInputs() const;

  // --- Input.

  /// Captures `frames` interleaved stereo frames, any number. False, without effect, while no input
  /// stream is open.
  bool feed(const float* samples, std::uint32_t frames);
  bool feed(const std::vector<float>& samples);

  /// Captures `frames` frames with the same two sample values.
  bool feedConstant(std::uint32_t frames, float left, float right);

  /// The open input stream fails with `status`, as when the device is unplugged.
  void failInput(AudioStatus status);

  /// Every openInput() from now on fails with `status`; kAudioStatusOk lets them succeed again.
  void failOpeningInput(AudioStatus status);

  [[nodiscard]] bool isInputOpen() const;
  [[nodiscard]] bool awaitInputOpen() const;
  [[nodiscard]] bool awaitInputClosed() const;

  /// Streams opened and closed since construction, and failed calls of openInput().
  [[nodiscard]] std::size_t inputsOpened() const;
  [[nodiscard]] std::size_t inputsClosed() const;
  [[nodiscard]] std::size_t inputsRefused() const;

  // --- Output.

  /// Requests `frames` frames and returns the 2 × `frames` samples received. Empty if the stream
  /// does not exist or is not running.
  std::vector<float> pull(std::uint32_t frames, std::size_t stream = kNewest);

  /// Moves AudioOutputStream::position() by `frames` frames heard, at most to the last one pulled.
  void hear(std::uint64_t frames, std::size_t stream = kNewest);
  void hearEverything(std::size_t stream = kNewest);

  /// The open output stream fails with `status`.
  void failOutput(AudioStatus status, std::size_t stream = kNewest);

  /// Every openOutput(), or start() of an output, from now on fails with `status`;
  /// kAudioStatusOk lets them succeed again.
  void failOpeningOutput(AudioStatus status);
  void failStartingOutput(AudioStatus status);

  /// Whether the stream is open and started.
  [[nodiscard]] bool isOutputRunning(std::size_t stream = kNewest) const;
  [[nodiscard]] bool awaitOutputRunning(std::size_t stream = kNewest) const;
  [[nodiscard]] bool awaitOutputStopped(std::size_t stream = kNewest) const;

  [[nodiscard]] std::size_t outputsOpened() const;
  [[nodiscard]] std::size_t outputsClosed() const;
  [[nodiscard]] bool awaitOutputsClosed(std::size_t count) const;

  // --- Both.

  /// From now on every call to the device or its streams (opening, starting, stopping, closing,
  /// reading the position) blocks until release(), as with a hanging server. Release before the
  /// test ends; otherwise the blocked control thread is left over.
  void hang();
  void release();

  /// Waits until a call blocks.
  [[nodiscard]] bool awaitHanging() const;

  /// Calls of prepare() since construction.
  [[nodiscard]] std::size_t preparations() const;

 private:
  struct Script;
  struct InputEnd;
  struct OutputEnd;
  class InputStream;
  class OutputStream;

  const std::shared_ptr<Script> script_;
};

}  // namespace platform
