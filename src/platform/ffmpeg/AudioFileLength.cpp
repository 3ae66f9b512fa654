#include "platform/ffmpeg/AudioFileLength.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr AVRational kWorkingFrame{1, 44100};
constexpr std::chrono::milliseconds kCountingWork{500};
constexpr std::int64_t kCountingBytes = std::numeric_limits<std::int64_t>::max();
// 1,600 years: anything longer is nonsense, and sums must not overflow.
constexpr std::int64_t kMaxFrames = std::int64_t{1} << 51;

std::int64_t sane(std::int64_t frames) {
  return std::clamp<std::int64_t>(frames, 0, kMaxFrames);
}

std::int64_t workingFrames(std::int64_t duration, AVRational timeBase) {
  if (timeBase.num <= 0 || timeBase.den <= 0) {
    return 0;
  }
  return sane(av_rescale_q_rnd(duration, timeBase, kWorkingFrame, AV_ROUND_NEAR_INF));
}

// Frames at the stream's rate that the decoder will skip at a packet's start and end.
std::int64_t skippedFrames(const AVPacket& packet) {
  std::size_t size = 0;
  const std::uint8_t* const data =
      av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
  constexpr std::size_t kCounts = 8;  // two 32-bit numbers: at the start, at the end
  return data == nullptr || size < kCounts
             ? 0
             : std::int64_t{AV_RL32(data)} + std::int64_t{AV_RL32(data + 4)};
}

std::int64_t countedFrames(AudioFileDemuxer& packets, std::uint64_t size) {
  const AvPacket packet(av_packet_alloc());
  if (packet == nullptr) {
    return 0;
  }
  std::int64_t duration = 0;  // time base
  std::int64_t skipped = 0;   // frames
  std::int64_t position = 0;  // bytes
  int result = 0;
  while ((result = packets.read(*packet)) >= 0) {
    duration = std::min(duration + std::max<std::int64_t>(packet->duration, 0), kMaxFrames);
    skipped += skippedFrames(*packet);
    position = std::max(position, packet->pos);
    av_packet_unref(packet.get());
  }
  const AVStream& stream = packets.stream();
  const int rate = std::max(stream.codecpar->sample_rate, 1);
  const std::int64_t all =
      sane(av_rescale_q_rnd(duration, stream.time_base, {1, rate}, AV_ROUND_NEAR_INF));
  std::int64_t frames = workingFrames(all - skipped, {1, rate});
  if (result == AVERROR_EXIT && position > 0) {
    frames = sane(av_rescale(frames, static_cast<std::int64_t>(size), position));
  }
  return frames;
}

}  // namespace

std::int64_t audioFileLengthFrames(const AudioFileDemuxer& demuxer, File& file, std::uint64_t size,
                                   const std::string& path, DecodingBudget& interruption) {
  const AVStream& stream = demuxer.stream();
  if (demuxer.isBareStream()) {
    int error = 0;
    const auto packets = AudioFileDemuxer::open(file, size, path, interruption, error);
    if (packets == nullptr) {
      return 0;
    }
    interruption.limit(kCountingWork, kCountingBytes);
    const std::int64_t frames = countedFrames(*packets, size);
    interruption.lift();
    return frames;
  }
  std::int64_t duration = demuxer.declaredDuration();
  if (demuxer.isLinearPcm() && stream.codecpar->block_align > 0) {
    // Bounded by the file's size, whatever its header says. The time base is a frame.
    const std::uint64_t bytes = size - std::min(size, demuxer.headerEnd());
    const auto most = static_cast<std::int64_t>(bytes) / stream.codecpar->block_align;
    duration = duration == 0 ? most : std::min(duration, most);
  }
  return workingFrames(duration, stream.time_base);
}

}  // namespace platform
