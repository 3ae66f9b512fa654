#include "platform/ffmpeg/WorkingFormatConverter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/ffmpeg/Ffmpeg.h"
#include "platform/ffmpeg/FiniteSamples.h"

namespace platform {
namespace {

constexpr int kRate = 44100;
constexpr std::size_t kChannels = 2;
constexpr int kFlushFrames = 4096;

bool isFloat(int format) {
  const AVSampleFormat packed = av_get_packed_sample_fmt(static_cast<AVSampleFormat>(format));
  return packed == AV_SAMPLE_FMT_FLT || packed == AV_SAMPLE_FMT_DBL;
}

void makeFrameFinite(AVFrame& frame, int channels) {
  const auto format = static_cast<AVSampleFormat>(frame.format);
  const bool planar = av_sample_fmt_is_planar(format) != 0;
  const auto samples =
      static_cast<std::size_t>(frame.nb_samples) * static_cast<std::size_t>(planar ? 1 : channels);
  for (int plane = 0; plane < (planar ? channels : 1); ++plane) {
    void* const data = frame.extended_data[plane];
    if (av_get_packed_sample_fmt(format) == AV_SAMPLE_FMT_DBL) {
      makeFinite(static_cast<double*>(data), samples);
    } else {
      makeFinite(static_cast<float*>(data), samples);
    }
  }
}

std::uint64_t usualMask(int channels) {
  AVChannelLayout layout{};
  av_channel_layout_default(&layout, channels);
  const std::uint64_t mask = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0;
  av_channel_layout_uninit(&layout);
  return mask;
}

// The filter, measured to pass everything up to 20 kHz without aliasing.
void chooseFilter(SwrContext* converter, bool soxr) {
  if (soxr) {
    av_opt_set_int(converter, "resampler", SWR_ENGINE_SOXR, 0);
    av_opt_set_double(converter, "precision", 28, 0);
    av_opt_set_double(converter, "cutoff", 0.95, 0);
  } else {
    av_opt_set_int(converter, "filter_size", 128, 0);
    av_opt_set_double(converter, "cutoff", 0.97, 0);
    av_opt_set_int(converter, "filter_type", SWR_FILTER_TYPE_KAISER, 0);
    av_opt_set_double(converter, "kaiser_beta", 12, 0);
  }
}

}  // namespace

bool WorkingFormatConverter::canConvert(int sampleRate, int channels) {
  return sampleRate >= kLowestRate && sampleRate <= kHighestRate && channels >= 1 &&
         channels <= kMaxChannels;
}

WorkingFormatConverter::Source WorkingFormatConverter::sourceOf(const AVFrame& frame) {
  const AVChannelLayout& layout = frame.ch_layout;
  return {.format = frame.format,
          .sampleRate = frame.sample_rate,
          .channels = layout.nb_channels,
          .mask = layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0};
}

int WorkingFormatConverter::put(AVFrame& frame, float* destination, std::uint32_t room) {
  const Source source = sourceOf(frame);
  if (!canConvert(source.sampleRate, source.channels)) {
    return AVERROR_PATCHWELCOME;
  }
  if (source != source_ || converter_ == nullptr) {
    if (const int result = finish(); result < 0) {
      return result;
    }
    if (const int result = start(source); result < 0) {
      return result;
    }
  }
  if (isFloat(source.format)) {
    if (const int result = av_frame_make_writable(&frame); result < 0) {
      return result;
    }
    makeFrameFinite(frame, source.channels);
  }
  // The resampler may also return samples it held back: room for those too. It keeps any rest.
  const std::int64_t most =
      av_rescale_rnd(frame.nb_samples, kRate, source.sampleRate, AV_ROUND_UP) + kFlushFrames;
  const bool direct = waitingBegin_ == waiting_.size() && room >= most;
  if (direct) {
    return convert(&frame, destination, static_cast<int>(most));
  }
  const std::size_t before = waiting_.size();
  waiting_.resize(before + static_cast<std::size_t>(most) * kChannels);
  const int converted = convert(&frame, waiting_.data() + before, static_cast<int>(most));
  waiting_.resize(before + static_cast<std::size_t>(std::max(converted, 0)) * kChannels);
  return converted < 0 ? converted : static_cast<int>(take(destination, room));
}

int WorkingFormatConverter::finish() {
  while (converter_ != nullptr) {
    const std::size_t before = waiting_.size();
    waiting_.resize(before + kFlushFrames * kChannels);
    const int converted = convert(nullptr, waiting_.data() + before, kFlushFrames);
    waiting_.resize(before + static_cast<std::size_t>(std::max(converted, 0)) * kChannels);
    if (converted <= 0) {
      converter_.reset();
      return converted;
    }
  }
  return 0;
}

std::uint32_t WorkingFormatConverter::take(float* destination, std::uint32_t room) {
  const std::size_t frames =
      std::min<std::size_t>(room, (waiting_.size() - waitingBegin_) / kChannels);
  if (frames > 0) {
    std::memcpy(destination, waiting_.data() + waitingBegin_, frames * kChannels * sizeof(float));
    waitingBegin_ += frames * kChannels;
  }
  if (waitingBegin_ == waiting_.size()) {
    waiting_.clear();
    waitingBegin_ = 0;
  }
  return static_cast<std::uint32_t>(frames);
}

int WorkingFormatConverter::start(const Source& source) {
  const std::uint64_t usual = usualMask(source.channels);
  // One channel is always mono, two are left and right, whatever speakers a header names.
  const std::uint64_t named = source.channels <= 2 || source.mask == 0 ? usual : source.mask;
  int result = AVERROR(EINVAL);
  for (const std::uint64_t mask : {named, usual}) {
    for (const bool soxr : {true, false}) {
      result = startWith(source, mask, soxr);
      if (result >= 0) {
        source_ = source;
        return 0;
      }
    }
  }
  return result;
}

int WorkingFormatConverter::startWith(const Source& source, std::uint64_t mask, bool soxr) {
  AVChannelLayout in{};
  AVChannelLayout out{};
  if (av_channel_layout_from_mask(&in, mask) < 0 ||
      av_channel_layout_from_mask(&out, AV_CH_LAYOUT_STEREO) < 0) {
    return AVERROR(EINVAL);
  }
  SwrContext* context = nullptr;
  int result = swr_alloc_set_opts2(&context, &out, AV_SAMPLE_FMT_FLT, kRate, &in,
                                   static_cast<AVSampleFormat>(source.format), source.sampleRate, 0,
                                   nullptr);
  converter_.reset(context);
  if (result < 0) {
    converter_.reset();
    return result;
  }
  av_opt_set_sample_fmt(context, "internal_sample_fmt", AV_SAMPLE_FMT_FLTP, 0);
  if (source.sampleRate != kRate) {
    chooseFilter(context, soxr);
  }
  constexpr std::array<double, 2> kToBoth{1, 1};  // FFmpeg's default would be 3 dB quieter
  if (source.channels == 1) {
    result = swr_set_matrix(context, kToBoth.data(), 1);
  }
  if (result >= 0) {
    result = swr_init(context);
  }
  if (result < 0) {
    converter_.reset();
  }
  return result;
}

int WorkingFormatConverter::convert(const AVFrame* frame, float* destination, int room) {
  std::uint8_t* out = reinterpret_cast<std::uint8_t*>(destination);
  const std::uint8_t** const in =
      frame != nullptr ? const_cast<const std::uint8_t**>(frame->extended_data) : nullptr;
  const int frames =
      swr_convert(converter_.get(), &out, room, in, frame != nullptr ? frame->nb_samples : 0);
  if (frames > 0 && isFloat(source_.format) && !isPlainFloat()) {
    makeFinite(destination, static_cast<std::size_t>(frames) * kChannels);
  }
  return frames;
}

// Whether finite samples stay as they are, so that nothing can have passed a float's range.
bool WorkingFormatConverter::isPlainFloat() const {
  return source_.sampleRate == kRate && source_.channels <= 2;
}

}  // namespace platform
