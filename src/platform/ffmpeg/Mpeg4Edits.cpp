#include "platform/ffmpeg/Mpeg4Edits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace platform {
namespace {

constexpr int kMaxBoxes = 1000;  // in one place; a movie in fragments begins with its header
constexpr std::uint64_t kMaxEdits = 4000;
constexpr std::int64_t kEmptyEdit = -1;
constexpr std::uint64_t kLongest = std::uint64_t{1} << 50;  // units: sums must not overflow
constexpr std::uint32_t kNormalSpeed = 0x10000;
// Stretches that are closer than a packet could begin and end within one.
constexpr std::int64_t kLongestPacket = 8192;

struct Box {
  std::string type;
  std::uint64_t begin = 0;  // of its content
  std::uint64_t end = 0;
};

std::optional<Box> boxAt(AudioFileView& view, std::uint64_t offset, std::uint64_t end) {
  constexpr std::size_t kShort = 8;
  constexpr std::size_t kLong = 16;
  const std::string header = view.peek(offset, kLong);
  if (header.size() < kShort || end - offset < kShort) {
    return std::nullopt;
  }
  std::uint64_t size = AV_RB32(header.data());
  std::uint64_t begin = offset + kShort;
  if (size == 1 && header.size() == kLong) {
    size = AV_RB64(header.data() + kShort);
    begin = offset + kLong;
  } else if (size == 0) {
    size = end - offset;
  }
  if (size < begin - offset || size > end - offset) {
    return std::nullopt;
  }
  return Box{.type = header.substr(4, 4), .begin = begin, .end = offset + size};
}

// Calls `visit` for each box until it returns false.
void forEachBox(AudioFileView& view, std::uint64_t begin, std::uint64_t end,
                const std::function<bool(const Box&)>& visit) {
  for (int i = 0; i < kMaxBoxes && begin < end; ++i) {
    const auto box = boxAt(view, begin, end);
    if (!box || !visit(*box)) {
      return;
    }
    begin = box->end;
  }
}

std::optional<Box> findBox(AudioFileView& view, const Box& parent, const char* type) {
  std::optional<Box> found;
  forEachBox(view, parent.begin, parent.end, [&](const Box& box) {
    if (box.type == type) {
      found = box;
    }
    return !found;
  });
  return found;
}

// Numbers of a box that has a version, which decides their sizes.
class Fields {
 public:
  Fields(AudioFileView& view, const Box& box)
      : bytes_(view.peek(box.begin, static_cast<std::size_t>(std::min<std::uint64_t>(
                                        box.end - box.begin, AudioFileView::kPeekBytes)))),
        isLong_(!bytes_.empty() && bytes_[0] == 1) {}

  std::uint32_t next32() {
    const char* const place = take(4);
    return place != nullptr ? AV_RB32(place) : 0;
  }
  // 64 bits in version 1.
  std::uint64_t nextTime() {
    if (!isLong_) {
      return next32();
    }
    const char* const place = take(8);
    return place != nullptr ? AV_RB64(place) : 0;
  }
  std::int64_t nextSignedTime() {
    return isLong_ ? static_cast<std::int64_t>(nextTime())
                   : std::int64_t{static_cast<std::int32_t>(next32())};
  }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  const char* take(std::size_t count) {
    failed_ = failed_ || bytes_.size() - place_ < count;
    if (failed_) {
      return nullptr;
    }
    place_ += count;
    return bytes_.data() + place_ - count;
  }

  const std::string bytes_;
  const bool isLong_;
  std::size_t place_ = 4;  // after version and flags
  bool failed_ = bytes_.size() < place_;
};

struct TimeScale {
  std::int64_t unitsPerSecond = 0;
  std::int64_t duration = 0;
};

// Of mvhd and mdhd, which begin alike.
TimeScale timeScaleOf(AudioFileView& view, const Box& header) {
  Fields fields(view, header);
  static_cast<void>(fields.nextTime());  // dates
  static_cast<void>(fields.nextTime());
  const std::int64_t units = fields.next32();
  const std::uint64_t duration = fields.nextTime();
  if (fields.failed() || duration > kLongest) {
    return {};
  }
  return {.unitsPerSecond = units, .duration = static_cast<std::int64_t>(duration)};
}

// nullopt for a list that cannot be followed.
std::optional<Mpeg4Edits> readEdits(AudioFileView& view, const Box& list, std::int64_t movieUnits,
                                    const TimeScale& media) {
  Fields fields(view, list);
  const std::uint32_t count = fields.next32();
  if (count > kMaxEdits || movieUnits <= 0 || media.unitsPerSecond <= 0) {
    return std::nullopt;
  }
  const std::int64_t rounding = media.unitsPerSecond / movieUnits + 1;
  std::vector<Mpeg4Edits::Stretch> stretches;
  std::int64_t last = -kLongestPacket;  // end of the stretch before
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t duration = fields.nextTime();
    const std::int64_t begin = fields.nextSignedTime();
    const std::uint32_t speed = fields.next32();
    if (fields.failed() || speed != kNormalSpeed || duration > kLongest ||
        last == Mpeg4Edits::kToTheEnd) {
      return std::nullopt;
    }
    if (begin == kEmptyEdit) {
      continue;
    }
    const std::int64_t length =
        av_rescale(static_cast<std::int64_t>(duration), media.unitsPerSecond, movieUnits);
    if (begin < last + kLongestPacket || length < 0 ||
        begin > static_cast<std::int64_t>(kLongest) || length > Mpeg4Edits::kToTheEnd / 4) {
      return std::nullopt;
    }
    last = duration == 0 || begin + length + rounding >= media.duration ? Mpeg4Edits::kToTheEnd
                                                                        : begin + length;
    stretches.push_back({.begin = begin, .end = last});
  }
  return stretches.empty() ? Mpeg4Edits() : Mpeg4Edits(std::move(stretches));
}

// Adds the track's edits; false for a list that cannot be followed.
bool addTrack(AudioFileView& view, const Box& track, std::int64_t movieUnits,
              std::map<std::uint32_t, Mpeg4Edits>& edits) {
  const auto list = findBox(view, track, "edts");
  const auto entries = list ? findBox(view, *list, "elst") : std::nullopt;
  const auto header = findBox(view, track, "tkhd");
  const auto media = findBox(view, track, "mdia");
  const auto mediaHeader = media ? findBox(view, *media, "mdhd") : std::nullopt;
  if (!entries || !header || !mediaHeader) {
    return true;
  }
  Fields fields(view, *header);
  static_cast<void>(fields.nextTime());  // dates
  static_cast<void>(fields.nextTime());
  const std::uint32_t number = fields.next32();
  const auto read = readEdits(view, *entries, movieUnits, timeScaleOf(view, *mediaHeader));
  if (read) {
    edits[number] = *read;
  }
  return read.has_value();
}

}  // namespace

Mpeg4Edits Mpeg4Edits::rescaled(AVRational from, AVRational to) const {
  std::vector<Stretch> stretches = stretches_;
  for (Stretch& each : stretches) {
    each.begin = av_rescale_q(each.begin, from, to);
    each.end = each.end == kToTheEnd ? kToTheEnd : av_rescale_q(each.end, from, to);
  }
  return Mpeg4Edits(std::move(stretches));
}

std::int64_t Mpeg4Edits::lengthOf(std::int64_t media) const {
  std::int64_t length = 0;
  for (const Stretch& each : stretches_) {
    length += std::max<std::int64_t>(std::min(each.end, media) - each.begin, 0);
  }
  return length;
}

std::optional<Mpeg4Edits::Stretch> Mpeg4Edits::playedPart(std::int64_t begin,
                                                          std::int64_t count) const {
  for (const Stretch& each : stretches_) {
    const std::int64_t from = std::max(begin, each.begin);
    const std::int64_t to = std::min(begin + count, each.end);
    if (from < to) {
      return Stretch{.begin = from, .end = to};
    }
  }
  return std::nullopt;
}

bool Mpeg4Edits::isOverAt(std::int64_t position) const {
  return position >= stretches_.back().end;
}

std::optional<std::map<std::uint32_t, Mpeg4Edits>> readMpeg4Edits(AudioFileView& view) {
  constexpr std::array<std::string_view, 8> kFirst{"ftyp", "moov", "mdat", "free",
                                                   "skip", "wide", "pnot", "styp"};
  const std::string start = view.peek(0, 8);
  if (start.size() < 8 ||
      std::find(kFirst.begin(), kFirst.end(), std::string_view(start).substr(4)) == kFirst.end()) {
    return std::nullopt;
  }
  const auto movie = findBox(view, {.type = {}, .begin = 0, .end = view.size()}, "moov");
  const auto header = movie ? findBox(view, *movie, "mvhd") : std::nullopt;
  if (!header) {
    return std::nullopt;
  }
  const std::int64_t units = timeScaleOf(view, *header).unitsPerSecond;
  std::map<std::uint32_t, Mpeg4Edits> edits;
  bool canBeFollowed = true;
  forEachBox(view, movie->begin, movie->end, [&](const Box& box) {
    canBeFollowed = box.type != "trak" || addTrack(view, box, units, edits);
    return canBeFollowed;
  });
  return canBeFollowed ? std::optional(edits) : std::nullopt;
}

}  // namespace platform
