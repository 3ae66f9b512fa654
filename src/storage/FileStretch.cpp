#include "storage/FileStretch.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

#include "storage/BufferTransfer.h"

namespace {

constexpr std::size_t kFewStretches = 8;  // sorting these would cost as much as it saves
constexpr std::uint64_t kMostTogether = std::uint64_t{64} * 1024;  // bytes, of the scratch buffer

// A stretch and where its bytes belong.
struct Piece {
  FileStretch from;
  std::byte* to;
};
using Pieces = std::span<const Piece>;

platform::FileTransfer readInTurn(platform::File& file, std::span<const FileStretch> stretches,
                                  std::byte* destination) {
  platform::FileTransfer all;
  for (const FileStretch& stretch : stretches) {
    const auto got =
        readWhole(file, destination + all.byteCount, stretch.byteCount, stretch.fileOffset);
    all.byteCount += got.byteCount;
    if (got.byteCount < stretch.byteCount) {
      all.error = got.error;
      break;
    }
  }
  return all;
}

std::vector<Piece> inFileOrder(std::span<const FileStretch> stretches, std::byte* destination) {
  std::vector<Piece> pieces;
  pieces.reserve(stretches.size());
  for (const FileStretch& stretch : stretches) {
    pieces.push_back({stretch, destination});
    destination += stretch.byteCount;
  }
  std::sort(pieces.begin(), pieces.end(), [](const Piece& left, const Piece& right) {
    return left.from.fileOffset < right.from.fileOffset;
  });
  return pieces;
}

// The first pieces that are neighbours in the file: one, or as many as the scratch buffer takes.
Pieces neighbours(Pieces pieces) {
  std::uint64_t byteCount = pieces.front().from.byteCount;
  std::size_t count = 1;
  while (count < pieces.size() &&
         pieces[count].from.fileOffset == pieces.front().from.fileOffset + byteCount &&
         byteCount + pieces[count].from.byteCount <= kMostTogether) {
    byteCount += pieces[count].from.byteCount;
    ++count;
  }
  return pieces.first(count);
}

bool readNeighbours(platform::File& file, Pieces pieces, std::byte* scratch) {
  const FileStretch& first = pieces.front().from;
  if (pieces.size() == 1) {
    return readWhole(file, pieces.front().to, first.byteCount, first.fileOffset).byteCount ==
           first.byteCount;
  }
  const std::uint64_t byteCount =
      pieces.back().from.fileOffset + pieces.back().from.byteCount - first.fileOffset;
  if (readWhole(file, scratch, byteCount, first.fileOffset).byteCount < byteCount) {
    return false;
  }
  for (const Piece& piece : pieces) {
    std::memcpy(piece.to, scratch + (piece.from.fileOffset - first.fileOffset),
                piece.from.byteCount);
  }
  return true;
}

// Whether all bytes came.
bool readTogether(platform::File& file, std::span<const FileStretch> stretches,
                  std::byte* destination) {
  const auto pieces = inFileOrder(stretches, destination);
  const auto scratch = std::make_unique_for_overwrite<std::byte[]>(kMostTogether);
  for (Pieces rest = pieces; !rest.empty();) {
    const Pieces together = neighbours(rest);
    if (!readNeighbours(file, together, scratch.get())) {
      return false;
    }
    rest = rest.subspan(together.size());
  }
  return true;
}

}  // namespace

std::uint64_t byteCountOf(std::span<const FileStretch> stretches) {
  std::uint64_t byteCount = 0;
  for (const FileStretch& stretch : stretches) {
    byteCount += stretch.byteCount;
  }
  return byteCount;
}

platform::FileTransfer readStretches(platform::File& file, std::span<const FileStretch> stretches,
                                     void* destination) {
  auto* const bytes = static_cast<std::byte*>(destination);
  if (stretches.size() > kFewStretches && readTogether(file, stretches, bytes)) {
    return {.byteCount = byteCountOf(stretches), .error = 0};
  }
  // Where the bytes end is known only by reading in their order.
  return readInTurn(file, stretches, bytes);
}
