#include "platform/files/OwnFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace platform {
namespace {

constexpr mode_t kUserOnly = 0700;
constexpr mode_t kRightsOfOthers = 0077;

}  // namespace

Result<Descriptor> openOwnFolder(int parent, const std::string& name, MissingFolder missing) {
  if (missing == MissingFolder::isMade && ::mkdirat(parent, name.c_str(), kUserOnly) != 0 &&
      errno != EEXIST) {
    return errno;
  }
  Descriptor folder(
      ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!folder || ::fstat(folder.get(), &status) != 0) {
    return errno;
  }
  if (status.st_uid != ::geteuid()) {
    return EPERM;
  }
  return folder;
}

int closeToOthers(int folder) {
  struct stat status = {};
  const bool isClosed = ::fstat(folder, &status) == 0 && (status.st_mode & kRightsOfOthers) == 0;
  return isClosed || ::fchmod(folder, kUserOnly) == 0 ? 0 : EPERM;
}

}  // namespace platform
