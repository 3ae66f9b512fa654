#pragma once

#include <cstdint>

#include "platform/files/File.h"

namespace platform {

/// A file over a descriptor, which it owns. At offsets that the system cannot express (2^63 and
/// above) a read finds the end of the file, and writing or resizing fails with EFBIG.
///
/// Threads: any, also at the same time. Real-time: not safe.
class PosixFile : public File {
 public:
  explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixFile() override;
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  [[nodiscard]] FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                    std::uint64_t offset) override;
  [[nodiscard]] FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                     std::uint64_t offset) override;
  [[nodiscard]] std::uint64_t size() override;
  [[nodiscard]] int setSize(std::uint64_t byteCount) override;
  [[nodiscard]] int descriptor() const override { return descriptor_; }

 private:
  const int descriptor_;
};

}  // namespace platform
