#pragma once

#include "platform/base/LateLibrary.h"

/// FFmpeg's libraries, loaded when something first asks for them. They bring a hundred other
/// libraries along; linked in, they would cost every start of the program more time than the whole
/// window does, and most starts only record.
///
/// Threads: any; a call during the loading waits for its end. Real-time: not safe.
namespace platform::mediaLibrary {

extern LateLibrary util;
extern LateLibrary resample;
extern LateLibrary codec;
extern LateLibrary format;

/// Loads all four unless that was done. False when one is missing, every time.
[[nodiscard]] bool load();

}  // namespace platform::mediaLibrary
