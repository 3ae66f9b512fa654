#include "waveform/SummaryReader.h"

#include <algorithm>

#include "storage/OVAudioBufferInterface.h"

namespace {

/// Bounds the records of a batch of very short blocks.
constexpr std::uint64_t kMaximumBlocksPerBatch = 1024;

std::uint64_t wholeBlocksOrOnePiece(std::uint64_t bytesPerBlock, std::uint64_t batchByteCount) {
  if (bytesPerBlock > batchByteCount) {
    return batchByteCount;
  }
  return std::min(batchByteCount / bytesPerBlock, kMaximumBlocksPerBatch) * bytesPerBlock;
}

}  // namespace

SummaryReader::SummaryReader(OVAudioBufferInterface& audioBuffer, std::uint64_t framesPerBlock,
                             std::uint64_t batchByteCount)
    : audioBuffer_(audioBuffer),
      bytesPerFrame_(audioBuffer.format().mBytesPerFrame),
      framesPerBlock_(framesPerBlock),
      bytesPerBlock_(framesPerBlock * bytesPerFrame_),
      bytesPerRead_(wholeBlocksOrOnePiece(bytesPerBlock_, batchByteCount)),
      scratch_(std::make_unique_for_overwrite<float[]>(bytesPerRead_ / sizeof(float))) {}

std::span<const SummaryReader::Block> SummaryReader::readBlocks(std::uint64_t fromByteOffset) {
  blocks_.clear();
  if (bytesPerRead_ < bytesPerBlock_) {
    readLongBlock(fromByteOffset);
  } else {
    readBatch(fromByteOffset);
  }
  return blocks_;
}

void SummaryReader::readBatch(std::uint64_t fromByteOffset) {
  const std::uint64_t byteCount = read(bytesPerRead_, fromByteOffset);
  for (std::uint64_t start = 0; start < byteCount; start += bytesPerBlock_) {
    const std::uint64_t blockBytes = std::min(bytesPerBlock_, byteCount - start);
    const std::uint64_t frameCount = blockBytes / bytesPerFrame_;
    if (frameCount == 0) {
      return;
    }
    const float* samples = scratch_.get() + start / sizeof(float);
    blocks_.push_back({.byteCount = blockBytes,
                       .frameCount = frameCount,
                       .extent = leftMagnitudeExtent(samples, frameCount)});
  }
}

void SummaryReader::readLongBlock(std::uint64_t fromByteOffset) {
  MagnitudeExtent extent;
  std::uint64_t byteCount = 0;
  while (byteCount < bytesPerBlock_) {
    const std::uint64_t wanted = std::min(bytesPerRead_, bytesPerBlock_ - byteCount);
    const std::uint64_t came = read(wanted, fromByteOffset + byteCount);
    const std::uint64_t firstIndex = byteCount / sizeof(float);
    if (firstIndex < framesPerBlock_) {
      extent.include(leftMagnitudeExtent(
          scratch_.get(), std::min(came / sizeof(float), framesPerBlock_ - firstIndex)));
    }
    byteCount += came;
    if (came < wanted) {
      break;
    }
  }
  const std::uint64_t frameCount = byteCount / bytesPerFrame_;
  if (frameCount == 0) {
    return;
  }
  if (byteCount < bytesPerBlock_) {
    // A block read in one piece is still in the scratch buffer.
    extent = byteCount < bytesPerRead_ ? leftMagnitudeExtent(scratch_.get(), frameCount)
                                       : readAgain(fromByteOffset, frameCount, extent);
  }
  blocks_.push_back({.byteCount = byteCount, .frameCount = frameCount, .extent = extent});
}

/// Returns `otherwise` when the audio was cut off meanwhile: the earlier result is the best
/// estimate until the summary is regenerated.
MagnitudeExtent SummaryReader::readAgain(std::uint64_t fromByteOffset, std::uint64_t frameCount,
                                         const MagnitudeExtent& otherwise) {
  MagnitudeExtent extent;
  const std::uint64_t byteCount = frameCount * sizeof(float);
  std::uint64_t done = 0;
  while (done < byteCount) {
    const std::uint64_t wanted = std::min(bytesPerRead_, byteCount - done);
    const std::uint64_t came = read(wanted, fromByteOffset + done);
    extent.include(leftMagnitudeExtent(scratch_.get(), came / sizeof(float)));
    done += came;
    if (came < wanted) {
      break;
    }
  }
  return done < sizeof(float) ? otherwise : extent;
}

std::uint64_t SummaryReader::read(std::uint64_t byteCount, std::uint64_t fromByteOffset) {
  return audioBuffer_.readDataInto(scratch_.get(), byteCount, fromByteOffset).byteCount;
}
