#pragma once

#include "platform/base/AudioTypes.h"
#include "platform/media/AudioFileStatus.h"

/// The only conversion of FFmpeg and system errors to audio file statuses.
///
/// Threads: any. Real-time: safe.
namespace platform {

/// The operation that failed: the same error can mean different things.
enum class AudioFileStage {
  opening,  ///< finding out what a file is
  reading,  ///< reading and decoding what was found
  writing,  ///< creating, encoding, finishing
};

/// The status of an error of the stage. `error` is an errno, negative as FFmpeg's AVERROR() gives
/// it, or one of FFmpeg's own codes. 0 and positive numbers are kAudioStatusOk. Never
/// kCancelledStatus.
[[nodiscard]] AudioStatus audioFileStatus(AudioFileStage stage, int error);

/// An error that a function of FFmpeg returned, as its own verdict. Demuxers, decoders, encoders
/// and muxers return errnos too (EPERM, EIO, ENOMEM) that no system call gave them: those are
/// AVERROR_INVALIDDATA here. ENOMEM stays if the system does refuse allocationBound().
[[nodiscard]] int ffmpegVerdict(int error);

}  // namespace platform
