#include "platform/files/FileRights.h"

#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
constexpr mode_t kAll = 07777;

#if defined(__linux__)

// The lists decide who may do what: all of them must be taken over.
constexpr std::array<const char*, 3> kLists{"system.posix_acl_access", "system.nfs4_acl",
                                            "system.richacl"};

bool isAbsent(int error) {
  return error == ENODATA || error == ENOTSUP || error == ENOSYS;
}

// The value of an attribute; nothing, with the reason in errno, on failure.
std::optional<std::vector<char>> attribute(int file, const char* name) {
  ssize_t size = ::fgetxattr(file, name, nullptr, 0);
  if (size < 0) {
    return std::nullopt;
  }
  std::vector<char> value(static_cast<std::size_t>(size));
  size = ::fgetxattr(file, name, value.data(), value.size());
  if (size < 0) {
    return std::nullopt;
  }
  value.resize(static_cast<std::size_t>(size));
  return value;
}

// A folder can give new files a list of its own, so that one must be removed where the old file had
// none.
bool takeOverList(int newFile, int oldFile, const char* name, bool sameGroup) {
  const auto list = attribute(oldFile, name);
  if (list) {
    return sameGroup && ::fsetxattr(newFile, name, list->data(), list->size(), 0) == 0;
  }
  if (!isAbsent(errno)) {
    return false;
  }
  return ::fremovexattr(newFile, name) == 0 || isAbsent(errno);
}

bool takeOverLists(int newFile, int oldFile, bool sameGroup) {
  return std::all_of(kLists.begin(), kLists.end(), [&](const char* name) {
    return takeOverList(newFile, oldFile, name, sameGroup);
  });
}

// The user's own attributes and the labels of access control. Others belong to the system, or to
// the content, such as a checksum of it.
bool isTakenOver(std::string_view name) {
  return name.starts_with("user.") || name == "security.selinux" || name == "security.SMACK64";
}

void takeOverAttributes(int newFile, int oldFile) {
  const ssize_t size = ::flistxattr(oldFile, nullptr, 0);
  std::vector<char> names(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  const ssize_t length = size > 0 ? ::flistxattr(oldFile, names.data(), names.size()) : 0;
  names.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  for (std::size_t at = 0; at < names.size();) {
    const std::string name(names.data() + at);
    at += name.size() + 1;
    if (!isTakenOver(name)) {
      continue;
    }
    if (const auto value = attribute(oldFile, name.c_str())) {
      ::fsetxattr(newFile, name.c_str(), value->data(), value->size(), 0);
    }
  }
}

#else

bool takeOverLists(int, int, bool) {
  return true;
}
void takeOverAttributes(int, int) {}

#endif

// Only root may change a file's owner.
void takeOverOwner(int newFile, const struct stat& old) {
  if (::fchown(newFile, old.st_uid, old.st_gid) != 0) {
    static_cast<void>(!::fchown(newFile, static_cast<uid_t>(-1), old.st_gid));
  }
}

// Without the old group, its members are others, and those of the new group were: both get what
// both had.
mode_t withoutGroup(mode_t mode) {
  const mode_t both = (mode >> 3) & mode & S_IRWXO;
  return (mode & ~(kOthers | S_ISGID)) | both << 3 | both;
}

}  // namespace

void takeOverRights(int newFile, int oldFile) {
  struct stat old = {};
  struct stat now = {};
  ::fchmod(newFile, S_IRUSR | S_IWUSR);
  if (oldFile < 0 || ::fstat(oldFile, &old) != 0) {
    return;
  }
  takeOverAttributes(newFile, oldFile);
  takeOverOwner(newFile, old);
  if (::fstat(newFile, &now) != 0) {
    return;
  }
  mode_t mode = old.st_mode & kAll;
  const bool sameGroup = now.st_gid == old.st_gid;
  if (now.st_uid != old.st_uid) {
    mode &= ~static_cast<mode_t>(S_ISUID);
  }
  if (!sameGroup) {
    mode = withoutGroup(mode);
  }
  if (!takeOverLists(newFile, oldFile, sameGroup)) {
    mode &= ~kOthers;
  }
  ::fchmod(newFile, mode);  // after the owner, whose change clears some permissions
}

}  // namespace platform
