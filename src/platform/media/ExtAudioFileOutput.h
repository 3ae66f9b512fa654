#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/base/Result.h"
#include "platform/files/File.h"
#include "platform/media/AudioFileStatus.h"
#include "platform/media/AudioFileTags.h"

namespace platform {

/// File types that can be written, all with 44100 Hz and two channels: 16-bit samples as WAV (RF64
/// from 4 GB on), AIFF or CAF, or AAC in an MPEG-4 file.
enum class AudioFileKind : std::uint32_t { wave = 0, aiff = 1, caf = 2, m4a = 3 };

/// Whether files of a kind can hold a cover.
[[nodiscard]] constexpr bool holdsCover(AudioFileKind kind) {
  return kind == AudioFileKind::aiff || kind == AudioFileKind::m4a;
}

/// An audio file, written in the working format and encoded through FFmpeg.
///
///  - A 16-bit sample s, s / 32768 as a float, is written as s, for all 65,536 values: no dither.
///    Others are rounded to the nearest.
///  - Samples that are not finite become 0; those beyond full scale are clipped.
///  - AAC has 256 kbit/s, which keeps everything up to 20 kHz. Its length is exact to the frame.
///    A file without any frame could not be opened again, so it gets one frame of silence.
///
/// After the first failure every call returns it and writes nothing.
///
/// Threads: any, one at a time. Real-time: not safe.
class ExtAudioFileOutput {
 public:
  struct Created {
    std::unique_ptr<ExtAudioFileOutput> file;  ///< null when it failed
    AudioStatus status = kAudioStatusOk;
  };

  /// Creates the file, or truncates an existing one, and writes its header.
  [[nodiscard]] static Created createWithURL(const std::string& path, AudioFileKind kind);
  /// Writes the header to a new, empty file, or fails as opening that file did. The file gets the
  /// tags that its kind can hold; its sound is the same with and without them.
  [[nodiscard]] static Created createWithFile(Result<std::unique_ptr<File>> file,
                                              AudioFileKind kind, const AudioFileTags& tags = {});

  /// Maximum frames that a file of this kind can hold beside tags of so many bytes; nothing for no
  /// limit.
  [[nodiscard]] static constexpr std::optional<std::uint64_t> maximumFrames(
      AudioFileKind kind, std::uint64_t tagBytes = 0) {
    // AIFF's length fields have 32 bits. Everything but samples and tags takes less than this.
    constexpr std::uint64_t kHeaderBytes = 4096;
    constexpr std::uint64_t kBytesPerFrame = 4;
    constexpr std::uint64_t kMaxBytes = std::numeric_limits<std::uint32_t>::max() - kHeaderBytes;
    return kind != AudioFileKind::aiff
               ? std::nullopt
               : std::optional((kMaxBytes - std::min(tagBytes, kMaxBytes)) / kBytesPerFrame);
  }

  /// Bytes that a file with so many frames takes at least, to find out beforehand that it cannot
  /// fit. AAC counts with half of its rate, since quiet sound takes less than the whole.
  [[nodiscard]] static constexpr std::uint64_t estimatedBytes(AudioFileKind kind,
                                                              std::uint64_t frames) {
    constexpr std::uint64_t kBytesPerFrame = 4;
    constexpr std::uint64_t kAacBytesPerSecond = 16'000;
    constexpr std::uint64_t kRate = 44'100;
    return kind == AudioFileKind::m4a ? frames / kRate * kAacBytesPerSecond
                                      : frames * kBytesPerFrame;
  }

  /// Disposes of the file unless already done.
  virtual ~ExtAudioFileOutput() = default;

  /// Only kWorkingFormat is supported.
  [[nodiscard]] virtual AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const = 0;

  /// Appends frames (interleaved pairs of float). A write that would exceed the kind's limit is
  /// refused entirely with kFileTooLargeStatus.
  [[nodiscard]] virtual AudioStatus write(const float* frames, std::uint64_t count) = 0;

  /// Flushes the encoder and finishes the header. The file is complete, as far as the system
  /// reports, only if this returns kAudioStatusOk; nothing can be written afterwards.
  [[nodiscard]] virtual AudioStatus dispose() = 0;
};

}  // namespace platform
