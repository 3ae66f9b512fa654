#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "waveform/MagnitudeExtent.h"

class OVAudioBufferInterface;

/// Reads a buffer's audio in blocks of one size for a summary, and examines each block's samples.
///
/// A block is the result of one read of that size: whole, or short at the end of the audio and at a
/// hole. One read of the buffer serves many short blocks, and a long block takes several, so
/// reading is fast, memory is bounded (batchByteCount, and one record for each block of a batch)
/// and the buffer's lock is held only briefly. The result is bit-identical to one read for each
/// block:
///
/// - Short blocks. A batch is one read of several blocks' bytes. A read returns the bytes from its
///   offset up to the first missing one. Reads of single blocks at the same moment would return
///   whole blocks up to that byte, one short block before it, and nothing after it. The batch is
///   divided in the same way.
/// - Writers. A read is consistent at one moment, so a batch equals single reads with no write
///   between them. After a short block the caller reads again, as after any block, and gets audio
///   appended meanwhile. Concurrent writes therefore have no effect that they could not have
///   between single reads.
/// - Long blocks. A block longer than a batch is read in pieces until one is short. If audio is
///   only appended meanwhile, the result equals one read at the moment of the last piece. The
///   number of samples to examine depends on the frames read, known only after the last piece: a
///   whole block is assumed, and the first half of a short one is read again.
///
/// Threads: one at a time. Real-time: not safe.
class SummaryReader {
 public:
  /// Bytes per read of the buffer: large enough to make the call's cost negligible, small enough
  /// that the samples are still in the L2 cache when they are examined.
  static constexpr std::uint64_t kBatchByteCount = 0x40000;  // 256 KiB

  struct Block {
    std::uint64_t byteCount = 0;
    std::uint64_t frameCount = 0;  ///< whole frames, at least 1
    MagnitudeExtent extent;        ///< left channel of the first half of the frames
  };

  /// Reads `framesPerBlock` frames a block, at least 1. `batchByteCount` is a multiple of the
  /// buffer's bytes per frame; tests make it small. The buffer must outlive the reader.
  SummaryReader(OVAudioBufferInterface& audioBuffer, std::uint64_t framesPerBlock,
                std::uint64_t batchByteCount = kBatchByteCount);

  /// The next blocks from a byte offset on, in order and without a gap; empty when there is no
  /// whole frame. Only the last one can be short. Valid until the next call.
  [[nodiscard]] std::span<const Block> readBlocks(std::uint64_t fromByteOffset);

 private:
  void readBatch(std::uint64_t fromByteOffset);
  void readLongBlock(std::uint64_t fromByteOffset);
  [[nodiscard]] MagnitudeExtent readAgain(std::uint64_t fromByteOffset, std::uint64_t frameCount,
                                          const MagnitudeExtent& otherwise);
  [[nodiscard]] std::uint64_t read(std::uint64_t byteCount, std::uint64_t fromByteOffset);

  OVAudioBufferInterface& audioBuffer_;
  const std::uint64_t bytesPerFrame_;
  const std::uint64_t framesPerBlock_;
  const std::uint64_t bytesPerBlock_;
  const std::uint64_t bytesPerRead_;  ///< whole blocks, or a piece of one
  const std::unique_ptr<float[]> scratch_;
  std::vector<Block> blocks_;
};
