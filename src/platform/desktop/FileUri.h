#pragma once

#include <optional>
#include <string>

namespace platform {

/// The file URI of an absolute path, every byte of it kept: the one that all programs on GLib use
/// for the file. Empty for a path that is not absolute.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string fileUriOf(const std::string& path);

/// The path of a file URI on this machine; nothing for other schemes, other machines, relative
/// paths and broken escapes.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<std::string> pathOfFileUri(const std::string& uri);

}  // namespace platform
