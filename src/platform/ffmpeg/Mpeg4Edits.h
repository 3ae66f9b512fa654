#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ffmpeg/AudioFileView.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {

/// Which stretches of a track's media its edit list plays, in time scale units of the media. A
/// delay before the sound (an empty edit) is not among them: the sound begins at once.
class Mpeg4Edits {
 public:
  static constexpr std::int64_t kToTheEnd = std::numeric_limits<std::int64_t>::max();

  struct Stretch {
    std::int64_t begin = 0;
    std::int64_t end = kToTheEnd;

    friend bool operator==(const Stretch&, const Stretch&) = default;
  };

  /// Plays everything.
  Mpeg4Edits() = default;
  /// `stretches` are in order and apart.
  explicit Mpeg4Edits(std::vector<Stretch> stretches) : stretches_(std::move(stretches)) {}

  [[nodiscard]] const std::vector<Stretch>& stretches() const { return stretches_; }

  /// The same in units of `to`, where these are units of `from`.
  [[nodiscard]] Mpeg4Edits rescaled(AVRational from, AVRational to) const;

  /// Length of what is played of media of this length.
  [[nodiscard]] std::int64_t lengthOf(std::int64_t media) const;

  /// The part of `count` units from `begin` on that is played: the first, if there are several.
  /// nullopt for none.
  [[nodiscard]] std::optional<Stretch> playedPart(std::int64_t begin, std::int64_t count) const;

  /// Whether nothing is played from `position` on.
  [[nodiscard]] bool isOverAt(std::int64_t position) const;

 private:
  std::vector<Stretch> stretches_{Stretch{}};
};

/// The edit lists of a file's tracks, by the track's number. Tracks without one are left out.
/// nullopt if the file is no MPEG-4, or if a track repeats or reverses its media, or plays it at
/// another speed, which reading it once from start to end cannot follow.
///
/// An end that differs from that of the media by no more than the time scale of the edit lists,
/// which is often coarse, is kToTheEnd. Threads: any, one at a time. Real-time: not safe.
[[nodiscard]] std::optional<std::map<std::uint32_t, Mpeg4Edits>> readMpeg4Edits(
    AudioFileView& view);

}  // namespace platform
