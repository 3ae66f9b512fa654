#pragma once

#include <string>

namespace platform {

/// The path from the root for one that counts from the working folder, without "." and "..". Where
/// a name before ".." is a link, the file system says what it leads to. Empty for what is no path,
/// and for a relative one where there is no working folder any more.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string absolutePathOf(const std::string& path);

}  // namespace platform
