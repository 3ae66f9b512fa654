// What the linker puts in the place of the calls of this program's own code; see FailingCalls.h.
#include <cerrno>
#include <cstdarg>

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "failures/FailingCalls.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
// A call with its arguments, what it gives when it fails, and its errno.
#define FAILING(RESULT, NAME, PARAMETERS, ARGUMENTS, FAILURE, ERROR) \
  extern "C" RESULT __real_##NAME PARAMETERS;                        \
  extern "C" RESULT __wrap_##NAME PARAMETERS;                        \
  RESULT __wrap_##NAME PARAMETERS {                                  \
    if (failing::fails(#NAME)) {                                     \
      errno = (ERROR);                                               \
      return FAILURE;                                                \
    }                                                                \
    return __real_##NAME ARGUMENTS;                                  \
  }

using StatusOfFile = struct stat;
using StatusOfDisk = struct statvfs;
using StatusOfFileSystem = struct statfs;
using Entry = struct dirent;

FAILING(ssize_t, read, (int file, void* to, size_t count), (file, to, count), -1, EIO)
FAILING(ssize_t, write, (int file, const void* from, size_t count), (file, from, count), -1, ENOSPC)
FAILING(ssize_t, pread, (int file, void* to, size_t count, off_t at), (file, to, count, at), -1,
        EIO)
FAILING(ssize_t, pwrite, (int file, const void* from, size_t count, off_t at),
        (file, from, count, at), -1, ENOSPC)
FAILING(int, ftruncate, (int file, off_t size), (file, size), -1, EIO)
FAILING(int, fallocate, (int file, int mode, off_t at, off_t size), (file, mode, at, size), -1,
        ENOSPC)
FAILING(int, posix_fallocate, (int file, off_t at, off_t size), (file, at, size), ENOSPC, ENOSPC)
FAILING(int, fsync, (int file), (file), -1, EIO)
FAILING(int, fstat, (int file, StatusOfFile* status), (file, status), -1, EIO)
FAILING(int, stat, (const char* path, StatusOfFile* status), (path, status), -1, EIO)
FAILING(int, fstatat, (int folder, const char* path, StatusOfFile* status, int flags),
        (folder, path, status, flags), -1, EIO)
FAILING(int, statvfs, (const char* path, StatusOfDisk* status), (path, status), -1, EIO)
FAILING(int, access, (const char* path, int mode), (path, mode), -1, EIO)
FAILING(int, faccessat, (int folder, const char* path, int mode, int flags),
        (folder, path, mode, flags), -1, EIO)
FAILING(int, mkostemps, (char* path, int suffix, int flags), (path, suffix, flags), -1, ENOSPC)
FAILING(int, mkdir, (const char* path, mode_t mode), (path, mode), -1, ENOSPC)
FAILING(int, mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode), -1, ENOSPC)
FAILING(int, linkat, (int from, const char* path, int to, const char* name, int flags),
        (from, path, to, name, flags), -1, EIO)
FAILING(int, unlink, (const char* path), (path), -1, EIO)
FAILING(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags), -1, EIO)
FAILING(int, rename, (const char* from, const char* to), (from, to), -1, EIO)
FAILING(int, renameat, (int from, const char* path, int to, const char* name),
        (from, path, to, name), -1, EIO)
FAILING(int, renameat2, (int from, const char* path, int to, const char* name, unsigned int flags),
        (from, path, to, name, flags), -1, EIO)
FAILING(ssize_t, readlinkat, (int folder, const char* path, char* to, size_t count),
        (folder, path, to, count), -1, EIO)
FAILING(int, fchmod, (int file, mode_t mode), (file, mode), -1, EIO)
FAILING(int, fchown, (int file, uid_t user, gid_t group), (file, user, group), -1, EIO)
FAILING(ssize_t, flistxattr, (int file, char* to, size_t count), (file, to, count), -1, EIO)
FAILING(ssize_t, fgetxattr, (int file, const char* name, void* to, size_t count),
        (file, name, to, count), -1, EIO)
FAILING(int, fsetxattr, (int file, const char* name, const void* value, size_t count, int flags),
        (file, name, value, count, flags), -1, EIO)
FAILING(int, fremovexattr, (int file, const char* name), (file, name), -1, EIO)
FAILING(int, statfs, (const char* path, StatusOfFileSystem* status), (path, status), -1, EIO)
FAILING(int, sync_file_range, (int file, off64_t at, off64_t count, unsigned int flags),
        (file, at, count, flags), -1, EIO)
FAILING(int, flock, (int file, int operation), (file, operation), -1, EIO)
FAILING(int, memfd_create, (const char* name, unsigned int flags), (name, flags), -1, EMFILE)
FAILING(void*, mmap, (void* at, size_t count, int rights, int flags, int file, off_t offset),
        (at, count, rights, flags, file, offset), MAP_FAILED, ENOMEM)
FAILING(DIR*, fdopendir, (int folder), (folder), nullptr, ENOMEM)
FAILING(Entry*, readdir, (DIR * folder), (folder), nullptr, EIO)

// Those with a variable number of arguments have at most one more.
extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  if (failing::fails("open")) {
    errno = EMFILE;
    return -1;
  }
  return __real_open(path, flags, mode);
}

extern "C" int __real_openat(int folder, const char* path, int flags, ...);
extern "C" int __wrap_openat(int folder, const char* path, int flags, ...);
int __wrap_openat(int folder, const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  if (failing::fails("openat")) {
    errno = EMFILE;
    return -1;
  }
  return __real_openat(folder, path, flags, mode);
}

extern "C" int __real_fcntl(int file, int command, ...);
extern "C" int __wrap_fcntl(int file, int command, ...);
int __wrap_fcntl(int file, int command, ...) {
  va_list more;
  va_start(more, command);
  const long argument = va_arg(more, long);
  va_end(more);
  if (failing::fails("fcntl")) {
    errno = EMFILE;
    return -1;
  }
  return __real_fcntl(file, command, argument);
}
// NOLINTEND(bugprone-reserved-identifier)
