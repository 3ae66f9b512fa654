#pragma once

#include "platform/media/AudioFileTags.h"

struct AVFormatContext;
struct AVStream;

namespace platform {

/// The tags of an opened file, `sound` being the stream of it that is read: of another one's texts
/// none is taken. Texts that are not UTF-8 are taken for Latin-1, as old programs
/// write them. A cover that is neither JPEG nor PNG is left out.
///
/// Threads: any, one at a time for each file. Real-time: not safe.
[[nodiscard]] AudioFileTags tagsOf(const AVFormatContext& file, const AVStream& sound);

}  // namespace platform
