#pragma once

#include <cstdint>

namespace platform {

struct FileTransfer {
  std::uint64_t byteCount = 0;  ///< contiguous bytes moved, from the first on
  int error = 0;                ///< errno of the failure that ended the transfer; 0 for none, also
                                ///< when a read reached the end of the file
};

/// An open file with positioned transfers. There is no shared position, so readers and a writer
/// need no lock between them while they touch different bytes.
///
/// Threads: any, also at the same time. Real-time: not safe.
class File {
 public:
  virtual ~File() = default;  ///< closes

  /// Reads up to `byteCount` bytes at `offset`; fewer at the end of the file. Interrupted and
  /// partial system calls are continued.
  [[nodiscard]] virtual FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                            std::uint64_t offset) = 0;

  /// Writes `byteCount` bytes at `offset`, extending the file as needed; fewer on failure.
  [[nodiscard]] virtual FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                             std::uint64_t offset) = 0;

  /// Length in bytes; 0 when the system does not report it.
  [[nodiscard]] virtual std::uint64_t size() = 0;

  /// Truncates the file to `byteCount` bytes or extends it with zeros. Returns 0, or the errno of
  /// the failure; the file is then unchanged.
  [[nodiscard]] virtual int setSize(std::uint64_t byteCount) = 0;

  /// The system's descriptor of the file, which it keeps; -1 for a file without one.
  [[nodiscard]] virtual int descriptor() const { return -1; }
};

}  // namespace platform
