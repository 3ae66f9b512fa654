#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/AudioTypes.h"
#include "platform/files/File.h"
#include "platform/media/AudioFileIo.h"
#include "platform/media/AudioFileStatus.h"
#include "platform/media/AvResources.h"
#include "platform/media/MediaLibraryLog.h"

namespace platform {

/// Kinds of audio files that can be written, all of 44100 Hz and two channels: 16-bit samples as
/// WAV (RF64 from 4 GB on), AIFF or CAF, or AAC in an MPEG-4 file.
enum class AudioFileKind : std::uint32_t { wave = 0, aiff = 1, caf = 2, m4a = 3 };

/// An audio file that is written in the working format and encoded on the way: what the platform's
/// extended audio files are to a writer, over FFmpeg's libraries.
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
  [[nodiscard]] static std::optional<std::uint64_t> maximumFrames(AudioFileKind kind);

  /// Disposes of the file if that was not done.
  ~ExtAudioFileOutput();
  ExtAudioFileOutput(const ExtAudioFileOutput&) = delete;
  ExtAudioFileOutput& operator=(const ExtAudioFileOutput&) = delete;

  /// The only format there is, kWorkingFormat.
  [[nodiscard]] AudioStatus setClientDataFormat(const AudioStreamBasicDescription& format) const;

  /// Appends frames (interleaved pairs of float). Frames that would pass the kind's limit are
  /// refused as a whole with kFileTooLargeStatus.
  [[nodiscard]] AudioStatus write(const float* frames, std::uint64_t count);

  /// Writes what the encoder holds back and finishes the header. The file is complete, as far as
  /// the system has told, only when this gives kAudioStatusOk; nothing can be written afterwards.
  [[nodiscard]] AudioStatus dispose();

 private:
  explicit ExtAudioFileOutput(AudioFileKind kind) : kind_(kind) {}

  [[nodiscard]] AudioStatus start(const std::string& path);
  [[nodiscard]] int openEncoder();
  [[nodiscard]] int openConverter();
  [[nodiscard]] int openMuxer();
  [[nodiscard]] int makeFrame();
  [[nodiscard]] int append(const float* frames, std::uint64_t count);
  [[nodiscard]] int fill(const float* frames, int count);
  [[nodiscard]] int encodeFilled();
  [[nodiscard]] int encode(const AVFrame* frame);
  [[nodiscard]] int finish();
  [[nodiscard]] AudioStatus keep(int error);

  const AudioFileKind kind_;
  MediaLibraryLog::Budget log_;
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
  std::int64_t encodedFrames_ = 0;  // given to the encoder
  AudioStatus firstFailure_ = kAudioStatusOk;
  bool isDisposed_ = false;
};

}  // namespace platform
