#pragma once

#include <cstdint>

namespace platform {

/// How much of a transfer was done, and why not more.
struct FileTransfer {
  std::uint64_t byteCount = 0;  ///< bytes moved, from the first on without a gap
  int error = 0;                ///< errno of the failure that ended the transfer; 0 for none, also
                                ///< when a read met the end of the file
};

/// An open file with positioned transfers: no shared position, so readers and a writer need no
/// lock between them as long as they touch different bytes.
///
/// Threads: any, also at the same time. Real-time: not safe.
class File {
 public:
  virtual ~File() = default;  ///< closes

  /// Reads up to `byteCount` bytes at `offset`; fewer at the end of the file. Interrupted and
  /// partial system calls are continued.
  [[nodiscard]] virtual FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                            std::uint64_t offset) = 0;

  /// Writes `byteCount` bytes at `offset`, lengthening the file as needed; fewer when it fails.
  [[nodiscard]] virtual FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                             std::uint64_t offset) = 0;

  /// Length in bytes; 0 where the system does not tell.
  [[nodiscard]] virtual std::uint64_t size() = 0;

  /// Makes the file `byteCount` bytes long: what lies behind is gone, what is new is zeros. Gives
  /// the errno of the failure, 0 for none; a file that could not be made longer or shorter is as it
  /// was.
  [[nodiscard]] virtual int setSize(std::uint64_t byteCount) = 0;
};

}  // namespace platform
