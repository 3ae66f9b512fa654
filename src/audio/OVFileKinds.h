#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/mainloop/Localization.h"

/// A kind of file that documents can be saved as. Reading ignores a file's name: the content
/// decides.
struct OVFileKind {
  std::int32_t type;        ///< its number in the file writer, 0 to 3
  platform::TextKey title;  ///< shown in the save panel
};

/// The four kinds in the order offered: WAV, AIFF, CAF, AAC.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::span<const OVFileKind> writableFileKinds();

/// The kind of this type; null for none.
[[nodiscard]] const OVFileKind* fileKindOfType(std::int32_t type);

/// The type for a file's suffix, ignoring case; -1 if files with it cannot be written.
[[nodiscard]] std::int32_t fileTypeOfPath(const std::string& path);

/// The suffixes of a kind, without the dot, most common first.
[[nodiscard]] std::vector<std::string> suffixesOfType(std::int32_t type);

/// The suffixes that open and import panels accept, in that order.
[[nodiscard]] const std::vector<std::string>& readableFileTypes();

/// The MIME type for a file's suffix, ignoring case; empty if files with it cannot be read.
[[nodiscard]] std::string mimeTypeOfPath(const std::string& path);

/// A file's name without its folder, and without its folder and suffix.
[[nodiscard]] std::string lastPathComponent(const std::string& path);
[[nodiscard]] std::string nameWithoutSuffix(const std::string& path);
