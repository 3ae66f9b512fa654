#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/base/AudioTypes.h"
#include "storage/OVAudioBufferInterface.h"

class OVAudioFileReader;

/// Frames read and written at a time: six seconds.
inline constexpr std::uint64_t kLoadChunkFrames = platform::kFileChunkFrames;

struct LoadRequest {
  std::shared_ptr<OVAudioBufferInterface> buffer;
  std::uint64_t atByteOffset = 0;
  /// May be set by any thread: loading then ends at the next chunk.
  std::shared_ptr<const std::atomic<bool>> cancelled;
  /// The errno of a write that failed since the last call, 0 for none.
  std::function<int()> takeWriteError;
  /// Called after each chunk with the offset after it and the chunk's share of the whole: of the
  /// frames, which may exceed 1, or of the file's bytes if its length is only estimated.
  std::function<void(std::uint64_t byteOffset, double step)> progress;
};

struct LoadOutcome {
  std::uint64_t endOffset = 0;  ///< after the last byte stored
  int writeError = 0;           ///< errno, ENOMEM without memory; 0: all that was read is stored
};

/// Copies an audio file into a buffer, chunk by chunk, and closes the reader. Frames are stored as
/// the reader delivers them: two channels of four bytes, whatever the buffer's format.
///
/// Threads: any one. Real-time: not safe.
[[nodiscard]] LoadOutcome loadFile(OVAudioFileReader& reader, const LoadRequest& request);
