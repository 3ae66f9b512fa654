#pragma once

#include <cstdint>
#include <string>

#include "platform/ffmpeg/AudioFileDemuxer.h"
#include "platform/ffmpeg/DecodingBudget.h"
#include "platform/files/File.h"

namespace platform {

/// Length of a file's sound in frames of the working format (44100 a second), rounded; 0 when
/// unknown. Exact for undamaged files of every kind that the program writes. A hint only: a damaged
/// header may declare any length, so never allocate by it.
///
/// The packets of MP3 and ADTS are counted, which takes about 2 ms per minute of sound. Beyond half
/// a second of work the length is estimated from the counted share of the file.
///
/// Threads: any; reads the file independently of `demuxer`. Real-time: not safe.
[[nodiscard]] std::int64_t audioFileLengthFrames(const AudioFileDemuxer& demuxer, File& file,
                                                 std::uint64_t size, const std::string& path,
                                                 DecodingBudget& interruption);

}  // namespace platform
