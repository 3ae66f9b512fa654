#pragma once

/// FFmpeg's libraries, loaded when something first asks for them. They bring a hundred other
/// libraries along; linked in, they would cost every start of the program more time than the whole
/// window does, and most starts only record.
///
/// Threads: any; a call during the loading waits for its end. Real-time: not safe.
namespace platform::mediaLibrary {

enum class Part { util, resample, codec, format };

/// Loads them unless that was done. False when one is missing, every time.
[[nodiscard]] bool load();

/// The address of a function; ends the program where the library is not there or lacks it, so ask
/// load() first.
[[nodiscard]] void* functionNamed(Part part, const char* name);

}  // namespace platform::mediaLibrary
