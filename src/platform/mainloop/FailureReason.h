#pragma once

#include <string>

namespace platform {

/// Why a file could not be read or written, as a sentence in the user's language for common errno
/// values, and the system's text for any other.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string failureReason(int error);

}  // namespace platform
