#include "platform/ffmpeg/AudioFileLength.h"

#include <algorithm>

#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

constexpr AVRational kWorkingFrame{1, 44100};
// 1,600 years: anything longer is nonsense, and sums must not overflow.
constexpr std::int64_t kMaxFrames = std::int64_t{1} << 51;

std::int64_t workingFrames(std::int64_t duration, AVRational timeBase) {
  if (timeBase.num <= 0 || timeBase.den <= 0) {
    return 0;
  }
  return std::clamp<std::int64_t>(
      av_rescale_q_rnd(duration, timeBase, kWorkingFrame, AV_ROUND_NEAR_INF), 0, kMaxFrames);
}

AudioFileLength lengthOfBareStream(const AudioFileDemuxer& demuxer) {
  const AVStream& stream = demuxer.stream();
  const std::int64_t declared = demuxer.declaredDuration();
  if (declared == 0) {
    return {.frames = workingFrames(demuxer.estimatedDuration(), stream.time_base),
            .isEstimated = true};
  }
  const AVRational frame{1, std::max(stream.codecpar->sample_rate, 1)};
  const std::int64_t all = std::max<std::int64_t>(
      av_rescale_q_rnd(declared, stream.time_base, frame, AV_ROUND_NEAR_INF), 0);
  const Mp3LengthTag added = demuxer.mp3Tag().value_or(Mp3LengthTag{});
  return {.frames = workingFrames(all - added.atStart - added.atEnd, frame)};
}

}  // namespace

AudioFileLength audioFileLength(const AudioFileDemuxer& demuxer) {
  if (demuxer.isBareStream()) {
    return lengthOfBareStream(demuxer);
  }
  const AVStream& stream = demuxer.stream();
  std::int64_t duration = demuxer.declaredDuration();
  if (demuxer.isLinearPcm() && !demuxer.isMpeg4() && stream.codecpar->block_align > 0) {
    // Bounded by the file's size, whatever its header says. The time base is a frame.
    const std::uint64_t bytes = demuxer.size() - std::min(demuxer.size(), demuxer.headerEnd());
    const auto most = static_cast<std::int64_t>(bytes) / stream.codecpar->block_align;
    duration = duration == 0 ? most : std::min(duration, most);
  }
  return {.frames = workingFrames(duration, stream.time_base)};
}

}  // namespace platform
