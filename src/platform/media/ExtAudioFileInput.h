#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/AudioFileStatus.h"
#include "platform/media/AudioFileTags.h"

namespace platform {

/// An audio file of any encoding, read in the working format through FFmpeg.
///
/// Threads: any, one at a time. Any thread may set the cancel flag at any time; a running call then
/// ends within a fraction of a second with kCancelledStatus.
/// Real-time: not safe.
class ExtAudioFileInput {
 public:
  struct Opened {
    std::unique_ptr<ExtAudioFileInput> file;  ///< null when it failed
    AudioStatus status = kAudioStatusOk;
  };

  /// Opens a regular file and finds its sound. Takes at most about a second of work, however
  /// damaged the file is. `cancelled` may be null.
  [[nodiscard]] static Opened openURL(const std::string& path,
                                      std::shared_ptr<const std::atomic<bool>> cancelled);

  virtual ~ExtAudioFileInput() = default;

  /// The encoding of the file's sound. Fields without a value are 0; mBitsPerChannel has one where
  /// the samples are kept exactly.
  [[nodiscard]] virtual AudioStreamBasicDescription fileDataFormat() const = 0;

  /// What the file says of its sound; empty after a failed seekToStart().
  [[nodiscard]] virtual AudioFileTags tags() const = 0;

  /// Sets the format that read() returns; only kWorkingFormat is supported. Files with 1 to 8
  /// channels and 1,000 to 768,000 Hz can be converted to it.
  [[nodiscard]] virtual AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const = 0;

  /// Length in frames of the client format, rounded; 0 when unknown. A hint only: never allocate by
  /// it.
  [[nodiscard]] virtual std::int64_t fileLengthFrames() const = 0;

  /// Whether the length is an estimate from the file's size and bit rate: that of MP3 without a
  /// length header and of ADTS, until the file has been read to its end.
  [[nodiscard]] virtual bool isLengthEstimated() const = 0;

  /// Share of the file's bytes that has been read since its start, 0 to 1; 1 at the end.
  [[nodiscard]] virtual double shareRead() const = 0;

  struct Read {
    std::uint32_t frames = 0;
    AudioStatus status = kAudioStatusOk;
  };

  /// The next `frames` frames (interleaved pairs of float), fewer only at the end. Decodable sound
  /// comes first, with kAudioStatusOk. The next call returns 0 frames and the reason for the end:
  /// kAudioStatusOk for the end of the file, kInvalidFileStatus when it is damaged or truncated,
  /// kFileInputOutputStatus when the medium failed.
  [[nodiscard]] virtual Read read(float* destination, std::uint32_t frames) = 0;

  /// Returns to the first frame. Decodes the file again from its start, since only that yields
  /// bit-identical frames.
  [[nodiscard]] virtual AudioStatus seekToStart() = 0;
};

}  // namespace platform
