#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "platform/desktop/XbelBookmarks.h"

namespace platform {

using XbelTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// What an application says about a document that it has opened.
struct XbelRegistration {
  std::string path;         ///< of the document, absolute
  std::string mimeType;     ///< for an entry that has no metadata yet
  std::string application;  ///< its name
  std::string command;      ///< that opens a document, quoted for a shell, with %u for its address
  XbelTime time;
};

/// The text of a list with a registration in it. The entry of the same file is brought up to date
/// (its times, and the application's time, count and command), or a new one is appended; everything
/// else in the text stays to the byte. An empty text counts as an empty list. Nothing when the text
/// is not a list (readXbel).
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::optional<std::string> withRegistration(std::string_view text,
                                                          const XbelRegistration& registration);

/// When the application last registered an entry: the beginning of 1970 where that is not told or
/// cannot be read.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] XbelTime registrationTimeOf(const XbelBookmark& bookmark);

}  // namespace platform
