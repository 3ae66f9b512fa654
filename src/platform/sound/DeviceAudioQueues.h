#pragma once

#include <future>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/sound/AudioClock.h"
#include "platform/sound/AudioDevice.h"
#include "platform/sound/AudioQueue.h"

namespace platform {

class DeviceThread;
class RecentFailure;
class SharedInput;

/// The audio queues of the process, on a sound device: the real CubebAudioDevice, or a
/// ScriptedAudioDevice in tests. docs/sound.md tells how its threads and rings work together.
///
/// One control thread makes every call of the device. It may hang inside for as long as it likes:
/// nobody waits for it more than 250 ms. The device must be given up to it, that is, nobody else
/// may call its AudioDevice operations.
///
/// Threads: any. Real-time: not safe.
class DeviceAudioQueues final : public AudioQueues {
 public:
  explicit DeviceAudioQueues(
      std::shared_ptr<AudioDevice> device,
      std::shared_ptr<AudioClock> clock = std::make_shared<SteadyAudioClock>());

  /// Closes what is open, once the last queue is gone as well. Waits at most 250 ms; a control
  /// thread that hangs is left behind with all that it may still touch, and ends with the process.
  ~DeviceAudioQueues() override;

  /// Begins to open the input device and to connect to the sound system, ahead of the first queue,
  /// which then does not wait for it; returns at once. With a `start` it begins when that is ready
  /// or its promise is gone, and whatever else the device is to do comes after it. Without a queue
  /// in the 3 s after the opening the input is closed again.
  void prepareInput(std::future<void> start = {});

  [[nodiscard]] AudioStatus completeFormat(AudioStreamBasicDescription& format) const override;
  [[nodiscard]] NewInput newInput(const AudioStreamBasicDescription& format,
                                  AudioInputQueue::Callback callback,
                                  AudioInputQueue::FailureListener failed) override;
  [[nodiscard]] NewOutput newOutput(const AudioStreamBasicDescription& format,
                                    AudioOutputQueue::Callback callback) override;
  [[nodiscard]] bool claimInputFailureAlert() override;
  [[nodiscard]] bool claimDeviceLossAlert() override;

 private:
  // Fixed after construction.
  const std::shared_ptr<AudioClock> clock_;
  const std::shared_ptr<DeviceThread> deviceThread_;
  const std::shared_ptr<SharedInput> input_;
  const std::shared_ptr<RecentFailure> outputFailure_;

  std::mutex mutex_;
  // guarded by mutex_
  std::optional<AudioClock::TimePoint> lossToldAt_;
};

}  // namespace platform
