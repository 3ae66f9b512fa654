#pragma once

#include <memory>

#include "platform/sound/AudioDevice.h"

namespace platform {

/// A module's audio device. The first call loads the module: cubeb's pulls in a sound server's
/// client and twenty other libraries. If the module or one of its libraries is missing, no input or
/// output is available, which is logged once. `moduleName` must outlive the device.
///
/// Threads: any; those of AudioDevice for the device. Real-time: not safe.
[[nodiscard]] std::shared_ptr<AudioDevice> lateAudioDevice(const char* moduleName = "orvo-cubeb");

}  // namespace platform
