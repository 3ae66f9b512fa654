#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/files/File.h"

namespace platform {

/// The meaning of a transfer step that moves nothing.
enum class NothingMoved {
  endOfFile,  ///< a read reached the end: the transfer ends without an error
  failure,    ///< a write made no progress: the transfer ends with EIO instead of retrying forever
};

/// Maximum bytes requested from one step. Systems truncate larger requests at about 2^31.
inline constexpr std::uint64_t kMaxTransferStep = std::uint64_t{1} << 30;

/// Moves `byteCount` bytes in as many steps as needed. `step(done, wanted)` moves up to `wanted`
/// bytes after the first `done`, and returns how many it moved, or a negative number with the
/// reason in errno. Interrupted steps (EINTR) are repeated, short ones continued.
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
