#pragma once

#include <cstdio>
#include <optional>

namespace platform {

/// The width of the terminal that a stream leads to, in columns; nothing if it leads elsewhere, or
/// the terminal does not say.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<int> terminalColumns(std::FILE* stream);

}  // namespace platform
