#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/ffmpeg/AudioFileIo.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/ffmpeg/Mp3LengthTag.h"
#include "platform/ffmpeg/Mpeg4Edits.h"
#include "platform/files/File.h"

struct AVFormatContext;
struct AVStream;

namespace platform {

/// Reads the packets of a file's sound stream once, from start to end. Of several sound streams it
/// takes the one marked as default, otherwise the one with the most content. Other streams,
/// pictures and video are ignored. Wrong lengths in headers are corrected (correctHeader()).
///
/// Errors are those of FFmpeg, except when a system call failed while it read: then that errno.
///
/// Threads: any, one at a time. Several demuxers may read the same File. Real-time: not safe.
class AudioFileDemuxer {
 public:
  /// Opens a container of type WAV (including RF64), W64, AIFF, CAF, MPEG-4, MP3 or AAC in ADTS,
  /// whatever the file's name. Stops early, with what is known by then, if a header takes more than
  /// about a second of work. Null with `error` (AVERROR_EXIT when cancelled) on failure.
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
  /// MPEG-4: what is played of the packets, in units of the stream's time base. nullptr for other
  /// files, and where FFmpeg applies an edit list that reorders its media.
  [[nodiscard]] const Mpeg4Edits* edits() const { return edits_ ? &*edits_ : nullptr; }
  /// MP3 or ADTS: a bare sequence of packets without a table or a declared length.
  [[nodiscard]] bool isBareStream() const;
  /// Uncompressed samples: frames of a fixed number of bytes.
  [[nodiscard]] bool isLinearPcm() const { return isLinearPcm_; }

  /// Length of the stream as declared by the header, after its edits, in units of its time base; 0
  /// if absent. May be nonsense in a damaged file.
  [[nodiscard]] std::int64_t declaredDuration() const;

  /// The same, or FFmpeg's estimate from the file's size and the bit rate of its first packets.
  [[nodiscard]] std::int64_t estimatedDuration() const;

  /// Length in frames declared by a linear PCM header, whatever the file's real length; 0 if
  /// absent. At most kMostPromisedFrames.
  [[nodiscard]] std::int64_t promisedPcmFrames() const;

  /// Five years at the highest rate: a longer promise is nonsense, and sums must not overflow.
  static constexpr std::int64_t kMostPromisedFrames = std::int64_t{1} << 47;

  /// MP3: what the encoder added, which the decoder leaves out. Only in a file that declares its
  /// length.
  [[nodiscard]] const std::optional<Mp3LengthTag>& mp3Tag() const { return mp3Tag_; }

  /// Size of the file in bytes; without what follows the samples, where correctHeader() found it.
  [[nodiscard]] std::uint64_t size() const { return io_->view().size(); }
  /// Bytes read so far.
  [[nodiscard]] std::uint64_t bytesRead() const { return io_->view().bytesRead(); }

  /// Byte offset where the header ends and, in linear PCM, the samples begin.
  [[nodiscard]] std::uint64_t headerEnd() const { return headerEnd_; }

 private:
  AudioFileDemuxer(std::unique_ptr<AudioFileIo> io, DecodingBudget& interruption)
      : io_(std::move(io)), interruption_(interruption) {}

  [[nodiscard]] int openContainer(const std::string& path);
  [[nodiscard]] int chooseStream();
  [[nodiscard]] int verdict(int error) const;
  [[nodiscard]] bool isDurationGuessed() const;
  [[nodiscard]] std::int64_t promiseOfHeader() const;

  const std::unique_ptr<AudioFileIo> io_;  // outlives the context
  DecodingBudget& interruption_;
  AvInput context_;
  AVStream* stream_ = nullptr;  // the context's
  bool isLinearPcm_ = false;
  bool isCut_ = false;  // a read failed: nothing follows the packet that it cut
  std::uint64_t headerEnd_ = 0;
  std::optional<std::map<std::uint32_t, Mpeg4Edits>> tracks_;
  std::optional<Mpeg4Edits> edits_;  // of the stream
  std::optional<Mp3LengthTag> mp3Tag_;
};

}  // namespace platform
