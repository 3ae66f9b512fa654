#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/files/File.h"

namespace platform {

/// What a transfer step that moves nothing means.
enum class NothingMoved {
  endOfFile,  ///< a read has met the end: the transfer ends without an error
  failure,    ///< a write got nowhere: the transfer ends with EIO instead of trying for ever
};

/// The most that one step is asked to move, in bytes. Systems cut larger requests at about 2^31.
inline constexpr std::uint64_t kMaxTransferStep = std::uint64_t{1} << 30;

/// Moves `byteCount` bytes by as many steps as that takes. `step(done, wanted)` moves up to
/// `wanted` bytes, of which `done` lie behind, and returns how many it moved, or a negative number
/// with the reason in errno. Interrupted steps (EINTR) are repeated, short ones continued.
///
/// Threads: any. Real-time: as safe as the step.
template <typename Step>
[[nodiscard]] FileTransfer continuedTransfer(std::uint64_t byteCount, NothingMoved nothingMoved,
                                             Step step) {
  FileTransfer result;
  while (result.byteCount < byteCount) {
    const auto moved =
        step(result.byteCount, std::min(byteCount - result.byteCount, kMaxTransferStep));
    if (moved > 0) {
      result.byteCount += static_cast<std::uint64_t>(moved);
    } else if (moved == 0) {
      result.error = nothingMoved == NothingMoved::failure ? EIO : 0;
      break;
    } else if (errno != EINTR) {
      result.error = errno;
      break;
    }
  }
  return result;
}

}  // namespace platform
