#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ffmpeg/AudioFileIo.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/files/File.h"

struct AVStream;

namespace platform {

/// The packets of a file's sound stream, from its beginning to its end, once. Of several streams it
/// is the one that the file marks as its default, without a mark the one with most in it. The
/// others, pictures and video are left out.
///
/// Threads: any, one at a time. Several demuxers may read the same File. Real-time: not safe.
class AudioFileDemuxer {
 public:
  /// Opens a file's container, one of WAV (RF64 included), W64, AIFF, CAF, MPEG-4, MP3 and AAC in
  /// ADTS, whatever its name says. Ends early, with what is known by then, when a header makes it
  /// work for more than about a second. Null with `error` (FFmpeg's or a negative errno;
  /// AVERROR_EXIT when it was cancelled) when it fails.
  ///
  /// `file` and `interruption` must outlive the demuxer. `path` is only looked at for its suffix.
  [[nodiscard]] static std::unique_ptr<AudioFileDemuxer> open(File& file, std::uint64_t size,
                                                              const std::string& path,
                                                              DecodingBudget& interruption,
                                                              int& error);

  ~AudioFileDemuxer();
  AudioFileDemuxer(const AudioFileDemuxer&) = delete;
  AudioFileDemuxer& operator=(const AudioFileDemuxer&) = delete;

  [[nodiscard]] const AVStream& stream() const { return *stream_; }

  /// The next packet of the stream: 0, AVERROR_EOF at the end (also when what follows is so long no
  /// sound that the search for the next packet was given up), AVERROR_EXIT when interrupted, or the
  /// error that ended the file.
  [[nodiscard]] int read(AVPacket& packet);

  /// MPEG-4: its packets bear durations that also tell where the last one's sound ends.
  [[nodiscard]] bool isMpeg4() const;
  /// MP3 or ADTS: a bare row of packets without a table, the length of which nothing tells.
  [[nodiscard]] bool isBareStream() const;
  /// Uncompressed samples: frames of a fixed number of bytes.
  [[nodiscard]] bool isLinearPcm() const { return isLinearPcm_; }

  /// Length of the stream in units of its time base as the header gives it; 0 when it gives none.
  /// May be any nonsense in a damaged file.
  [[nodiscard]] std::int64_t declaredDuration() const;

  /// Length in frames that the header of linear PCM promises, whether the file is so long or not;
  /// 0 when it promises none.
  [[nodiscard]] std::int64_t promisedPcmFrames() const;

  /// Byte at which the header ended and, in a file of linear PCM, the samples begin.
  [[nodiscard]] std::uint64_t headerEnd() const { return headerEnd_; }

 private:
  AudioFileDemuxer(File& file, std::unique_ptr<AudioFileIo> io, DecodingBudget& interruption)
      : file_(file), io_(std::move(io)), interruption_(interruption) {}

  [[nodiscard]] int openContainer(const std::string& path);
  [[nodiscard]] int chooseStream();
  [[nodiscard]] bool isDurationGuessed() const;

  File& file_;
  const std::unique_ptr<AudioFileIo> io_;  // outlives the context
  DecodingBudget& interruption_;
  AvInput context_;
  AVStream* stream_ = nullptr;  // the context's
  bool isLinearPcm_ = false;
  std::uint64_t headerEnd_ = 0;
};

}  // namespace platform
