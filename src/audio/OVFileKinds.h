#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/mainloop/Localization.h"

/// A kind of file that documents are saved as.
struct OVFileKind {
  std::int32_t type;        ///< the file writer's number for it, 0 to 3
  platform::TextKey title;  ///< shown in the save panel
};

/// The four kinds in the order in which they are offered: WAV, AIFF, CAF, AAC.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::span<const OVFileKind> writableFileKinds();

/// The kind of this type; null for none.
[[nodiscard]] const OVFileKind* fileKindOfType(std::int32_t type);

/// The type of the kind that a file's suffix stands for, in any case; -1 for none that can be
/// written.
[[nodiscard]] std::int32_t fileTypeOfPath(const std::string& path);

/// The suffixes of a kind, without the dot, the usual one first.
[[nodiscard]] std::vector<std::string> suffixesOfType(std::int32_t type);

/// The suffixes that open and import panels accept, in their order.
[[nodiscard]] const std::vector<std::string>& readableFileTypes();

/// The MIME type that a file's suffix stands for, in any case; empty for a file that is not
/// readable by its name.
[[nodiscard]] std::string mimeTypeOfPath(const std::string& path);

/// A file's name without its folder, and without folder and suffix.
[[nodiscard]] std::string lastPathComponent(const std::string& path);
[[nodiscard]] std::string nameWithoutSuffix(const std::string& path);
