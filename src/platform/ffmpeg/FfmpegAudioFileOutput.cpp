#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>
#include <vector>

#include "platform/ffmpeg/AllocationBound.h"
#include "platform/ffmpeg/AudioFileIo.h"
#include "platform/ffmpeg/AudioFileTagWriting.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegLog.h"
#include "platform/ffmpeg/FfmpegMakers.h"
#include "platform/ffmpeg/FfmpegStatus.h"
#include "platform/ffmpeg/FiniteSamples.h"

namespace platform {
namespace {

constexpr int kRate = 44100;
constexpr std::size_t kChannels = 2;
constexpr std::uint64_t kBytesPerFrame = 4;  // of a file of 16-bit samples
// Large enough that a packet costs little, small enough to stay in the processor's cache.
constexpr int kPcmFrames = 8192;
// The full band; at 192,000 the encoder drops everything above 19 kHz.
constexpr std::int64_t kAacBitsPerSecond = 256'000;

struct Encoding {
  const char* muxer;  // FFmpeg's name
  AVCodecID codec;
  AVSampleFormat samples;
};

Encoding encodingOf(AudioFileKind kind) {
  switch (kind) {
    case AudioFileKind::wave:
      return {"wav", AV_CODEC_ID_PCM_S16LE, AV_SAMPLE_FMT_S16};
    case AudioFileKind::aiff:
      return {"aiff", AV_CODEC_ID_PCM_S16BE, AV_SAMPLE_FMT_S16};
    case AudioFileKind::caf:
      return {"caf", AV_CODEC_ID_PCM_S16LE, AV_SAMPLE_FMT_S16};
    case AudioFileKind::m4a:
      break;
  }
  return {"ipod", AV_CODEC_ID_AAC, AV_SAMPLE_FMT_FLTP};
}

class FfmpegAudioFileOutput final : public ExtAudioFileOutput {
 public:
  [[nodiscard]] static Created create(UserAudioFiles::Opened file, AudioFileKind kind,
                                      const AudioFileTags& tags);

  ~FfmpegAudioFileOutput() override;

  [[nodiscard]] AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const override;
  [[nodiscard]] AudioStatus write(const float* frames, std::uint64_t count) override;
  [[nodiscard]] AudioStatus dispose() override;

 private:
  FfmpegAudioFileOutput(AudioFileKind kind, const AudioFileTags& tags)
      : kind_(kind), maximumFrames_(maximumFrames(kind, tags.byteCount())) {}

  [[nodiscard]] AudioStatus start(UserAudioFiles::Opened file, const AudioFileTags& tags);
  [[nodiscard]] int openEncoder();
  [[nodiscard]] int openConverter();
  [[nodiscard]] int openMuxer(const AudioFileTags& tags);
  [[nodiscard]] int makeFrame();
  [[nodiscard]] int append(const float* frames, std::uint64_t count);
  [[nodiscard]] int fill(const float* frames, int count);
  [[nodiscard]] int encodeFilled();
  [[nodiscard]] int encode(const AVFrame* frame);
  [[nodiscard]] int finish();
  [[nodiscard]] AudioStatus keep(int error);
  [[nodiscard]] AudioStatus keepStatus(AudioStatus status);

  const AudioFileKind kind_;
  const std::optional<std::uint64_t> maximumFrames_;
  FfmpegLog::Budget log_;
  std::unique_ptr<File> file_;
  std::unique_ptr<AudioFileIo> io_;
  AvOutput muxer_;
  AvCodec encoder_;
  AvConverter converter_;  // to 16 bits; null for AAC
  AvFrame frame_;          // being filled
  AvPacket packet_;
  std::vector<float> prepared_;     // interleaved
  int filled_ = 0;                  // frames of frame_
  int capacity_ = 0;                // frames that frame_ can hold
  std::uint64_t frameCount_ = 0;    // taken by write()
  std::int64_t encodedFrames_ = 0;  // passed to the encoder
  AudioStatus firstFailure_ = kAudioStatusOk;
  bool isDisposed_ = false;
};

}  // namespace

ExtAudioFileOutput::Created createOutput(UserAudioFiles::Opened file, AudioFileKind kind,
                                         const AudioFileTags& tags) {
  return FfmpegAudioFileOutput::create(std::move(file), kind, tags);
}

ExtAudioFileOutput::Created FfmpegAudioFileOutput::create(UserAudioFiles::Opened file,
                                                          AudioFileKind kind,
                                                          const AudioFileTags& tags) {
  std::unique_ptr<FfmpegAudioFileOutput> output(new FfmpegAudioFileOutput(kind, tags));
  const AudioStatus status = output->start(std::move(file), tags);
  if (status != kAudioStatusOk) {
    output->isDisposed_ = true;  // there is nothing to finish
    return {.file = nullptr, .status = status};
  }
  return {.file = std::move(output), .status = kAudioStatusOk};
}

FfmpegAudioFileOutput::~FfmpegAudioFileOutput() {
  static_cast<void>(dispose());
}

AudioStatus FfmpegAudioFileOutput::start(UserAudioFiles::Opened file, const AudioFileTags& tags) {
  const FfmpegLog::Scope scope(log_);
  if (!file) {
    return keepStatus(audioFileStatus(AudioFileStage::writing, AVERROR(file.error())));
  }
  allowAllocations(kLargestAllocationBound);  // its index is as long as the document
  file_ = *std::move(file);
  io_ = AudioFileIo::forWriting(*file_);
  packet_.reset(av_packet_alloc());
  if (io_ == nullptr || packet_ == nullptr) {
    return keep(AVERROR(ENOMEM));
  }
  int result = openEncoder();
  if (result >= 0) {
    result = makeFrame();
  }
  if (result >= 0 && encoder_->sample_fmt == AV_SAMPLE_FMT_S16) {
    result = openConverter();
  }
  if (result >= 0) {
    result = openMuxer(tags);
  }
  return keep(result);
}

int FfmpegAudioFileOutput::openEncoder() {
  const Encoding encoding = encodingOf(kind_);
  const AVCodec* const codec = avcodec_find_encoder(encoding.codec);
  if (codec == nullptr) {
    return AVERROR_ENCODER_NOT_FOUND;
  }
  encoder_.reset(avcodec_alloc_context3(codec));
  if (encoder_ == nullptr) {
    return AVERROR(ENOMEM);
  }
  encoder_->sample_fmt = encoding.samples;
  encoder_->sample_rate = kRate;
  encoder_->time_base = {1, kRate};
  encoder_->thread_count = 1;
  encoder_->flags |= AV_CODEC_FLAG_BITEXACT;  // the same sound gives the same file
  av_channel_layout_from_mask(&encoder_->ch_layout, AV_CH_LAYOUT_STEREO);
  if (kind_ == AudioFileKind::m4a) {
    encoder_->bit_rate = kAacBitsPerSecond;
    encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  }
  return avcodec_open2(encoder_.get(), codec, nullptr);
}

int FfmpegAudioFileOutput::makeFrame() {
  capacity_ = encoder_->frame_size > 0 ? encoder_->frame_size : kPcmFrames;
  prepared_.resize(static_cast<std::size_t>(capacity_) * kChannels);
  frame_.reset(av_frame_alloc());
  if (frame_ == nullptr) {
    return AVERROR(ENOMEM);
  }
  frame_->format = encoder_->sample_fmt;
  frame_->sample_rate = kRate;
  frame_->nb_samples = capacity_;
  if (const int result = av_channel_layout_copy(&frame_->ch_layout, &encoder_->ch_layout);
      result < 0) {
    return result;
  }
  return av_frame_get_buffer(frame_.get(), 0);
}

int FfmpegAudioFileOutput::openConverter() {
  SwrContext* context = nullptr;
  AVChannelLayout* const stereo = &encoder_->ch_layout;
  const int result = swr_alloc_set_opts2(&context, stereo, AV_SAMPLE_FMT_S16, kRate, stereo,
                                         AV_SAMPLE_FMT_FLT, kRate, 0, nullptr);
  converter_.reset(context);
  return result < 0 ? result : swr_init(context);
}

int FfmpegAudioFileOutput::openMuxer(const AudioFileTags& tags) {
  AVFormatContext* context = nullptr;
  // The muxer warns of any other suffix; nothing is opened by this name.
  const char* const name = kind_ == AudioFileKind::m4a ? "sound.m4a" : nullptr;
  const int result =
      avformat_alloc_output_context2(&context, nullptr, encodingOf(kind_).muxer, name);
  muxer_.reset(context);
  if (result < 0) {
    return result;
  }
  context->pb = io_->context();
  context->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
  context->flush_packets = 0;
  AVStream* const stream = avformat_new_stream(context, nullptr);
  if (stream == nullptr) {
    return AVERROR(ENOMEM);
  }
  stream->time_base = encoder_->time_base;
  if (const int copied = avcodec_parameters_from_context(stream->codecpar, encoder_.get());
      copied < 0) {
    return copied;
  }
  if (const int tagged = addTags(*context, kind_, tags); tagged < 0) {
    return tagged;
  }
  AVDictionary* options = nullptr;
  av_dict_set(&options, "rf64", "auto", 0);              // WAV: sizes of 64 bits where needed
  av_dict_set(&options, "movie_timescale", "44100", 0);  // MPEG-4: a length exact to the frame
  if (!tags.all().empty()) {
    av_dict_set(&options, "write_id3v2", "1", 0);  // AIFF: its own chunks hold few of them
  }
  const int written = avformat_write_header(context, &options);
  av_dict_free(&options);
  return written < 0 ? written : writeCover(*context, tags);
}

AudioStatus FfmpegAudioFileOutput::setClientDataFormat(
    const AudioStreamBasicDescription& format) const {
  return format == kWorkingFormat ? kAudioStatusOk : kInvalidParameterStatus;
}

AudioStatus FfmpegAudioFileOutput::write(const float* frames, std::uint64_t count) {
  if (firstFailure_ != kAudioStatusOk) {
    return firstFailure_;
  }
  if (isDisposed_) {
    return kInvalidParameterStatus;
  }
  if (maximumFrames_ && count > *maximumFrames_ - std::min(frameCount_, *maximumFrames_)) {
    return keepStatus(kFileTooLargeStatus);
  }
  const FfmpegLog::Scope scope(log_);
  frameCount_ += count;
  return keep(append(frames, count));
}

int FfmpegAudioFileOutput::append(const float* frames, std::uint64_t count) {
  while (count > 0) {
    const int part =
        static_cast<int>(std::min(count, static_cast<std::uint64_t>(capacity_ - filled_)));
    if (const int result = fill(frames, part); result < 0) {
      return result;
    }
    frames += static_cast<std::size_t>(part) * kChannels;
    count -= static_cast<std::uint64_t>(part);
    if (filled_ == capacity_) {
      if (const int result = encodeFilled(); result < 0) {
        return result;
      }
    }
  }
  return 0;
}

int FfmpegAudioFileOutput::fill(const float* frames, int count) {
  if (filled_ == 0) {
    frame_->nb_samples = capacity_;
    if (const int result = av_frame_make_writable(frame_.get()); result < 0) {
      return result;
    }
  }
  if (converter_ == nullptr) {
    splitFiniteLimited(frames, static_cast<std::size_t>(count),
                       reinterpret_cast<float*>(frame_->data[0]) + filled_,
                       reinterpret_cast<float*>(frame_->data[1]) + filled_);
  } else {
    copyFiniteLimited(frames, static_cast<std::size_t>(count) * kChannels, prepared_.data());
    std::uint8_t* out = frame_->data[0] + static_cast<std::size_t>(filled_) * kBytesPerFrame;
    const auto* in = reinterpret_cast<const std::uint8_t*>(prepared_.data());
    if (const int result = swr_convert(converter_.get(), &out, count, &in, count); result < 0) {
      return result;
    }
  }
  filled_ += count;
  return 0;
}

int FfmpegAudioFileOutput::encodeFilled() {
  if (filled_ == 0) {
    return 0;
  }
  frame_->nb_samples = filled_;
  frame_->pts = encodedFrames_;
  encodedFrames_ += filled_;
  filled_ = 0;
  return encode(frame_.get());
}

// A null frame flushes the encoder.
int FfmpegAudioFileOutput::encode(const AVFrame* frame) {
  int result = avcodec_send_frame(encoder_.get(), frame);
  while (result >= 0) {
    result = avcodec_receive_packet(encoder_.get(), packet_.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
      return 0;
    }
    if (result >= 0) {
      AVStream* const stream = muxer_->streams[0];
      packet_->stream_index = stream->index;
      av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream->time_base);
      result = av_write_frame(muxer_.get(), packet_.get());
      av_packet_unref(packet_.get());
    }
    if (result >= 0) {
      result = io_->firstError();
    }
  }
  return result;
}

AudioStatus FfmpegAudioFileOutput::dispose() {
  if (isDisposed_) {
    return firstFailure_;
  }
  isDisposed_ = true;
  const FfmpegLog::Scope scope(log_);
  if (firstFailure_ == kAudioStatusOk) {
    static_cast<void>(keep(finish()));
  }
  muxer_.reset();
  io_.reset();
  file_.reset();
  return firstFailure_;
}

int FfmpegAudioFileOutput::finish() {
  if (frameCount_ == 0 && kind_ == AudioFileKind::m4a) {
    constexpr float kSilence[kChannels] = {0, 0};
    if (const int result = append(kSilence, 1); result < 0) {
      return result;
    }
  }
  int result = encodeFilled();
  if (result >= 0) {
    result = encode(nullptr);
  }
  if (result >= 0) {
    result = av_write_trailer(muxer_.get());
  }
  if (result >= 0) {
    avio_flush(io_->context());
    result = io_->context()->error;
  }
  return result;
}

// What a function of FFmpeg returned. The file's own error says more than FFmpeg's.
AudioStatus FfmpegAudioFileOutput::keep(int error) {
  const bool hasFileFailed = io_ != nullptr && io_->firstError() != 0;
  return keepStatus(audioFileStatus(AudioFileStage::writing,
                                    hasFileFailed ? io_->firstError() : ffmpegVerdict(error)));
}

// Keeps the first failure.
AudioStatus FfmpegAudioFileOutput::keepStatus(AudioStatus status) {
  if (firstFailure_ == kAudioStatusOk) {
    firstFailure_ = status;
  }
  return firstFailure_;
}

}  // namespace platform
