#include "platform/ffmpeg/AudioFileDemuxer.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <limits>

#include "platform/ffmpeg/AllocationBound.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegStatus.h"
#include "platform/ffmpeg/HeaderCorrection.h"

namespace platform {
namespace {

using std::chrono::milliseconds;

// Names of FFmpeg's demuxers. Without this list FFmpeg would try playlists, picture lists and other
// files without sound.
constexpr const char* kContainers = "wav,w64,aiff,caf,mov,mp3,aac";

// Header and first packets of a good file take milliseconds. Together below one second.
constexpr milliseconds kHeaderWork{500};
constexpr milliseconds kFirstPacketsWork{300};
// More than the index of a day of sound needs.
constexpr std::int64_t kHeaderBytes = std::int64_t{256} << 20;

// A packet takes microseconds. Only a search for the next packet through other data takes longer;
// after this time the file counts as ended.
constexpr milliseconds kPacketWork{500};
constexpr std::int64_t kPacketBytes = std::numeric_limits<std::int64_t>::max();

constexpr const char* kLargerPackets = "65536";  // bytes; 16 times fewer packets of a WAV
// FFmpeg checks whether 16-bit samples are a disguised DTS or Dolby stream. A third of a second is
// enough for that; its default of 2,500 packets would cost 0.1 s for every file.
constexpr int kDisguisePackets = 2;

int refuseSecondFile(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
  return AVERROR(EPERM);
}

int interruptionIsDue(void* interruption) {
  return static_cast<DecodingBudget*>(interruption)->isDue() ? 1 : 0;
}

}  // namespace

std::unique_ptr<AudioFileDemuxer> AudioFileDemuxer::open(File& file, std::uint64_t size,
                                                         const std::string& path,
                                                         DecodingBudget& interruption, int& error) {
  allowAllocations(allocationBoundFor(size));
  auto io = AudioFileIo::forReading(file, size, interruption);
  if (io == nullptr) {
    error = AVERROR(ENOMEM);
    return nullptr;
  }
  std::unique_ptr<AudioFileDemuxer> demuxer(new AudioFileDemuxer(std::move(io), interruption));
  error = demuxer->openContainer(path);
  if (error >= 0) {
    error = demuxer->chooseStream();
  }
  interruption.lift();
  demuxer->io_->view().stopRemembering();
  if (interruption.isCancelled()) {
    error = AVERROR_EXIT;
  } else if (error < 0) {
    error = demuxer->verdict(error);
  }
  return error < 0 ? nullptr : std::move(demuxer);
}

// A failing medium looks like the end of the file or like damage to some demuxers.
int AudioFileDemuxer::verdict(int error) const {
  return io_->firstError() != 0 && error != AVERROR_EXIT ? io_->firstError() : ffmpegVerdict(error);
}

AudioFileDemuxer::~AudioFileDemuxer() = default;

int AudioFileDemuxer::openContainer(const std::string& path) {
  AVFormatContext* context = avformat_alloc_context();
  if (context == nullptr) {
    return AVERROR(ENOMEM);
  }
  context->pb = io_->context();
  context->flags |= AVFMT_FLAG_CUSTOM_IO;
  context->io_open = refuseSecondFile;
  context->interrupt_callback = {interruptionIsDue, &interruption_};
  context->max_probe_packets = kDisguisePackets;
  context->format_whitelist = av_strdup(kContainers);
  context->protocol_whitelist = av_strdup("file");
  AVDictionary* options = nullptr;
  av_dict_set(&options, "max_size", kLargerPackets, 0);  // WAV's alone

  interruption_.limit(kHeaderWork, kHeaderBytes);
  if (!interruption_.isDue()) {
    correctHeader(io_->view());
    tracks_ = readMpeg4Edits(io_->view());
    mp3Tag_ = readMp3LengthTag(io_->view());
  }
  if (tracks_) {
    av_dict_set(&options, "ignore_editlist", "1", 0);  // MPEG-4's alone
  }
  const int result = avformat_open_input(&context, path.c_str(), nullptr, &options);
  av_dict_free(&options);
  if (result < 0) {
    return result;  // FFmpeg has freed the context
  }
  context_.reset(context);
  io_->clearInterruption();
  headerEnd_ =
      static_cast<std::uint64_t>(std::max<std::int64_t>(avio_seek(context->pb, 0, SEEK_CUR), 0));
  if (std::strcmp(context->iformat->name, "mp3") != 0) {
    mp3Tag_.reset();
  }
  return 0;
}

int AudioFileDemuxer::chooseStream() {
  interruption_.limit(kFirstPacketsWork, kHeaderBytes);
  for (unsigned i = 0; i < context_->nb_streams; ++i) {
    AVStream& stream = *context_->streams[i];
    if (stream.codecpar->codec_type != AVMEDIA_TYPE_AUDIO) {
      stream.discard = AVDISCARD_ALL;
    }
  }
  if (const int result = avformat_find_stream_info(context_.get(), nullptr); result < 0) {
    return result;
  }
  io_->clearInterruption();
  const int best = av_find_best_stream(context_.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
  if (best < 0) {
    return AVERROR_STREAM_NOT_FOUND;
  }
  for (unsigned i = 0; i < context_->nb_streams; ++i) {
    context_->streams[i]->discard =
        i == static_cast<unsigned>(best) ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
  }
  stream_ = context_->streams[best];
  const char* const codec = avcodec_get_name(stream_->codecpar->codec_id);
  isLinearPcm_ = std::strncmp(codec, "pcm_", 4) == 0 &&
                 av_get_exact_bits_per_sample(stream_->codecpar->codec_id) >= 8;
  if (tracks_ && isMpeg4()) {
    const auto track = tracks_->find(static_cast<std::uint32_t>(stream_->id));
    edits_ = track != tracks_->end() ? track->second : Mpeg4Edits();
  }
  return 0;
}

int AudioFileDemuxer::read(AVPacket& packet) {
  for (;;) {
    if (interruption_.isDue()) {
      return AVERROR_EXIT;
    }
    if (isCut_) {
      return verdict(AVERROR(EIO));
    }
    const bool limited = interruption_.limitIfNone(kPacketWork, kPacketBytes);
    const std::uint64_t failedBefore = io_->view().failedReads();
    const int result = av_read_frame(context_.get(), &packet);
    const bool endless = limited && result == AVERROR_EXIT && !interruption_.isCancelled();
    if (limited) {
      interruption_.lift();
    }
    if (endless) {
      return AVERROR_EOF;
    }
    if (result < 0) {
      return verdict(result);
    }
    // FFmpeg goes on where a read that failed ended, in the middle of a frame.
    isCut_ = io_->view().failedReads() > failedBefore;
    if (packet.stream_index == stream_->index) {
      const int frameBytes = isLinearPcm_ ? stream_->codecpar->block_align : 0;
      if (frameBytes <= 0) {
        return 0;
      }
      packet.size -= packet.size % frameBytes;  // drops a partial frame
      if (packet.size > 0) {
        return 0;
      }
    }
    av_packet_unref(&packet);
  }
}

bool AudioFileDemuxer::isMpeg4() const {
  return std::strncmp(context_->iformat->name, "mov", 3) == 0;
}

bool AudioFileDemuxer::isBareStream() const {
  return std::strcmp(context_->iformat->name, "mp3") == 0 ||
         std::strcmp(context_->iformat->name, "aac") == 0;
}

// Without a length in the header, or with one beyond the file's end, FFmpeg estimates it from the
// file's size and the byte rate.
bool AudioFileDemuxer::isDurationGuessed() const {
  return context_->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
}

std::int64_t AudioFileDemuxer::declaredDuration() const {
  return isDurationGuessed() ? 0 : estimatedDuration();
}

std::int64_t AudioFileDemuxer::estimatedDuration() const {
  if (stream_->duration == AV_NOPTS_VALUE || stream_->duration < 0) {
    return 0;
  }
  return edits_ ? edits_->lengthOf(stream_->duration) : stream_->duration;
}

std::int64_t AudioFileDemuxer::promisedPcmFrames() const {
  return std::clamp<std::int64_t>(promiseOfHeader(), 0, kMostPromisedFrames);
}

// As the header has it, whatever number that is.
std::int64_t AudioFileDemuxer::promiseOfHeader() const {
  const AVCodecParameters& parameters = *stream_->codecpar;
  if (isMpeg4()) {
    const std::int64_t frames =
        av_rescale_q_rnd(declaredDuration(), stream_->time_base,
                         {1, std::max(parameters.sample_rate, 1)}, AV_ROUND_NEAR_INF);
    return frames >= 0 ? frames : kMostPromisedFrames;  // FFmpeg's answer to what overflows
  }
  if (stream_->nb_frames > 0) {
    return stream_->nb_frames;
  }
  if (!isDurationGuessed()) {
    return declaredDuration();  // the time base is a frame
  }
  // A WAV whose samples should continue past its end: their chunk header gives the length.
  constexpr std::size_t kChunkHeader = 8;  // name and size
  if (headerEnd_ < kChunkHeader || parameters.block_align <= 0) {
    return 0;
  }
  const std::string header = io_->view().peek(headerEnd_ - kChunkHeader, kChunkHeader);
  return header.size() == kChunkHeader && header.compare(0, 4, "data") == 0
             ? AV_RL32(header.data() + 4) / static_cast<std::uint32_t>(parameters.block_align)
             : 0;
}

}  // namespace platform
