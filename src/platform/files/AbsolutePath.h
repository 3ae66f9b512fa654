#pragma once

#include <string>

namespace platform {

/// The absolute path for a path relative to the working directory, without "." and "..". A symbolic
/// link before ".." is resolved through the file system. Empty for an invalid path, and for a
/// relative one when the working directory no longer exists.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string absolutePathOf(const std::string& path);

}  // namespace platform
