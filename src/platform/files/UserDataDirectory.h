#pragma once

#include <string>

namespace platform {

/// The user's data directory: XDG_DATA_HOME if it is an absolute path, otherwise .local/share in
/// the home directory. Empty if neither is known.
///
/// Threads: any, while the environment does not change. Real-time: not safe.
[[nodiscard]] std::string userDataDirectory();

}  // namespace platform
