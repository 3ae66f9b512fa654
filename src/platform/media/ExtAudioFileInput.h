#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/AudioTypes.h"
#include "platform/media/AudioFileStatus.h"

namespace platform {

/// An audio file that is read in the working format, whatever it is encoded in: what the platform's
/// extended audio files are to a reader, over FFmpeg.
///
/// Threads: any, one at a time; the flag of a cancel may be set by any thread at any time, and a
/// call that runs then ends within a fraction of a second with kCancelledStatus.
/// Real-time: not safe.
class ExtAudioFileInput {
 public:
  struct Opened {
    std::unique_ptr<ExtAudioFileInput> file;  ///< null when it failed
    AudioStatus status = kAudioStatusOk;
  };

  /// Opens a regular file and finds its sound. No file takes more than about a second of work,
  /// however it is damaged. `cancelled` may be null.
  [[nodiscard]] static Opened openURL(const std::string& path,
                                      std::shared_ptr<const std::atomic<bool>> cancelled);

  virtual ~ExtAudioFileInput() = default;

  /// How the file's sound is encoded. Fields that its encoding has no value for are 0.
  [[nodiscard]] virtual AudioStreamBasicDescription fileDataFormat() const = 0;

  /// Sets the format of what read() gives. kWorkingFormat is the only one there is; of the file's
  /// sound everything from 1 to 8 channels and 1,000 to 768,000 Hz can be converted to it.
  [[nodiscard]] virtual AudioStatus setClientDataFormat(
      const AudioStreamBasicDescription& format) const = 0;

  /// Length in frames of the client format, rounded; 0 when nothing tells. A hint only. Counting
  /// an MP3 or ADTS file takes half a second at most, once.
  [[nodiscard]] virtual std::int64_t fileLengthFrames() = 0;

  struct Read {
    std::uint32_t frames = 0;
    AudioStatus status = kAudioStatusOk;
  };

  /// The next `frames` frames (interleaved pairs of float), fewer only at the end. What could be
  /// decoded comes first, with kAudioStatusOk; the call after it gives 0 frames and says why the
  /// sound has ended: kAudioStatusOk for the end of the file, kInvalidFileStatus when it is damaged
  /// or cut off, kFileInputOutputStatus when the medium failed.
  [[nodiscard]] virtual Read read(float* destination, std::uint32_t frames) = 0;

  /// Begins anew with the first frame. The file is decoded anew from its begin: only so are the
  /// same frames read to the bit.
  [[nodiscard]] virtual AudioStatus seekToStart() = 0;
};

}  // namespace platform
