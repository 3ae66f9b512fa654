// Preloaded into a program under test where mounting is not possible
// (support/programs/LimitedDisk.h). Makes the folder ORVO_TEST_DISK behave as a disk with room for
// ORVO_TEST_DISK_BYTES bytes, in whole pages, or as a read-only disk for 0. Replaces only the calls
// that Orvo uses on its own files. Shortening a file frees its room, deleting one does not.

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr std::uint64_t kPageBytes = 4096;

template <typename Function>
Function* nextFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

class Disk {
 public:
  static Disk& instance() {
    static Disk disk;
    return disk;
  }

  bool holds(const std::filesystem::path& path) const {
    return !folder_.empty() &&
           std::filesystem::absolute(path).lexically_normal().string().starts_with(folder_ + "/");
  }

  bool holds(int file) const {
    const std::string path = pathOf(file);
    return !path.empty() && holds(std::filesystem::path(path));
  }

  /// Whether an open folder is the disk's own or one on it.
  bool is(int folder) const { return pathOf(folder) == folder_ || holds(folder); }

  bool isReadOnly() const { return pages_ == 0; }

  /// Whether the path is the folder itself or in it.
  bool isAt(const std::string& path) const {
    return path == folder_ || holds(std::filesystem::path(path));
  }

  std::uint64_t freePages() {
    const std::lock_guard lock(mutex_);
    const std::uint64_t used = taken_.size() + pagesAtStart_;
    return used < pages_ ? pages_ - used : 0;
  }
  std::uint64_t pages() const { return pages_; }

  /// Gives back the pages of a file from a length on.
  void cutOff(int file, std::uint64_t length) {
    struct stat status {};
    if (::fstat(file, &status) != 0) {
      return;
    }
    const std::uint64_t kept = (length + kPageBytes - 1) / kPageBytes;
    const std::lock_guard lock(mutex_);
    taken_.erase(taken_.lower_bound({status.st_ino, kept}),
                 taken_.lower_bound({status.st_ino + 1, 0}));
  }

  /// Takes the pages that the bytes need; returns how many bytes, from the first on, found room.
  std::uint64_t take(int file, std::uint64_t offset, std::uint64_t size) {
    struct stat status {};
    if (::fstat(file, &status) != 0) {
      return 0;
    }
    const std::lock_guard lock(mutex_);
    std::uint64_t end = offset;
    while (end < offset + size) {
      const std::pair<ino_t, std::uint64_t> page(status.st_ino, end / kPageBytes);
      if (!taken_.contains(page)) {
        if (taken_.size() + pagesAtStart_ >= pages_) {
          break;
        }
        taken_.insert(page);
      }
      end = (page.second + 1) * kPageBytes;
    }
    return std::min(end, offset + size) - offset;
  }

 private:
  static std::string pathOf(int file) {
    std::string path(4096, '\0');
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    path.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return path;
  }

  Disk() {
    const char* folder = std::getenv("ORVO_TEST_DISK");
    const char* bytes = std::getenv("ORVO_TEST_DISK_BYTES");
    if (folder == nullptr || bytes == nullptr) {
      return;
    }
    folder_ = folder;
    pages_ = std::strtoull(bytes, nullptr, 10) / kPageBytes;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
      pagesAtStart_ += (entry.file_size(error) + kPageBytes - 1) / kPageBytes;
    }
  }

  std::string folder_;
  std::uint64_t pages_ = 0;
  std::uint64_t pagesAtStart_ = 0;
  std::mutex mutex_;
  std::set<std::pair<ino_t, std::uint64_t>> taken_;  ///< by mutex_: file and number of each page
};

int openOnDisk(const char* name, const char* path, int flags, mode_t mode) {
  const bool changes = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
  if (changes && Disk::instance().isReadOnly() &&
      Disk::instance().holds(std::filesystem::path(path))) {
    errno = EROFS;
    return -1;
  }
  return nextFunction<int(const char*, int, ...)>(name)(path, flags, mode);
}

int cutOff(const char* name, int file, off_t length) {
  const int result = nextFunction<int(int, off_t)>(name)(file, length);
  if (result == 0 && Disk::instance().holds(file)) {
    Disk::instance().cutOff(file, static_cast<std::uint64_t>(length));
  }
  return result;
}

template <typename Information>
int spaceAt(const char* name, const char* path, Information* information) {
  const int result = nextFunction<int(const char*, Information*)>(name)(path, information);
  if (result == 0 && Disk::instance().isAt(path)) {
    information->f_bsize = kPageBytes;
    information->f_frsize = kPageBytes;
    information->f_blocks = Disk::instance().pages();
    information->f_bfree = Disk::instance().freePages();
    information->f_bavail = information->f_bfree;
  }
  return result;
}

int openInFolderOnDisk(const char* name, int folder, const char* path, int flags, mode_t mode) {
  const bool changes = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
  if (changes && Disk::instance().isReadOnly() &&
      (path[0] == '/' || folder == AT_FDCWD ? Disk::instance().holds(std::filesystem::path(path))
                                            : Disk::instance().is(folder))) {
    errno = EROFS;
    return -1;
  }
  return nextFunction<int(int, const char*, int, ...)>(name)(folder, path, flags, mode);
}

/// Calls `write` with as many bytes as there is room for.
template <typename Write>
ssize_t writeToDisk(int file, off_t offset, size_t size, const Write& write) {
  const std::uint64_t room = Disk::instance().take(file, static_cast<std::uint64_t>(offset), size);
  if (room == 0 && size > 0) {
    errno = ENOSPC;
    return -1;
  }
  return write(room);
}

}  // namespace

extern "C" {

// The mode can be read whether it was passed or not, since it is in a register.
int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return openOnDisk("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return openOnDisk("open64", path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return openInFolderOnDisk("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return openInFolderOnDisk("openat64", folder, path, flags, mode);
}

ssize_t pwrite(int file, const void* data, size_t size, off_t offset) {
  static auto* const next = nextFunction<ssize_t(int, const void*, size_t, off_t)>("pwrite");
  if (!Disk::instance().holds(file)) {
    return next(file, data, size, offset);
  }
  return writeToDisk(file, offset, size,
                     [&](size_t room) { return next(file, data, room, offset); });
}

int ftruncate(int file, off_t length) {
  return cutOff("ftruncate", file, length);
}

int ftruncate64(int file, off64_t length) {
  return cutOff("ftruncate64", file, length);
}

int statvfs(const char* path, struct statvfs* information) {
  return spaceAt("statvfs", path, information);
}

int statvfs64(const char* path, struct statvfs64* information) {
  return spaceAt("statvfs64", path, information);
}

ssize_t write(int file, const void* data, size_t size) {
  static auto* const next = nextFunction<ssize_t(int, const void*, size_t)>("write");
  if (!Disk::instance().holds(file)) {
    return next(file, data, size);
  }
  return writeToDisk(file, ::lseek(file, 0, SEEK_CUR), size,
                     [&](size_t room) { return next(file, data, room); });
}

}  // extern "C"
