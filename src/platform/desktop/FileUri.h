#pragma once

#include <optional>
#include <string>

namespace platform {

/// The file URI of an absolute path, the same as every GLib program uses, with every byte
/// preserved. Empty for a relative path.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string fileUriOf(const std::string& path);

/// The path of a local file URI; nothing for other schemes, other hosts, relative paths and invalid
/// escapes.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<std::string> pathOfFileUri(const std::string& uri);

}  // namespace platform
