// Preloaded into a program under test (support/programs/StalledFolder.h). From the moment at which
// the file ORVO_TEST_STALLED_FROM exists, no call that names the folder ORVO_TEST_STALLED, or
// anything below it, returns, as with a disk on a network that is gone; nor does a write to a file
// there, also to one whose name was removed. Replaces the calls by which Orvo, Qt and the standard
// library look at files by name, and those by which Orvo writes.

#include <cstdarg>
#include <cstdlib>
#include <ctime>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

template <typename Function>
Function* nextFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// Asks the system directly: the functions are replaced.
bool exists(const std::string& path) {
  return ::syscall(SYS_faccessat, AT_FDCWD, path.c_str(), F_OK) == 0;
}

std::string textOfLink(const std::string& path) {
  std::string text(4096, '\0');
  const long size = ::syscall(SYS_readlinkat, AT_FDCWD, path.c_str(), text.data(), text.size());
  text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  return text;
}

std::string absolute(int folder, const char* path) {
  if (path[0] == '/') {
    return path;
  }
  const std::string parent =
      textOfLink(folder == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/" + std::to_string(folder));
  return path[0] == '\0' ? parent : parent + "/" + path;
}

// Returns only if the path is elsewhere.
void waitFor(int folder, const char* path) {
  static const std::string stalled = variable("ORVO_TEST_STALLED");
  static const std::string from = variable("ORVO_TEST_STALLED_FROM");
  if (stalled.empty() || path == nullptr) {
    return;
  }
  const std::string whole = absolute(folder, path);
  const bool isInside =
      whole == stalled || whole.compare(0, stalled.size() + 1, stalled + "/") == 0;
  while (isInside && exists(from)) {
    const timespec nap{.tv_sec = 0, .tv_nsec = 20'000'000};
    ::nanosleep(&nap, nullptr);
  }
}

}  // namespace

#define ORVO_STALL(Result, name, parameters, folder, path, arguments) \
  Result name parameters {                                            \
    waitFor(folder, path);                                            \
    static auto* const next = nextFunction<Result parameters>(#name); \
    return next arguments;                                            \
  }

// The mode can be read whether it was passed or not, since it is in a register.
#define ORVO_STALL_OPEN(name)                                                  \
  int name(const char* path, int flags, ...) {                                 \
    va_list rest;                                                              \
    va_start(rest, flags);                                                     \
    const mode_t mode = va_arg(rest, mode_t);                                  \
    va_end(rest);                                                              \
    waitFor(AT_FDCWD, path);                                                   \
    static auto* const next = nextFunction<int(const char*, int, ...)>(#name); \
    return next(path, flags, mode);                                            \
  }

#define ORVO_STALL_OPENAT(name)                                                     \
  int name(int folder, const char* path, int flags, ...) {                          \
    va_list rest;                                                                   \
    va_start(rest, flags);                                                          \
    const mode_t mode = va_arg(rest, mode_t);                                       \
    va_end(rest);                                                                   \
    waitFor(folder, path);                                                          \
    static auto* const next = nextFunction<int(int, const char*, int, ...)>(#name); \
    return next(folder, path, flags, mode);                                         \
  }

extern "C" {

ORVO_STALL_OPEN(open)
ORVO_STALL_OPEN(open64)
ORVO_STALL_OPENAT(openat)
ORVO_STALL_OPENAT(openat64)
ORVO_STALL(DIR*, opendir, (const char* path), AT_FDCWD, path, (path))
ORVO_STALL(int, stat, (const char* path, struct stat* status), AT_FDCWD, path, (path, status))
ORVO_STALL(int, stat64, (const char* path, struct stat64* status), AT_FDCWD, path, (path, status))
ORVO_STALL(int, lstat, (const char* path, struct stat* status), AT_FDCWD, path, (path, status))
ORVO_STALL(int, lstat64, (const char* path, struct stat64* status), AT_FDCWD, path, (path, status))
ORVO_STALL(int, fstatat, (int folder, const char* path, struct stat* status, int flags), folder,
           path, (folder, path, status, flags))
ORVO_STALL(int, fstatat64, (int folder, const char* path, struct stat64* status, int flags), folder,
           path, (folder, path, status, flags))
ORVO_STALL(int, statx,
           (int folder, const char* path, int flags, unsigned mask, struct statx* status), folder,
           path, (folder, path, flags, mask, status))
ORVO_STALL(int, access, (const char* path, int mode), AT_FDCWD, path, (path, mode))
ORVO_STALL(int, faccessat, (int folder, const char* path, int mode, int flags), folder, path,
           (folder, path, mode, flags))
ORVO_STALL(ssize_t, readlink, (const char* path, char* text, size_t size), AT_FDCWD, path,
           (path, text, size))
ORVO_STALL(ssize_t, readlinkat, (int folder, const char* path, char* text, size_t size), folder,
           path, (folder, path, text, size))

ORVO_STALL(int, statvfs, (const char* path, struct statvfs* information), AT_FDCWD, path,
           (path, information))
// An empty path stands for the file itself.
ORVO_STALL(ssize_t, pwrite, (int file, const void* data, size_t size, off_t offset), file, "",
           (file, data, size, offset))

}  // extern "C"
