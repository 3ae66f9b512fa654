#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Parts of MPEG-4 files, made by the test itself. Threads: any.
namespace support {

/// 32 bits, the highest byte first.
inline std::string number(std::uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<char>(value >> shift));
  }
  return bytes;
}

inline std::string box(const std::string& type, const std::string& content) {
  return number(static_cast<std::uint32_t>(content.size() + 8)) + type + content;
}

/// An entry of an edit list.
struct Edit {
  std::uint32_t duration = 0;      ///< in units of the movie's time scale
  std::int32_t mediaTime = 0;      ///< in units of the media's time scale; -1: nothing is played
  std::uint32_t speed = 0x1'0000;  ///< 0x10000 is the normal one
};

/// A whole edts box.
inline std::string editBox(const std::vector<Edit>& edits) {
  std::string list = number(0) + number(static_cast<std::uint32_t>(edits.size()));
  for (const Edit& each : edits) {
    list += number(each.duration) + number(static_cast<std::uint32_t>(each.mediaTime)) +
            number(each.speed);
  }
  return box("edts", box("elst", list));
}

/// A file whose moov box is at its end, with the edit lists of its tracks replaced, or added where
/// there are none.
std::string withEdits(const std::string& file, const std::vector<Edit>& edits);

}  // namespace support
