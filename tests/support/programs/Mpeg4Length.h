#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "support/programs/AudioFileTools.h"

namespace support {

/// Replaces the time scale and the length, in units of it, in the header of an MPEG-4 file; false
/// if there is none. Readers do not know a length of 0 before the end of the file.
///
/// Threads: any one at a time.
[[nodiscard]] inline bool setMpeg4Length(const std::string& path, std::uint32_t timeScale,
                                         std::uint32_t length) {
  constexpr std::size_t kTimeScale = 16;  // after the name, version and flags, and two dates
  std::string bytes = fileBytes(path);
  const std::size_t box = bytes.find("mdhd");
  if (box == std::string::npos) {
    return false;
  }
  std::string fields;
  for (const std::uint32_t field : {timeScale, length}) {
    for (const int shift : {24, 16, 8, 0}) {
      fields.push_back(static_cast<char>(field >> shift & 0xFF));
    }
  }
  bytes.replace(box + kTimeScale, fields.size(), fields);
  return writeBytes(path, bytes);
}

}  // namespace support
