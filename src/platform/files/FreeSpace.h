#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/base/Installed.h"
#include "platform/base/Result.h"

namespace platform {

struct DiskSpace {
  std::uint64_t freeBytes = 0;  ///< that this user may still write
};

/// Reports the free space of disks; by default, of the operating system's. Tests install one that
/// reports what they choose.
///
/// Threads: any. Real-time: not safe.
class FreeSpace {
 public:
  virtual ~FreeSpace() = default;
  static std::shared_ptr<FreeSpace> whenNoneIsInstalled();

  /// The free space of the disk that holds a folder, or the errno of the failure: ENOTSUP for a
  /// file system that does not count its space. Takes as long as the disk takes to answer, for ever
  /// on a network folder whose server is gone: never call it on a thread that must not wait.
  [[nodiscard]] virtual Result<DiskSpace> ofFolder(const std::string& folder) = 0;
};

inline std::shared_ptr<FreeSpace> freeSpace() {
  return Installed<FreeSpace>::get();
}

}  // namespace platform
