#include "platform/files/PosixFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <limits>

#include "platform/files/ContinuedTransfer.h"

namespace platform {
namespace {

static_assert(sizeof(off_t) == 8, "a recording is longer than 2 GB: build with 64-bit offsets");

constexpr auto kMaxOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

// Whether the system can express every offset of a transfer.
bool canExpress(std::uint64_t byteCount, std::uint64_t offset) {
  return offset <= kMaxOffset && byteCount <= kMaxOffset - offset;
}

}  // namespace

PosixFile::~PosixFile() {
  ::close(descriptor_);
}

FileTransfer PosixFile::readAt(void* destination, std::uint64_t byteCount, std::uint64_t offset) {
  if (offset > kMaxOffset) {
    return {};
  }
  if (!canExpress(byteCount, offset)) {
    byteCount = kMaxOffset - offset;
  }
  auto* const bytes = static_cast<std::byte*>(destination);
  return continuedTransfer(
      byteCount, NothingMoved::endOfFile, [&](std::uint64_t done, std::uint64_t wanted) {
        return ::pread(descriptor_, bytes + done, wanted, static_cast<off_t>(offset + done));
      });
}

FileTransfer PosixFile::writeAt(const void* data, std::uint64_t byteCount, std::uint64_t offset) {
  if (!canExpress(byteCount, offset)) {
    return {.byteCount = 0, .error = EFBIG};
  }
  const auto* const bytes = static_cast<const std::byte*>(data);
  return continuedTransfer(
      byteCount, NothingMoved::failure, [&](std::uint64_t done, std::uint64_t wanted) {
        return ::pwrite(descriptor_, bytes + done, wanted, static_cast<off_t>(offset + done));
      });
}

std::uint64_t PosixFile::size() {
  struct stat information = {};
  return ::fstat(descriptor_, &information) == 0 ? static_cast<std::uint64_t>(information.st_size)
                                                 : 0;
}

int PosixFile::setSize(std::uint64_t byteCount) {
  if (byteCount > kMaxOffset) {
    return EFBIG;
  }
  int result = 0;
  do {
    result = ::ftruncate(descriptor_, static_cast<off_t>(byteCount));
  } while (result != 0 && errno == EINTR);
  return result == 0 ? 0 : errno;
}

}  // namespace platform
