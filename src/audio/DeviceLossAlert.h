#pragma once

#include <string>

#include "audio/DeviceFailure.h"
#include "platform/base/AudioTypes.h"

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

/// Seconds for which losses are gathered: devices of one server are lost within milliseconds, and
/// stall within one interval of the watch.
inline constexpr double kDeviceLossGathered = 0.75;
