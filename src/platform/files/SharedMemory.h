#pragma once

#include <cstddef>
#include <memory>

#include "platform/base/Result.h"

namespace platform {

/// Memory of a fixed size without a name, which another process can read through its descriptor.
/// Its pages take space only once they are reserved; all others read as zeros. It is freed when the
/// last process that has it mapped or open lets go of it, however that process ends.
///
/// Threads: any, for different bytes. Real-time: bytes() and size() are safe.
class SharedMemory {
 public:
  /// `byteCount` bytes, a multiple of a page, closed on exec and of a size that nobody can change.
  /// `name` is what the system shows for it. ENOSYS on a system without such memory.
  [[nodiscard]] static Result<std::unique_ptr<SharedMemory>> create(const char* name,
                                                                    std::size_t byteCount);
  ~SharedMemory();
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  [[nodiscard]] std::byte* bytes() const { return bytes_; }
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

  /// Reserves pages, so that storing there neither fails for want of memory nor has to wait for
  /// the system. Returns 0, or the errno of the failure. Bytes stored before stay.
  [[nodiscard]] int reserve(std::size_t offset, std::size_t byteCount);

  /// Frees whole pages, which read as zeros afterwards. Keeping them is no failure.
  void release(std::size_t offset, std::size_t byteCount);

 private:
  SharedMemory(int descriptor, std::byte* bytes, std::size_t size)
      : descriptor_(descriptor), bytes_(bytes), size_(size) {}

  const int descriptor_;
  std::byte* const bytes_;
  const std::size_t size_;
};

}  // namespace platform
