#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "waveform/MagnitudeExtent.h"

class OVAudioBufferInterface;

/// Reads a buffer's audio in blocks of one size for a summary, and looks at the samples of each.
///
/// A block is what one read of that size answers: whole, or short at the end of the audio and at
/// a hole. Few reads of the buffer serve many blocks, or many serve one long block, so that
/// reading is fast, memory is bounded (batchByteCount, and one record for each block of a batch)
/// and the buffer's lock is held only briefly at a time. What comes out is the same to the bit as
/// with one read for each block:
///
/// - Short blocks. A batch is one read of several blocks' bytes. A buffer answers a read with the
///   bytes from its offset up to the first one that it does not have. Reads of single blocks at
///   the same moment would answer whole blocks up to that byte, one short block before it, and
///   nothing after it: just how the batch is divided here.
/// - Writers. A buffer answers a read under its lock, so a batch is what single reads answer that
///   no writer came between. After a short block the caller asks again, as it does after any
///   block, and gets what was appended meanwhile. A writer can therefore do nothing that it could
///   not have done beside single reads; it only finds fewer places to come between.
/// - Long blocks. A block longer than a batch is read in pieces until one of them comes short.
///   Audio that is only appended to meanwhile answers as it would answer one read at the moment
///   of the last piece. How many samples are looked at depends on the frames that came, which are
///   known only after the last piece: a whole block is assumed, and the leading half of a short
///   one is read again.
///
/// Threads: one at a time. Real-time: not safe.
class SummaryReader {
 public:
  /// Bytes of one read of the buffer: large enough that the cost of the call does not count, small
  /// enough that the samples are still in the processor's second cache when they are looked at.
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

  /// The next blocks from a byte offset on, in order and without a gap; empty when no whole frame
  /// is there. Only the last one can be short. They last until the next call.
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
