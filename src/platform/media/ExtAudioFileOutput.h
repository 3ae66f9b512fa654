#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/AudioFileStatus.h"

namespace platform {

/// Kinds of audio files that can be written, all of 44100 Hz and two channels: 16-bit samples as
/// WAV (RF64 from 4 GB on), AIFF or CAF, or AAC in an MPEG-4 file.
enum class AudioFileKind : std::uint32_t { wave = 0, aiff = 1, caf = 2, m4a = 3 };

/// An audio file that is written in the working format and encoded on the way: what the platform's
/// extended audio files are to a writer, over FFmpeg.
///
///  - A sample s of 16-bit audio, s / 32768 as a float, comes out as s, for all 65,536 of them: no
///    dither. Others are rounded to the nearest.
///  - Samples that are not finite become 0, those beyond full scale full scale.
///  - AAC has 256 kbit/s, which keeps everything up to 20 kHz, and its length is exact to the
///  frame.
///    A file without any frame could not be opened again by anything: it gets one of silence.
///
/// The first failure is kept: every later call gives it again and writes nothing.
///
/// Threads: any, one at a time. Real-time: not safe.
class ExtAudioFileOutput {
 public:
  struct Created {
    std::unique_ptr<ExtAudioFileOutput> file;  ///< null when it failed
    AudioStatus status = kAudioStatusOk;
  };

  /// Makes the file, or empties the one that is there, and writes its header.
  [[nodiscard]] static Created createWithURL(const std::string& path, AudioFileKind kind);

  /// Most frames that a file of the kind can hold; nothing for no limit.
  [[nodiscard]] static constexpr std::optional<std::uint64_t> maximumFrames(AudioFileKind kind) {
    // AIFF's length fields have 32 bits. What stands beside the samples takes less than this.
    constexpr std::uint64_t kHeaderBytes = 4096;
    constexpr std::uint64_t kBytesPerFrame = 4;
    return kind != AudioFileKind::aiff
               ? std::nullopt
               : std::optional((std::numeric_limits<std::uint32_t>::max() - kHeaderBytes) /
                               kBytesPerFrame);
  }

  /// Disposes of the file if that was not done.
  virtual ~ExtAudioFileOutput() = default;

  /// The only format there is, kWorkingFormat.
  [[nodiscard]] virtual AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const = 0;

  /// Appends frames (interleaved pairs of float). Frames that would pass the kind's limit are
  /// refused as a whole with kFileTooLargeStatus.
  [[nodiscard]] virtual AudioStatus write(const float* frames, std::uint64_t count) = 0;

  /// Writes what the encoder holds back and finishes the header. The file is complete, as far as
  /// the system has told, only when this gives kAudioStatusOk; nothing can be written afterwards.
  [[nodiscard]] virtual AudioStatus dispose() = 0;
};

}  // namespace platform
