#include "platform/files/FilePlace.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <optional>

namespace platform {
namespace {

constexpr int kMaximumLinks = 40;  // the system's own limit

#if defined(O_PATH)
constexpr int kForNames = O_PATH;  // the folder need not be readable
#else
constexpr int kForNames = O_RDONLY;
#endif

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The text of the link `name`; nothing if it is no link.
std::optional<std::string> linkAt(int folder, const std::string& name) {
  std::array<char, PATH_MAX> text{};
  const ssize_t length = ::readlinkat(folder, name.c_str(), text.data(), text.size());
  return length < 0 ? std::nullopt
                    : std::optional(std::string(text.data(), static_cast<std::size_t>(length)));
}

// The rule that systems apply in folders such as /tmp, for every folder that others may write.
bool mayFollow(int folder, const std::string& link) {
  struct stat folderStatus = {};
  struct stat linkStatus = {};
  if (::fstat(folder, &folderStatus) != 0 ||
      ::fstatat(folder, link.c_str(), &linkStatus, AT_SYMLINK_NOFOLLOW) != 0) {
    return false;
  }
  return (folderStatus.st_mode & (S_IWGRP | S_IWOTH)) == 0 || linkStatus.st_uid == ::geteuid() ||
         linkStatus.st_uid == 0 || linkStatus.st_uid == folderStatus.st_uid;
}

}  // namespace

Result<FilePlace> FilePlace::of(const std::string& path) {
  std::filesystem::path rest(path);
  Descriptor folder;  // where `rest` begins; none for the working folder
  for (int i = 0; i < kMaximumLinks; ++i) {
    const std::string parent = rest.parent_path().string();
    const std::string name = rest.filename().string();
    Descriptor next(::openat(folder ? folder.get() : AT_FDCWD,
                             parent.empty() ? "." : parent.c_str(),
                             kForNames | O_DIRECTORY | O_CLOEXEC));
    if (!next) {
      return errno;
    }
    if (name.empty() || name == "." || name == "..") {
      return EISDIR;
    }
    const auto link = linkAt(next.get(), name);
    if (!link) {
      return FilePlace(std::move(next), name);
    }
    if (!mayFollow(next.get(), name)) {
      return EACCES;
    }
    rest = *link;
    folder = std::move(next);
  }
  return ELOOP;
}

int FilePlace::check() const {
  struct stat status = {};
  if (::fstatat(folder(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT ? 0 : errno;
  }
  if (S_ISDIR(status.st_mode)) {
    return EISDIR;
  }
  if (!S_ISREG(status.st_mode)) {
    return EINVAL;
  }
  return ::faccessat(folder(), name_.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

bool FilePlace::isOccupied() const {
  struct stat status = {};
  return ::fstatat(folder(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT;
}

bool FilePlace::isSameAs(const FilePlace& other) const {
  struct stat own = {};
  struct stat others = {};
  return name_ == other.name_ && ::fstat(folder(), &own) == 0 &&
         ::fstat(other.folder(), &others) == 0 && isSameFile(own, others);
}

int FilePlace::checkName(const std::string& name, int openFile) const {
  struct stat named = {};
  struct stat opened = {};
  if (::fstatat(folder(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0 ||
      ::fstat(openFile, &opened) != 0) {
    return errno;
  }
  return isSameFile(named, opened) ? 0 : ESTALE;
}

Descriptor FilePlace::openExisting() const {
  // Without O_NONBLOCK, opening a pipe would wait.
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  for (const int access : {O_RDONLY, O_WRONLY}) {
    Descriptor file(::openat(folder(), name_.c_str(), access | kFlags));
    struct stat status = {};
    if (file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)) {
      return file;
    }
  }
  return Descriptor();
}

void FilePlace::sync() const {
  const Descriptor readable(::openat(folder(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (readable) {
    ::fsync(readable.get());
  }
}

}  // namespace platform
