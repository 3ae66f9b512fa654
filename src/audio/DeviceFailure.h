#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Failures of the sound device, as opposed to wrong calls.
///
/// Threads: any. Real-time: not safe.

/// Whether a status from creating or starting a queue comes from the device or its sound system.
/// False for success, the queue's own refusals (wrong parameter, wrong state) and a missing thread.
[[nodiscard]] bool isDeviceFailure(platform::AudioStatus status);

/// What the loss of a sound device interrupted, the least important first.
enum class OVInterrupted { nothing, playback, recording };

/// Whether a device that had been opened has gone or stands still.
[[nodiscard]] bool isDeviceLoss(platform::AudioStatus status);

/// Whether the user is told of such a loss when it happens. An input that has stalled while nothing
/// used it is told of when Record is pressed, if it still stands still.
[[nodiscard]] bool isLossTold(OVInterrupted interrupted, platform::AudioStatus status);

/// Plain, localised words for an input or output that could not be opened: what happened, what to
/// do, what is kept. Empty for a status without a meaning for users.
[[nodiscard]] std::string inputFailureReason(platform::AudioStatus status);
[[nodiscard]] std::string outputFailureReason(platform::AudioStatus status);

/// The same for a device that was lost or has stalled. It says what has ended, and names the input,
/// unless `inputName`, as the sound system has it, is empty.
[[nodiscard]] std::string deviceLossReason(OVInterrupted interrupted, platform::AudioStatus status,
                                           const std::string& inputName);
