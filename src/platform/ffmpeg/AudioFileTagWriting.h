#pragma once

#include "platform/media/AudioFileTags.h"
#include "platform/media/ExtAudioFileOutput.h"

struct AVFormatContext;

namespace platform {

/// Gives a muxer with its sound stream the tags that a file of its kind can hold. Call it before
/// the header is written. Returns 0, or FFmpeg's error.
///
/// Threads: any, one at a time for each file. Real-time: not safe.
[[nodiscard]] int addTags(AVFormatContext& muxer, AudioFileKind kind, const AudioFileTags& tags);

/// Passes the cover to the muxer if addTags() has made room for it. Call it after the header was
/// written. Returns 0, or FFmpeg's error.
///
/// Threads: as above. Real-time: not safe.
[[nodiscard]] int writeCover(AVFormatContext& muxer, const AudioFileTags& tags);

}  // namespace platform
