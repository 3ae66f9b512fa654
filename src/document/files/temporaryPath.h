#pragma once

#include <string>

/// A fresh path, named "velmar_…", in the user's temporary directory. Creates no file.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string freshTemporaryPath();
