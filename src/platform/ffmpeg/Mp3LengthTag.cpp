#include "platform/ffmpeg/Mp3LengthTag.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

std::uint8_t byteAt(std::string_view bytes, std::size_t place) {
  return static_cast<std::uint8_t>(bytes[place]);
}

// Offset behind the tags at the file's start.
std::uint64_t afterId3(AudioFileView& view) {
  constexpr std::size_t kHeader = 10;
  constexpr std::uint8_t kHasFooter = 0x10;
  constexpr int kMostTags = 100;
  std::uint64_t offset = 0;
  for (int i = 0; i < kMostTags; ++i) {
    const std::string header = view.peek(offset, kHeader);
    if (header.size() < kHeader || header.compare(0, 3, "ID3") != 0) {
      break;
    }
    std::uint64_t size = 0;
    for (std::size_t place = 6; place < kHeader; ++place) {
      size = size << 7 | (byteAt(header, place) & 0x7FU);
    }
    offset += kHeader + size + ((byteAt(header, 5) & kHasFooter) != 0 ? kHeader : 0);
  }
  return offset;
}

// Where the tag stands in a packet that begins here; 0 if none does.
std::size_t tagPlace(std::string_view bytes) {
  constexpr std::size_t kHeader = 4;
  if (bytes.size() < kHeader || byteAt(bytes, 0) != 0xFF || (byteAt(bytes, 1) & 0xE6U) != 0xE2U) {
    return 0;  // not the sync of a layer III packet
  }
  const bool isMpeg1 = (byteAt(bytes, 1) & 0x18U) == 0x18U;
  const bool isMono = (byteAt(bytes, 3) & 0xC0U) == 0xC0U;
  const std::size_t sideInformation = isMpeg1 ? (isMono ? 17 : 32) : (isMono ? 9 : 17);
  return kHeader + sideInformation;
}

std::optional<Mp3LengthTag> parse(std::string_view tag) {
  constexpr std::size_t kFlags = 4;
  constexpr std::array<std::size_t, 4> kOptional{4, 4, 100, 4};  // frames, bytes, seeking, quality
  constexpr std::size_t kToDelays = 21;                          // from the encoder's name
  constexpr std::int64_t kDecoderDelay = 529;
  std::size_t encoder = 8;
  if (tag.size() < encoder) {
    return std::nullopt;
  }
  for (std::size_t bit = 0; bit < kOptional.size(); ++bit) {
    encoder += (AV_RB32(tag.data() + kFlags) >> bit & 1U) != 0 ? kOptional[bit] : 0;
  }
  if (tag.size() < encoder + kToDelays + 3) {
    return std::nullopt;
  }
  const std::string_view name = tag.substr(encoder, 4);
  if (name != "LAME" && name != "Lavf" && name != "Lavc") {
    return std::nullopt;
  }
  const auto delays = static_cast<std::uint32_t>(AV_RB24(tag.data() + encoder + kToDelays));
  return Mp3LengthTag{
      .atStart = std::int64_t{delays >> 12} + kDecoderDelay,
      .atEnd = std::max<std::int64_t>(std::int64_t{delays & 0xFFFU} - kDecoderDelay, 0)};
}

}  // namespace

std::optional<Mp3LengthTag> readMp3LengthTag(AudioFileView& view) {
  constexpr std::size_t kSync = 2;
  const std::uint64_t begin = afterId3(view);
  const std::string sync = view.peek(begin, kSync);
  if (begin == 0 && (sync.size() < kSync || byteAt(sync, 0) != 0xFF)) {
    return std::nullopt;  // another kind of file
  }
  const std::string start = view.peek(begin, AudioFileView::kPeekBytes);
  const std::string_view bytes = start;
  for (std::size_t place = 0; place < bytes.size(); ++place) {
    const std::size_t tag = tagPlace(bytes.substr(place));
    const std::string_view found =
        tag > 0 && bytes.size() - place > tag ? bytes.substr(place + tag) : std::string_view();
    if (found.substr(0, 4) == "Xing" || found.substr(0, 4) == "Info") {
      return parse(found);
    }
  }
  return std::nullopt;
}

}  // namespace platform
