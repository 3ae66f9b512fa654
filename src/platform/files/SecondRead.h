#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/files/File.h"

namespace platform {

/// As File::readAt(), but a read that fails is continued once where it failed: what a medium
/// returns at the second try is not lost. The error, if any, is that of the second try.
///
/// Threads: as File::readAt(). Real-time: not safe.
[[nodiscard]] inline FileTransfer readWithSecondTry(File& file, void* destination,
                                                    std::uint64_t byteCount, std::uint64_t offset) {
  FileTransfer transfer = file.readAt(destination, byteCount, offset);
  if (transfer.error != 0) {
    const std::uint64_t done = transfer.byteCount;
    transfer =
        file.readAt(static_cast<std::byte*>(destination) + done, byteCount - done, offset + done);
    transfer.byteCount += done;
  }
  return transfer;
}

}  // namespace platform
