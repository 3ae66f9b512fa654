#include "platform/ffmpeg/HeaderCorrection.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr std::uint64_t kFormHeader = 12;  // "RIFF" or "FORM", size, type
constexpr std::uint64_t kChunkHeader = 8;  // name, size
constexpr std::uint64_t kWrap = std::uint64_t{1} << 32;
constexpr int kMaxChunks = 1000;

struct Chunk {
  std::string name;
  std::uint64_t offset = 0;  // of its header
  std::uint32_t bytes = 0;   // of its content

  [[nodiscard]] std::uint64_t content() const { return offset + kChunkHeader; }
  [[nodiscard]] std::uint64_t next() const { return content() + bytes + (bytes & 1U); }
};

enum class ByteOrder { little, big };

std::optional<Chunk> chunkAt(AudioFileView& view, std::uint64_t offset, ByteOrder order) {
  const std::string header = view.peek(offset, kChunkHeader);
  const bool isName =
      header.size() == kChunkHeader &&
      std::all_of(header.begin(), header.begin() + 4, [](char c) { return c >= ' ' && c <= '~'; });
  if (!isName) {
    return std::nullopt;
  }
  const char* const size = header.data() + 4;
  return Chunk{.name = header.substr(0, 4),
               .offset = offset,
               .bytes = order == ByteOrder::little ? AV_RL32(size) : AV_RB32(size)};
}

std::optional<Chunk> findChunk(AudioFileView& view, const char* name, ByteOrder order) {
  std::uint64_t offset = kFormHeader;
  for (int i = 0; i < kMaxChunks; ++i) {
    const auto chunk = chunkAt(view, offset, order);
    if (!chunk || chunk->name == name) {
      return chunk;
    }
    offset = chunk->next();
  }
  return std::nullopt;
}

// Whether nothing but whole chunks follows, or nothing at all.
bool chunksFollow(AudioFileView& view, std::uint64_t offset) {
  for (int i = 0; i < kMaxChunks && offset < view.size(); ++i) {
    const auto chunk = chunkAt(view, offset, ByteOrder::little);
    if (!chunk) {
      return false;
    }
    offset = chunk->next();
  }
  return offset == view.size() || offset == view.size() + 1;  // the last pad byte is often missing
}

std::string bigEndian(std::uint32_t value) {
  std::string bytes(4, '\0');
  AV_WB32(bytes.data(), value);
  return bytes;
}

void correctWav(AudioFileView& view) {
  const auto data = findChunk(view, "data", ByteOrder::little);
  constexpr std::uint32_t kUnknown = 0xFFFFFFFF;  // FFmpeg reads to the end then, and for 0
  if (!data || data->bytes == 0 || data->bytes == kUnknown || view.size() <= data->next()) {
    return;
  }
  const std::uint64_t present = view.size() - data->content();
  std::uint64_t samples = data->bytes;
  if (standsForUntilTheEnd(samples) && !chunksFollow(view, data->next())) {
    samples = present;
  } else if (present - samples >= kWrap) {
    samples += (present - samples) / kWrap * kWrap;
    const std::uint64_t end = data->content() + samples;
    const bool isWhole = view.size() - end <= 1 || chunksFollow(view, end + (samples & 1U));
    samples = isWhole ? samples : data->bytes;
  }
  if (samples != data->bytes) {
    view.correct(data->offset + 4, std::string(4, '\0'));
    view.endAt(data->content() + samples);
  }
}

// Samples of 24 bits that fill 32 are floating-point numbers to FFmpeg, and silence to the ear.
// They are the upper bits of integers, so all 32 can be taken for significant.
void correctSignificantBits(AudioFileView& view) {
  constexpr std::size_t kFormat = 26;  // up to the tag inside the extension
  constexpr std::uint32_t kExtensible = 0xFFFE;
  constexpr std::uint32_t kIntegers = 1;
  const auto chunk = findChunk(view, "fmt ", ByteOrder::little);
  const std::string format = chunk ? view.peek(chunk->content(), kFormat) : std::string();
  if (format.size() == kFormat && AV_RL16(format.data()) == kExtensible &&
      AV_RL16(format.data() + 24) == kIntegers &&
      AV_RL16(format.data() + 18) < AV_RL16(format.data() + 14)) {
    view.correct(chunk->content() + 18, format.substr(14, 2));
  }
}

void correctAiff(AudioFileView& view) {
  const auto common = findChunk(view, "COMM", ByteOrder::big);
  const auto sound = findChunk(view, "SSND", ByteOrder::big);
  constexpr std::uint64_t kSoundHeader = 8;  // offset and block size
  constexpr std::size_t kFormat = 8;         // channels, frames, bits
  if (!common || !sound || sound->bytes != 0 || view.size() > kWrap ||
      view.size() <= sound->content() + kSoundHeader) {
    return;
  }
  const std::string format = view.peek(common->content(), kFormat);
  if (format.size() < kFormat) {
    return;
  }
  const std::uint64_t bytes = view.size() - sound->content();
  const std::uint32_t frameBytes =
      AV_RB16(format.data()) * std::uint32_t{(AV_RB16(format.data() + 6) + 7U) / 8U};
  if (frameBytes == 0) {
    return;
  }
  view.correct(4, bigEndian(static_cast<std::uint32_t>(view.size() - kChunkHeader)));
  view.correct(sound->offset + 4, bigEndian(static_cast<std::uint32_t>(bytes)));
  view.correct(common->content() + 2,
               bigEndian(static_cast<std::uint32_t>((bytes - kSoundHeader) / frameBytes)));
}

}  // namespace

bool standsForUntilTheEnd(std::uint64_t bytes) {
  constexpr std::uint64_t kRounded = 0x10000;
  constexpr std::array<std::uint64_t, 3> kLargest{std::uint64_t{1} << 31, kWrap, 0x7F000000};
  return std::any_of(kLargest.begin(), kLargest.end(), [bytes](std::uint64_t largest) {
    return bytes + kRounded >= largest && bytes <= largest + kRounded;
  });
}

void correctHeader(AudioFileView& view) {
  const std::string form = view.peek(0, kFormHeader);
  if (form.size() < kFormHeader) {
    return;
  }
  const std::string type = form.substr(8);
  if (form.compare(0, 4, "RIFF") == 0 && type == "WAVE") {
    correctSignificantBits(view);
    correctWav(view);
  } else if (form.compare(0, 4, "FORM") == 0 && (type == "AIFF" || type == "AIFC")) {
    correctAiff(view);
  }
}

}  // namespace platform
