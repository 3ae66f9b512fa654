#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ffmpeg/AudioFileIo.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/files/File.h"

struct AVFormatContext;
struct AVStream;

namespace platform {

/// Reads the packets of a file's sound stream once, from start to end. Of several sound streams it
/// takes the one marked as default, otherwise the one with the most content. Other streams,
/// pictures and video are ignored.
///
/// Threads: any, one at a time. Several demuxers may read the same File. Real-time: not safe.
class AudioFileDemuxer {
 public:
  /// Opens a container of type WAV (including RF64), W64, AIFF, CAF, MPEG-4, MP3 or AAC in ADTS,
  /// whatever the file's name. Stops early, with what is known by then, if a header takes more than
  /// about a second of work. Null with `error` (FFmpeg's or a negative errno; AVERROR_EXIT when
  /// cancelled) on failure.
  ///
  /// `file` and `interruption` must outlive the demuxer. Only the suffix of `path` is used.
  [[nodiscard]] static std::unique_ptr<AudioFileDemuxer> open(File& file, std::uint64_t size,
                                                              const std::string& path,
                                                              DecodingBudget& interruption,
                                                              int& error);

  ~AudioFileDemuxer();
  AudioFileDemuxer(const AudioFileDemuxer&) = delete;
  AudioFileDemuxer& operator=(const AudioFileDemuxer&) = delete;

  [[nodiscard]] const AVStream& stream() const { return *stream_; }
  [[nodiscard]] const AVFormatContext& container() const { return *context_; }

  /// Reads the stream's next packet. 0, AVERROR_EOF at the end (also when the search for the next
  /// packet was given up after too much other data), AVERROR_EXIT when interrupted, or the error
  /// that ended the file.
  [[nodiscard]] int read(AVPacket& packet);

  /// MPEG-4: packet durations also give the end of the last packet's sound.
  [[nodiscard]] bool isMpeg4() const;
  /// MP3 or ADTS: a bare sequence of packets without a table or a declared length.
  [[nodiscard]] bool isBareStream() const;
  /// Uncompressed samples: frames of a fixed number of bytes.
  [[nodiscard]] bool isLinearPcm() const { return isLinearPcm_; }

  /// Length of the stream as declared by the header, in units of its time base; 0 if absent. May be
  /// nonsense in a damaged file.
  [[nodiscard]] std::int64_t declaredDuration() const;

  /// Length in frames declared by a linear PCM header, whatever the file's real length; 0 if
  /// absent.
  [[nodiscard]] std::int64_t promisedPcmFrames() const;

  /// Byte offset where the header ends and, in linear PCM, the samples begin.
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
