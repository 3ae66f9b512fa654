#pragma once

#include <future>
#include <memory>

#include "platform/sound/AudioClock.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/AudioQueue.h"

namespace platform {

class DeviceThread;
class RecentFailure;
class SharedInput;
class StallWatch;

/// The audio queues of the process, on a sound device: the real CubebAudioDevice, or a
/// ScriptedAudioDevice in tests. docs/sound.md describes how its threads and rings work together.
///
/// One control thread makes every call to the device. A call may hang; no caller waits for it more
/// than 250 ms. No other thread may call the device's AudioDevice operations.
///
/// Threads: any. Real-time: not safe.
class DeviceAudioQueues final : public AudioQueues {
 public:
  explicit DeviceAudioQueues(
      std::shared_ptr<AudioDevice> device,
      std::shared_ptr<AudioClock> clock = std::make_shared<SteadyAudioClock>());

  /// Closes the device once the last queue is destroyed too. Waits at most 250 ms; a hanging
  /// control thread is abandoned with everything that it may still use, and ends with the process.
  ~DeviceAudioQueues() override;

  /// Starts connecting to the sound system and opening the input device ahead of the first queue,
  /// which then does not wait for it. Returns at once. A valid `start` delays this and all later
  /// device work until it is ready or its promise is destroyed. The input is closed again if no
  /// queue uses it within 3 s.
  void prepareInput(std::future<void> start = {});

  [[nodiscard]] AudioStatus completeFormat(AudioStreamBasicDescription& format) const override;
  [[nodiscard]] NewInput newInput(const AudioStreamBasicDescription& format,
                                  AudioInputQueue::Callback callback,
                                  AudioInputQueue::FailureListener failed) override;
  [[nodiscard]] NewOutput newOutput(const AudioStreamBasicDescription& format,
                                    AudioOutputQueue::Callback callback) override;
  [[nodiscard]] bool claimInputFailureAlert() override;
  [[nodiscard]] AudioInputSource inputSource() const override;
  [[nodiscard]] std::uint64_t inputSourceRevision() const override;
  [[nodiscard]] AudioInputSource lostInput() const override;

 private:
  // Fixed after construction.
  const std::shared_ptr<AudioClock> clock_;
  const std::shared_ptr<DeviceThread> deviceThread_;
  const std::shared_ptr<StallWatch> stallWatch_;  // no other object owns it
  const std::shared_ptr<SharedInput> input_;
  const std::shared_ptr<RecentFailure> outputFailure_;
};

}  // namespace platform
