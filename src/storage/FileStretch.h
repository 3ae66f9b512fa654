#pragma once

#include <cstdint>
#include <span>

#include "platform/files/File.h"

/// A stretch of a file, in bytes.
struct FileStretch {
  std::uint64_t fileOffset = 0;
  std::uint64_t byteCount = 0;

  friend constexpr bool operator==(const FileStretch&, const FileStretch&) = default;
};

/// The bytes of all of them.
///
/// Threads: any. Real-time: safe.
[[nodiscard]] std::uint64_t byteCountOf(std::span<const FileStretch> stretches);

/// Reads stretches of a file one behind the other into `destination`, which has room for all.
/// Returns how many bytes came without a gap, from the first on; fewer than all where the file ends
/// or a read failed, with its errno.
///
/// Of many short stretches, those that are neighbours in the file are read together, whatever their
/// order here: audio that was recorded in small pieces at two places in turn takes two reads, not
/// one for each piece.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] platform::FileTransfer readStretches(platform::File& file,
                                                   std::span<const FileStretch> stretches,
                                                   void* destination);
