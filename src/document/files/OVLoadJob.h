#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "storage/OVAudioBufferInterface.h"

class OVAudioFileReader;

/// Copies an audio file into a buffer, chunk by chunk.
///
/// Threads: run() on any one thread. Real-time: not safe.
class OVLoadJob {
 public:
  /// Frames read and written at a time: six seconds.
  static constexpr std::uint64_t kChunkFrames = platform::kFileChunkFrames;
  /// Bytes of a frame as the reader delivers it: two channels of four bytes, whatever the buffer.
  static constexpr std::uint64_t kReaderFrameBytes = platform::kWorkingFrameBytes;

  struct Request {
    std::shared_ptr<OVAudioBufferInterface> buffer;
    std::uint64_t atByteOffset = 0;
    /// Set by any thread: the job ends at its next chunk.
    std::shared_ptr<const std::atomic<bool>> cancelled;
    /// The errno of a write that storage could not take since the last call, 0 for none.
    std::function<int()> takeWriteError;
    /// After each chunk: the offset behind it, and the share of the whole that a chunk is, which
    /// may exceed 1 and is no more than an estimate.
    std::function<void(std::uint64_t byteOffset, double step)> progress;
  };

  struct Outcome {
    std::uint64_t endOffset = 0;  ///< behind the last byte that storage has taken
    int writeError = 0;           ///< errno; 0 when everything that was read is stored
  };

  [[nodiscard]] static Outcome run(OVAudioFileReader& reader, const Request& request);
};
