#pragma once

#include <string>

#include "platform/base/AudioTypes.h"

/// Failures of the sound device itself, as opposed to a wrong call.
///
/// Threads: any. Real-time: not safe.

/// Whether a status of making or starting a queue comes from the device or its sound system.
/// False for success, for the queue's own refusals (wrong parameter, wrong state), and where the
/// system gave no thread.
[[nodiscard]] bool isDeviceFailure(platform::AudioStatus status);

/// Plain, localised words for a failed input or output: what happened, what to do, what is kept.
/// Empty for a status that means nothing to a user.
[[nodiscard]] std::string inputFailureReason(platform::AudioStatus status);
[[nodiscard]] std::string outputFailureReason(platform::AudioStatus status);
