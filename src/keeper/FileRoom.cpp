#include "keeper/FileRoom.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

int reserveRoom(int file, std::uint64_t byteCount) {
#if defined(__linux__)
  int result = 0;
  do {
    result = ::fallocate(file, 0, 0, static_cast<off_t>(byteCount));
  } while (result != 0 && errno == EINTR);
  if (result != 0 && errno != EOPNOTSUPP && errno != ENOSYS) {
    return errno;
  }
#endif
  return ::ftruncate(file, static_cast<off_t>(byteCount)) == 0 ? 0 : errno;
}

int setLengthWithoutRoom(int file, std::uint64_t byteCount) {
  const bool isSet =
      ::ftruncate(file, 0) == 0 && ::ftruncate(file, static_cast<off_t>(byteCount)) == 0;
  return isSet ? 0 : errno;
}

bool areOnOneDisk(int file, int other) {
  struct stat one = {};
  struct stat another = {};
  return ::fstat(file, &one) == 0 && ::fstat(other, &another) == 0 && one.st_dev == another.st_dev;
}

bool giveBackRoom(int file, std::uint64_t offset, std::uint64_t byteCount) {
#if defined(__linux__)
  return byteCount == 0 ||
         ::fallocate(file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
                     static_cast<off_t>(byteCount)) == 0;
#else
  static_cast<void>(file);
  static_cast<void>(offset);
  return byteCount == 0;
#endif
}
