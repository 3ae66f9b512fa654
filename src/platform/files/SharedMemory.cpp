#include "platform/files/SharedMemory.h"

#include <cerrno>

#if defined(__linux__)
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace platform {

#if defined(__linux__)

namespace {

constexpr std::size_t kPage = 4096;

// Hardened systems refuse memory that could be made executable; kernels before 6.3 do not know the
// flag, and neither may the headers.
int createMemory(const char* name) {
  constexpr unsigned kNeverExecutable = 0x0008U;
  constexpr unsigned kFlags = MFD_CLOEXEC | MFD_ALLOW_SEALING;
  const int descriptor = ::memfd_create(name, kFlags | kNeverExecutable);
  return descriptor < 0 && errno == EINVAL ? ::memfd_create(name, kFlags) : descriptor;
}

int sized(int descriptor, std::size_t byteCount) {
  return ::ftruncate(descriptor, static_cast<off_t>(byteCount)) == 0 &&
                 ::fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0
             ? 0
             : errno;
}

}  // namespace

Result<std::unique_ptr<SharedMemory>> SharedMemory::create(const char* name,
                                                           std::size_t byteCount) {
  const int descriptor = createMemory(name);
  if (descriptor < 0) {
    return errno;
  }
  int error = sized(descriptor, byteCount);
  if (error == 0) {
    void* const bytes =
        ::mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (bytes != MAP_FAILED) {
      return std::unique_ptr<SharedMemory>(
          new SharedMemory(descriptor, static_cast<std::byte*>(bytes), byteCount));
    }
    error = errno;
  }
  ::close(descriptor);
  return error;
}

SharedMemory::~SharedMemory() {
  ::munmap(bytes_, size_);
  ::close(descriptor_);
}

int SharedMemory::reserve(std::size_t offset, std::size_t byteCount) {
  int result = 0;
  do {
    result = ::fallocate(descriptor_, 0, static_cast<off_t>(offset), static_cast<off_t>(byteCount));
  } while (result != 0 && errno == EINTR);
  if (result != 0) {
    return errno;
  }
  // Reading maps a page as well as storing does, and cannot disturb a thread that stores there.
  for (std::size_t at = offset; at < offset + byteCount; at += kPage) {
    static_cast<void>(*static_cast<const volatile std::byte*>(bytes_ + at));
  }
  return 0;
}

void SharedMemory::release(std::size_t offset, std::size_t byteCount) {
  static_cast<void>(::fallocate(descriptor_, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                                static_cast<off_t>(offset), static_cast<off_t>(byteCount)));
}

#else

Result<std::unique_ptr<SharedMemory>> SharedMemory::create(const char*, std::size_t) {
  return ENOSYS;
}
SharedMemory::~SharedMemory() = default;
int SharedMemory::reserve(std::size_t, std::size_t) {
  return ENOSYS;
}
void SharedMemory::release(std::size_t, std::size_t) {}

#endif

}  // namespace platform
