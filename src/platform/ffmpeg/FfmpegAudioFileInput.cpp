#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/ffmpeg/AudioFileDecoder.h"
#include "platform/ffmpeg/AudioFileLength.h"
#include "platform/ffmpeg/AudioFileTagReading.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegLog.h"
#include "platform/ffmpeg/FfmpegMakers.h"
#include "platform/ffmpeg/FfmpegStatus.h"
#include "platform/ffmpeg/WorkingFormatConverter.h"

namespace platform {
namespace {

class FfmpegAudioFileInput final : public ExtAudioFileInput {
 public:
  [[nodiscard]] static Opened open(UserAudioFiles& files, const std::string& path,
                                   std::shared_ptr<const std::atomic<bool>> cancelled);

  ~FfmpegAudioFileInput() override;

  [[nodiscard]] AudioStreamBasicDescription fileDataFormat() const override;
  [[nodiscard]] AudioFileTags tags() const override;
  [[nodiscard]] AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const override;
  [[nodiscard]] std::int64_t fileLengthFrames() const override { return length_.frames; }
  [[nodiscard]] bool isLengthEstimated() const override { return length_.isEstimated; }
  [[nodiscard]] double shareRead() const override;
  [[nodiscard]] Read read(float* destination, std::uint32_t frames) override;
  [[nodiscard]] AudioStatus seekToStart() override;

 private:
  FfmpegAudioFileInput(std::string path, std::shared_ptr<const std::atomic<bool>> cancelled)
      : path_(std::move(path)), interruption_(std::move(cancelled)) {}

  [[nodiscard]] AudioStatus start();
  [[nodiscard]] AudioStatus statusOf(AudioFileStage stage, int error) const;
  void end(AudioStatus status);

  const std::string path_;
  DecodingBudget interruption_;
  FfmpegLog::Budget log_;
  std::unique_ptr<File> file_;
  std::uint64_t size_ = 0;                     // bytes
  std::unique_ptr<AudioFileDecoder> decoder_;  // null when seekToStart() failed
  WorkingFormatConverter converter_;
  bool ended_ = false;
  AudioStatus endStatus_ = kAudioStatusOk;
  AudioFileLength length_;
  bool isLengthKnown_ = false;  // without another look at the file
  std::int64_t delivered_ = 0;  // frames, since the start
};

std::uint32_t formatId(const AVCodecParameters& parameters, bool isLinearPcm) {
  if (isLinearPcm) {
    return kLinearPcmFormat;
  }
  switch (parameters.codec_id) {
    case AV_CODEC_ID_AAC:
      return fourCharacterCode("aac ");
    case AV_CODEC_ID_MP3:
      return fourCharacterCode(".mp3");
    case AV_CODEC_ID_ALAC:
      return fourCharacterCode("alac");
    default:
      return __builtin_bswap32(parameters.codec_tag);  // FFmpeg stores the first character lowest
  }
}

}  // namespace

ExtAudioFileInput::Opened openInput(UserAudioFiles& files, const std::string& path,
                                    std::shared_ptr<const std::atomic<bool>> cancelled) {
  return FfmpegAudioFileInput::open(files, path, std::move(cancelled));
}

ExtAudioFileInput::Opened FfmpegAudioFileInput::open(
    UserAudioFiles& files, const std::string& path,
    std::shared_ptr<const std::atomic<bool>> cancelled) {
  std::unique_ptr<FfmpegAudioFileInput> input(new FfmpegAudioFileInput(path, std::move(cancelled)));
  if (input->interruption_.isCancelled()) {
    return {.file = nullptr, .status = kCancelledStatus};
  }
  auto opened = files.openForReading(path);
  if (!opened) {
    return {.file = nullptr,
            .status = audioFileStatus(AudioFileStage::opening, AVERROR(opened.error()))};
  }
  input->file_ = *std::move(opened);
  input->size_ = input->file_->size();
  if (input->size_ == 0) {
    return {.file = nullptr, .status = kEmptyFileStatus};
  }
  const AudioStatus status = input->start();
  return {.file = status == kAudioStatusOk ? std::move(input) : nullptr, .status = status};
}

FfmpegAudioFileInput::~FfmpegAudioFileInput() {
  const FfmpegLog::Scope scope(log_);
  decoder_.reset();
}

AudioStatus FfmpegAudioFileInput::start() {
  const FfmpegLog::Scope scope(log_);
  int error = 0;
  decoder_ = AudioFileDecoder::open(*file_, size_, path_, interruption_, error);
  if (decoder_ == nullptr) {
    return statusOf(AudioFileStage::opening, error);
  }
  delivered_ = 0;
  if (!isLengthKnown_) {
    length_ = audioFileLength(decoder_->demuxer());
    isLengthKnown_ = !length_.isEstimated;
  }
  return kAudioStatusOk;
}

AudioStatus FfmpegAudioFileInput::statusOf(AudioFileStage stage, int error) const {
  return interruption_.isCancelled() ? kCancelledStatus : audioFileStatus(stage, error);
}

AudioStreamBasicDescription FfmpegAudioFileInput::fileDataFormat() const {
  if (decoder_ == nullptr) {
    return {};
  }
  const AVCodecParameters& parameters = *decoder_->demuxer().stream().codecpar;
  const bool isLinearPcm = decoder_->demuxer().isLinearPcm();
  AudioStreamBasicDescription format;
  format.mSampleRate = parameters.sample_rate;
  format.mFormatID = formatId(parameters, isLinearPcm);
  format.mChannelsPerFrame = static_cast<std::uint32_t>(parameters.ch_layout.nb_channels);
  if (isLinearPcm) {
    format.mFramesPerPacket = 1;
    format.mBitsPerChannel =
        static_cast<std::uint32_t>(av_get_exact_bits_per_sample(parameters.codec_id));
    format.mBytesPerFrame = format.mBitsPerChannel / 8 * format.mChannelsPerFrame;
    format.mBytesPerPacket = format.mBytesPerFrame;
  } else {
    if (parameters.codec_id == AV_CODEC_ID_ALAC) {
      format.mBitsPerChannel = static_cast<std::uint32_t>(parameters.bits_per_raw_sample);
    }
    format.mFramesPerPacket = static_cast<std::uint32_t>(parameters.frame_size);
  }
  return format;
}

AudioFileTags FfmpegAudioFileInput::tags() const {
  if (decoder_ == nullptr) {
    return {};
  }
  const AudioFileDemuxer& demuxer = decoder_->demuxer();
  return tagsOf(demuxer.container(), demuxer.stream());
}

AudioStatus FfmpegAudioFileInput::setClientDataFormat(
    const AudioStreamBasicDescription& format) const {
  AudioStreamBasicDescription known = format;
  known.mReserved = 0;  // may hold anything
  if (known != kWorkingFormat) {
    return kInvalidParameterStatus;
  }
  const AudioStreamBasicDescription file = fileDataFormat();
  return WorkingFormatConverter::canConvert(static_cast<int>(file.mSampleRate),
                                            static_cast<int>(file.mChannelsPerFrame))
             ? kAudioStatusOk
             : kUnsupportedDataFormatStatus;
}

double FfmpegAudioFileInput::shareRead() const {
  if (decoder_ == nullptr || ended_) {
    return 1.0;
  }
  const AudioFileDemuxer& demuxer = decoder_->demuxer();
  return std::min(static_cast<double>(demuxer.bytesRead()) /
                      static_cast<double>(std::max<std::uint64_t>(demuxer.size(), 1)),
                  1.0);
}

FfmpegAudioFileInput::Read FfmpegAudioFileInput::read(float* destination, std::uint32_t frames) {
  const FfmpegLog::Scope scope(log_);
  constexpr std::size_t kChannels = 2;
  std::uint32_t done = converter_.take(destination, frames);
  while (done < frames && !ended_) {
    AVFrame* const frame = decoder_ != nullptr ? decoder_->next() : nullptr;
    if (frame == nullptr) {
      const int error = decoder_ != nullptr ? decoder_->endError() : AVERROR_INVALIDDATA;
      const int finished = converter_.finish();
      end(statusOf(AudioFileStage::reading, error != 0 ? error : ffmpegVerdict(finished)));
    } else if (const int put =
                   converter_.put(*frame, destination + done * kChannels, frames - done);
               put < 0) {
      static_cast<void>(converter_.finish());
      end(statusOf(AudioFileStage::reading, ffmpegVerdict(put)));
    } else {
      done += static_cast<std::uint32_t>(put);
    }
    done += converter_.take(destination + done * kChannels, frames - done);
  }
  if (endStatus_ == kCancelledStatus || interruption_.isCancelled()) {
    return {.frames = 0, .status = kCancelledStatus};
  }
  delivered_ += done;
  if (done == 0 && ended_ && length_.isEstimated) {
    length_ = {.frames = delivered_};
    isLengthKnown_ = true;
  }
  return {.frames = done,
          .status = done == 0 && ended_ && frames > 0 ? endStatus_ : kAudioStatusOk};
}

void FfmpegAudioFileInput::end(AudioStatus status) {
  ended_ = true;
  endStatus_ = status;
}

AudioStatus FfmpegAudioFileInput::seekToStart() {
  decoder_.reset();
  converter_ = {};
  ended_ = false;
  endStatus_ = kAudioStatusOk;
  return start();
}

}  // namespace platform
