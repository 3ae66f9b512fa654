#include "platform/ffmpeg/AudioFileDecoder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FfmpegStatus.h"
#include "platform/ffmpeg/HeaderCorrection.h"

namespace platform {
namespace {

// Rounding of time scales and decoder delay: an inaudible loss.
constexpr std::int64_t kToleratedFrames = 8192;
// The same of uncompressed samples, in parts of a second: some programs count a header or a last
// buffer that is not there.
constexpr int kToleratedPcmShare = 10;

// Frames: nonsense beyond, and sums must not overflow.
constexpr std::int64_t kMaxPosition = std::int64_t{1} << 52;

// Some decoders fill only part of the frame for a damaged packet. Silence in the rest avoids
// audible old memory content, which would differ each time.
int silentBuffer(AVCodecContext* codec, AVFrame* frame, int flags) {
  const int result = avcodec_default_get_buffer2(codec, frame, flags);
  const auto format = static_cast<AVSampleFormat>(frame->format);
  if (result >= 0 && codec->codec_type == AVMEDIA_TYPE_AUDIO) {
    av_samples_set_silence(frame->extended_data, 0, frame->nb_samples, frame->ch_layout.nb_channels,
                           format);
  }
  return result;
}

// In units of the stream's time base.
std::int64_t durationOf(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
  return frame.duration;
#else
  return frame.pkt_duration;
#endif
}

}  // namespace

std::unique_ptr<AudioFileDecoder> AudioFileDecoder::open(File& file, std::uint64_t size,
                                                         const std::string& path,
                                                         DecodingBudget& interruption, int& error) {
  std::unique_ptr<AudioFileDecoder> decoder(new AudioFileDecoder);
  decoder->demuxer_ = AudioFileDemuxer::open(file, size, path, interruption, error);
  if (decoder->demuxer_ == nullptr) {
    return nullptr;
  }
  error = decoder->start();
  return error < 0 ? nullptr : std::move(decoder);
}

AudioFileDecoder::~AudioFileDecoder() = default;

int AudioFileDecoder::start() {
  const AVCodecParameters* const parameters = demuxer_->stream().codecpar;
  const AVCodec* const codec = avcodec_find_decoder(parameters->codec_id);
  if (codec == nullptr) {
    return AVERROR_DECODER_NOT_FOUND;
  }
  codec_.reset(avcodec_alloc_context3(codec));
  packet_.reset(av_packet_alloc());
  current_.reset(av_frame_alloc());
  ahead_.reset(av_frame_alloc());
  if (codec_ == nullptr || packet_ == nullptr || current_ == nullptr || ahead_ == nullptr) {
    return AVERROR(ENOMEM);
  }
  if (const int result = avcodec_parameters_to_context(codec_.get(), parameters); result < 0) {
    return result;
  }
  codec_->pkt_timebase = demuxer_->stream().time_base;  // without it nothing is trimmed
  codec_->thread_count = 1;
  codec_->thread_type = 0;
  if (!demuxer_->isLinearPcm()) {
    codec_->get_buffer2 = silentBuffer;
  }
  return ffmpegVerdict(avcodec_open2(codec_.get(), codec, nullptr));
}

AVFrame* AudioFileDecoder::next() {
  if (ended_) {
    return nullptr;
  }
  if (!primed_) {
    primed_ = true;
    if (const int result = decode(*ahead_); result < 0) {
      finish(result);
      return nullptr;
    }
  }
  if (aheadError_ != 0) {
    finish(aheadError_);
    return nullptr;
  }
  std::swap(current_, ahead_);
  av_frame_unref(ahead_.get());
  const int leftOut = leftOut_;
  aheadError_ = decode(*ahead_);
  if (aheadError_ == AVERROR_EXIT) {
    finish(aheadError_);
    return nullptr;
  }
  if (aheadError_ != 0) {
    cutToPacket(*current_, leftOut);
  }
  decodedFrames_ += current_->nb_samples;
  return current_.get();
}

// Returns 0 with a frame of at least one sample, otherwise the error that ended the file.
int AudioFileDecoder::decode(AVFrame& frame) {
  for (;;) {
    if (editsRate_ > 0 && edits_.isOverAt(position_)) {
      return AVERROR_EOF;
    }
    if (const int result = decodePacket(frame); result != 0) {
      return result;
    }
    if (cutToEdits(frame)) {
      return 0;
    }
    av_frame_unref(&frame);
  }
}

// The same with what the edits leave out.
int AudioFileDecoder::decodePacket(AVFrame& frame) {
  for (;;) {
    const int result = avcodec_receive_frame(codec_.get(), &frame);
    if (result == 0) {
      if (frame.nb_samples > 0) {
        return 0;
      }
      av_frame_unref(&frame);
      continue;
    }
    if (result == AVERROR_EOF) {
      return inputError_ != 0 ? inputError_ : AVERROR_EOF;
    }
    if (result != AVERROR(EAGAIN)) {
      if (ffmpegVerdict(result) == AVERROR(ENOMEM)) {
        return AVERROR(ENOMEM);
      }
      lostPackets_ = true;
      if (inputError_ != 0) {
        return inputError_;
      }
    }
    if (!feed()) {
      return inputError_;
    }
  }
}

// Sends the decoder the next packet, or the end of the stream. False when interrupted.
bool AudioFileDecoder::feed() {
  if (inputError_ != 0) {
    return false;
  }
  const int result = demuxer_->read(*packet_);
  if (result < 0) {
    inputError_ = result;
    if (result == AVERROR_EXIT) {
      return false;
    }
    avcodec_send_packet(codec_.get(), nullptr);
    return true;
  }
  const int sent = avcodec_send_packet(codec_.get(), packet_.get());
  av_packet_unref(packet_.get());
  lostPackets_ = lostPackets_ || sent < 0;
  return true;
}

// Cuts a frame to what the edit list plays of it. False if that is nothing.
bool AudioFileDecoder::cutToEdits(AVFrame& frame) {
  const Mpeg4Edits* const edits = demuxer_->edits();
  if (edits == nullptr || frame.sample_rate <= 0) {
    return true;
  }
  const AVRational unit = demuxer_->stream().time_base;
  const AVRational frameUnit{1, frame.sample_rate};
  if (frame.sample_rate != editsRate_) {
    edits_ = edits->rescaled(unit, frameUnit);
    position_ = editsRate_ > 0 ? av_rescale(position_, frame.sample_rate, editsRate_) : 0;
    editsRate_ = frame.sample_rate;
  }
  if (frame.pts != AV_NOPTS_VALUE) {
    // The packets' times are rounded to their unit; only a gap goes beyond that.
    const std::int64_t rounding = av_rescale_q(1, unit, frameUnit) + 1;
    const std::int64_t told = av_rescale_q(frame.pts, unit, frameUnit);
    const bool isSane = told >= 0 && told <= kMaxPosition;
    position_ = isSane && std::abs(told - position_) > 2 * rounding ? told : position_;
  }
  const std::int64_t begin = std::exchange(position_, position_ + frame.nb_samples);
  const auto part = edits_.playedPart(begin, frame.nb_samples);
  if (!part) {
    return false;
  }
  leftOut_ = static_cast<int>(part->begin - begin);
  frame.nb_samples = static_cast<int>(part->end - part->begin);
  if (leftOut_ > 0) {
    av_samples_copy(frame.extended_data, frame.extended_data, 0, leftOut_, frame.nb_samples,
                    frame.ch_layout.nb_channels, static_cast<AVSampleFormat>(frame.format));
  }
  return true;
}

// In MPEG-4 the last packet's duration gives the length of its sound. `leftOutBefore` are frames
// of the packet that are not in the frame.
void AudioFileDecoder::cutToPacket(AVFrame& frame, int leftOutBefore) const {
  if (!demuxer_->isMpeg4() || durationOf(frame) <= 0 || frame.sample_rate <= 0) {
    return;
  }
  const std::int64_t frames = av_rescale_q_rnd(durationOf(frame), demuxer_->stream().time_base,
                                               {1, frame.sample_rate}, AV_ROUND_NEAR_INF) -
                              leftOutBefore;
  if (frames > 0 && frames < frame.nb_samples) {
    frame.nb_samples = static_cast<int>(frames);
  }
}

void AudioFileDecoder::finish(int error) {
  ended_ = true;
  // Data between or after the packets of a bare stream is mostly a tag, not damage.
  const bool rubbish = demuxer_->isBareStream() && decodedFrames_ > 0;
  endError_ = error == AVERROR_EOF || (rubbish && error == AVERROR_INVALIDDATA) ? 0 : error;
  if (endError_ == 0 && ((lostPackets_ && !rubbish) || isCutOff())) {
    endError_ = AVERROR_INVALIDDATA;
  }
}

// Whether the header declared more than the file holds.
bool AudioFileDecoder::isCutOff() const {
  const AVStream& stream = demuxer_->stream();
  if (demuxer_->isMpeg4() && demuxer_->edits() == nullptr) {
    return false;  // FFmpeg does not tell the length of what it reorders
  }
  const int rate = codec_->sample_rate;
  if (demuxer_->isLinearPcm()) {
    const std::int64_t promised = demuxer_->promisedPcmFrames();
    const auto bytesPerFrame =
        static_cast<std::uint64_t>(std::max(stream.codecpar->block_align, 1));
    return promised - decodedFrames_ >= std::max(rate / kToleratedPcmShare, 1) &&
           !standsForUntilTheEnd(static_cast<std::uint64_t>(promised) * bytesPerFrame);
  }
  const std::int64_t declared = demuxer_->declaredDuration();
  // Other containers' lengths include the encoder's silence.
  if (declared == 0 || rate <= 0 || !(demuxer_->isMpeg4() || demuxer_->isBareStream())) {
    return false;
  }
  const std::int64_t frames =
      av_rescale_q_rnd(declared, stream.time_base, {1, rate}, AV_ROUND_NEAR_INF);
  return frames < 0 || frames > decodedFrames_ + kToleratedFrames;  // negative: it overflowed
}

}  // namespace platform
