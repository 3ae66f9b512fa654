#include "platform/files/FreeSpace.h"

#include <sys/statvfs.h>

#include <cerrno>
#include <limits>

namespace platform {
namespace {

class SystemFreeSpace : public FreeSpace {
 public:
  [[nodiscard]] Result<DiskSpace> ofFolder(const std::string& folder) override {
    struct statvfs information = {};
    int result = 0;
    do {
      result = ::statvfs(folder.c_str(), &information);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
      return errno;
    }
    if (information.f_blocks == 0) {
      return ENOTSUP;  // a file system in memory without a limit, or a view of something else
    }
    const std::uint64_t blockBytes =
        information.f_frsize != 0 ? information.f_frsize : information.f_bsize;
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    const bool overflows = blockBytes != 0 && information.f_bavail > kMost / blockBytes;
    return DiskSpace{.freeBytes = overflows ? kMost : information.f_bavail * blockBytes};
  }
};

}  // namespace

std::shared_ptr<FreeSpace> FreeSpace::whenNoneIsInstalled() {
  return std::make_shared<SystemFreeSpace>();
}

}  // namespace platform
