#pragma once

#include <string>

/// A fresh path in the user's temporary directory, with a name beginning "velmar_". Makes no file.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string freshTemporaryPath();
