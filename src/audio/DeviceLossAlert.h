#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "audio/DeviceFailure.h"
#include "platform/base/AudioTypes.h"
#include "platform/mainloop/Timer.h"
#include "platform/sound/AudioQueue.h"

/// Reports that a sound device was lost or has stalled: prints as CheckAudioStatus() does, and
/// alerts the user. A sound server that dies takes input and output with it, and each window's
/// recorder notices: all losses within kDeviceLossGathered are one alert, in the words of the most
/// important interruption, whatever their order. Another one soon after that alert is shown only if
/// it is more important. An input that nothing was recorded from is not alerted if another
/// microphone is there, or if it has only stalled: the next recording will show.
///
/// @param label   names the call, as in CheckAudioStatus()
/// @param status  kDeviceLostStatus or kDeviceStalledStatus
///
/// Threads: any. Real-time: not safe.
void reportDeviceLoss(OVInterrupted interrupted, platform::AudioStatus status,
                      const std::string& label);

/// Seconds for which losses are gathered: devices of one server are lost within milliseconds, one
/// that is looked at only from time to time within a second (SharedInput::kLookAtStream).
inline constexpr double kDeviceLossGathered = 1.25;

/// Gathers the losses for reportDeviceLoss().
///
/// Threads: main. Real-time: not safe.
class DeviceLossAlert {
 public:
  using Clock = std::chrono::steady_clock;

  struct Loss {
    OVInterrupted interrupted;
    platform::AudioStatus status;
    std::string label;
    std::string inputName;  ///< AudioQueues::lostInput()
  };

  /// How long an alert stands for later losses that are not more important.
  static constexpr std::chrono::seconds kRemembered{2};

  explicit DeviceLossAlert(std::function<Clock::time_point()> now = Clock::now)
      : now_(std::move(now)) {}

  /// Adds a loss of the queues' sound system. Losses of another one are dropped.
  void add(const std::shared_ptr<platform::AudioQueues>& queues, Loss loss);

 private:
  [[nodiscard]] bool wasShown(OVInterrupted interrupted) const;
  void show();

  std::function<Clock::time_point()> now_;
  std::weak_ptr<platform::AudioQueues> queues_;
  std::optional<Loss> gathered_;
  std::unique_ptr<platform::Timer> timer_;
  std::optional<OVInterrupted> shown_;
  Clock::time_point shownAt_;
};
