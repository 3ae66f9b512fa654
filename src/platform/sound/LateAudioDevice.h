#pragma once

#include <memory>

#include "platform/sound/AudioDevice.h"

namespace platform {

/// The audio device of a module, which its first call loads: cubeb's comes with a sound server's
/// client and twenty other libraries. Where the module or a library of it is missing, no input or
/// output is available, and that is logged once. `moduleName` must outlive the device.
///
/// Threads: any; those of AudioDevice for the device. Real-time: not safe.
[[nodiscard]] std::shared_ptr<AudioDevice> lateAudioDevice(const char* moduleName = "orvo-cubeb");

}  // namespace platform
