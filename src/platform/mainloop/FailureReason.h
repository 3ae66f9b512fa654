#pragma once

#include <string>

namespace platform {

/// Why a file could not be read or written, in the user's language and in plain words: a sentence
/// for the errno values that a user meets, the system's own text for any other.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string failureReason(int error);

}  // namespace platform
