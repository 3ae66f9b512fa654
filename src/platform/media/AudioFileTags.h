#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace platform {

/// What an audio file says of its sound. Every kind of file that is written holds all but the
/// cover, see holdsCover().
enum class AudioFileTag { title, artist, album, date, comment, genre, track, cover };

/// The tags of an audio file.
struct AudioFileTags {
  /// UTF-8, never empty; without the cover.
  std::map<AudioFileTag, std::string> texts = {};
  /// A picture, as it is in the file: JPEG or PNG; empty for none.
  std::string cover = {};

  /// The tags that are there, in the order of the enumeration.
  [[nodiscard]] std::vector<AudioFileTag> all() const {
    std::vector<AudioFileTag> tags;
    for (const auto& text : texts) {
      tags.push_back(text.first);
    }
    if (!cover.empty()) {
      tags.push_back(AudioFileTag::cover);
    }
    return tags;
  }

  /// An upper bound of what they add to a file.
  [[nodiscard]] std::uint64_t byteCount() const {
    constexpr std::uint64_t kOverhead = 256;  // of each tag in any kind of file
    std::uint64_t count = cover.empty() ? 0 : cover.size() + kOverhead;
    for (const auto& text : texts) {
      count += 2 * text.second.size() + kOverhead;  // AIFF holds some twice
    }
    return count;
  }

  friend bool operator==(const AudioFileTags&, const AudioFileTags&) = default;
};

}  // namespace platform
