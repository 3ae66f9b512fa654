#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Failures of the sound device, as opposed to wrong calls.
///
/// Threads: any. Real-time: not safe.

/// Whether a status from creating or starting a queue comes from the device or its sound system.
/// False for success, the queue's own refusals (wrong parameter, wrong state) and a missing thread.
[[nodiscard]] bool isDeviceFailure(platform::AudioStatus status);

/// Plain, localised words for a failed input or output: what happened, what to do, what is kept.
/// Empty for a status without a meaning for users.
[[nodiscard]] std::string inputFailureReason(platform::AudioStatus status);
[[nodiscard]] std::string outputFailureReason(platform::AudioStatus status);
