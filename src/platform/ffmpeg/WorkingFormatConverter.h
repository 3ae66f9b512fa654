#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/ffmpeg/AvResources.h"

namespace platform {

/// Converts decoded frames of any rate, sample type and channel layout to the working format: 44100
/// Hz, interleaved stereo, 32-bit float.
///
///  - n frames at another rate become round(n · 44100 / rate), aligned to the sample, without
///    aliasing from above 22.05 kHz (soxr at 28 bits, or FFmpeg's own filter of 128 taps where soxr
///    is missing).
///  - Mono is copied to both channels, stereo is unchanged, and 3 to 8 channels are mixed down with
///    the usual factors. The mix may exceed full scale, which a float can hold.
///  - Samples that are not finite become 0.
///  - A file may change its format in the middle.
///
/// Threads: any, one at a time. Real-time: not safe.
class WorkingFormatConverter {
 public:
  static constexpr int kLowestRate = 1000;      ///< Hz; below, a second would become minutes
  static constexpr int kHighestRate = 768'000;  ///< Hz
  static constexpr int kMaxChannels = 8;

  /// Whether frames of this kind can be converted.
  [[nodiscard]] static bool canConvert(int sampleRate, int channels);

  /// Converts a frame. Up to `room` frames go to `destination`, the return value says how many; the
  /// rest waits for take(). Negative (an AVERROR) on failure; earlier frames remain. May change the
  /// frame's samples.
  [[nodiscard]] int put(AVFrame& frame, float* destination, std::uint32_t room);

  /// Ends the input: the resampler's remaining sound waits for take().
  [[nodiscard]] int finish();

  /// Copies up to `room` waiting frames; returns how many.
  [[nodiscard]] std::uint32_t take(float* destination, std::uint32_t room);

 private:
  struct Source {
    int format = -1;
    int sampleRate = 0;
    int channels = 0;
    std::uint64_t mask = 0;  // speakers; 0 when the file names no known ones

    friend bool operator==(const Source&, const Source&) = default;
  };

  [[nodiscard]] static Source sourceOf(const AVFrame& frame);
  [[nodiscard]] int start(const Source& source);
  [[nodiscard]] int startWith(const Source& source, std::uint64_t mask, bool soxr);
  [[nodiscard]] int convert(const AVFrame* frame, float* destination, int room);
  [[nodiscard]] bool isPlainFloat() const;

  Source source_;
  AvConverter converter_;
  std::vector<float> waiting_;    // interleaved
  std::size_t waitingBegin_ = 0;  // samples taken already
};

}  // namespace platform
