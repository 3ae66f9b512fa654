#pragma once

#include <string>

/// A fresh path in the user's temporary directory that begins with "velmar_"; the file is not made.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string freshTemporaryPath();
