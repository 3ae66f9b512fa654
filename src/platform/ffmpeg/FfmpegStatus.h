#pragma once

#include "platform/base/AudioTypes.h"
#include "platform/media/AudioFileStatus.h"

/// The one place where errors of FFmpeg and of the system become statuses of audio files.
///
/// Threads: any. Real-time: safe.
namespace platform {

/// What was being done when an error came: the same error means different things.
enum class AudioFileStage {
  opening,  ///< finding out what a file is
  reading,  ///< reading and decoding what was found
  writing,  ///< creating, encoding, finishing
};

/// The status of an error of the stage. `error` is an errno, negative as FFmpeg's AVERROR() gives
/// it, or one of FFmpeg's own codes. 0 and positive numbers are kAudioStatusOk. Never
/// kCancelledStatus.
[[nodiscard]] AudioStatus audioFileStatus(AudioFileStage stage, int error);

}  // namespace platform
