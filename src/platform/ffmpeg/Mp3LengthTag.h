#pragma once

#include <cstdint>
#include <optional>

#include "platform/ffmpeg/AudioFileView.h"

namespace platform {

/// How many frames of an MP3 stream an encoder added around the sound, as the tag in the stream's
/// first packet tells.
struct Mp3LengthTag {
  std::int64_t atStart = 0;
  std::int64_t atEnd = 0;

  friend bool operator==(const Mp3LengthTag&, const Mp3LengthTag&) = default;
};

/// Finds the tag; nullopt if there is none, or if no encoder is named in it that is known to tell
/// the truth.
///
/// Threads: any, one at a time. Real-time: not safe.
[[nodiscard]] std::optional<Mp3LengthTag> readMp3LengthTag(AudioFileView& view);

}  // namespace platform
