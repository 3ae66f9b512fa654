#pragma once

#include <cstddef>

namespace platform {

/// Opens /dev/null as each of the standard streams that is closed, so that no file of the program
/// becomes standard error and receives its lines. Call it before any file is opened.
///
/// Threads: main. Real-time: not safe.
void occupyStandardStreams();

/// The number of open files that the program asks for. Far below what makes a program slow that
/// closes every descriptor before it starts another.
inline constexpr std::size_t kWantedDescriptors = 8192;

/// Raises the limit of open files to kWantedDescriptors, or as far as the system permits. Never
/// lowers it.
///
/// Threads: main. Real-time: not safe.
void raiseDescriptorLimit();

/// Whether at least `count` further files can be opened, as far as the limit is concerned.
///
/// Threads: any; another thread may open files meanwhile. Real-time: not safe.
[[nodiscard]] bool hasFreeDescriptors(std::size_t count);

}  // namespace platform
