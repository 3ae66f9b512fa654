#pragma once

#include <cstdint>

#include "platform/ffmpeg/AudioFileDemuxer.h"

namespace platform {

/// Length of a file's sound.
struct AudioFileLength {
  std::int64_t frames = 0;  ///< of the working format (44100 a second), rounded; 0 when unknown
  /// Derived from the file's size and bit rate: MP3 without a length in its first packet, ADTS.
  bool isEstimated = false;
};

/// The length as far as it is known without reading the file. Exact for undamaged files of every
/// kind that the program writes. A hint only: a damaged header may declare any length, so never
/// allocate by it.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] AudioFileLength audioFileLength(const AudioFileDemuxer& demuxer);

}  // namespace platform
