#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The address of the file at `path`, an absolute path of any bytes but NUL: "file://" and the path
/// with every byte percent-encoded that is not a letter, a digit or one of !$&'()*+,-./:=@_~. That
/// is byte for byte what GLib makes of it, so programs agree on the address of a file.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string fileAddressOf(std::string_view path);

/// The path that a file address on this machine stands for; nothing for other schemes, other
/// machines, relative paths and broken escapes.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<std::string> pathOfFileAddress(std::string_view address);

}  // namespace platform
