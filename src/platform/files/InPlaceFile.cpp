#include "platform/files/InPlaceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

#include "platform/files/ContinuedTransfer.h"
#include "platform/files/FilePlace.h"
#include "platform/files/TemporaryFiles.h"

namespace platform {
namespace {

constexpr std::uint64_t kChunkBytes = std::uint64_t{1} << 20;

int errorOf(int result) {
  return result == 0 ? 0 : errno;
}

FileTransfer writeTo(int file, const char* bytes, std::uint64_t byteCount, std::uint64_t offset) {
  return continuedTransfer(
      byteCount, NothingMoved::failure, [&](std::uint64_t done, std::uint64_t wanted) {
        return ::pwrite(file, bytes + done, wanted, static_cast<off_t>(offset + done));
      });
}

using Read = std::function<FileTransfer(char* bytes, std::uint64_t byteCount, std::uint64_t from)>;
using Write =
    std::function<FileTransfer(const char* bytes, std::uint64_t byteCount, std::uint64_t to)>;

// Copies exactly `byteCount` bytes. 0, or the errno of the failure.
int copy(const Read& read, std::uint64_t byteCount, const Write& write) {
  std::vector<char> chunk(std::min(kChunkBytes, byteCount));
  for (std::uint64_t done = 0; done < byteCount;) {
    const std::uint64_t wanted = std::min<std::uint64_t>(chunk.size(), byteCount - done);
    const FileTransfer got = read(chunk.data(), wanted, done);
    if (got.byteCount < wanted) {
      return got.error != 0 ? got.error : EIO;
    }
    const FileTransfer put = write(chunk.data(), wanted, done);
    if (put.error != 0) {
      return put.error;
    }
    done += wanted;
  }
  return 0;
}

std::uint64_t sizeOf(int file) {
  struct stat status = {};
  return ::fstat(file, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

void syncFolderOf(const std::string& path) {
  if (const auto place = FilePlace::of(path)) {
    place->sync();
  }
}

}  // namespace

bool InPlaceFile::isTheOnlyWay(const std::string& path, int error) {
  const auto place = FilePlace::of(path);
  return (error == EACCES || error == EPERM) && place && place->check() == 0 &&
         ::faccessat(place->folder(), ".", W_OK | X_OK, AT_EACCESS) != 0 &&
         static_cast<bool>(at(path));
}

Result<std::unique_ptr<InPlaceFile>> InPlaceFile::at(const std::string& path) {
  const auto place = FilePlace::of(path);
  if (!place) {
    return place.error();
  }
  Descriptor file(::openat(place->folder(), place->name().c_str(),
                           O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status = {};
  if (!file || ::fstat(file.get(), &status) != 0) {
    return errno;
  }
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
    return EACCES;
  }
  return std::unique_ptr<InPlaceFile>(new InPlaceFile(std::move(file), path));
}

InPlaceFile::~InPlaceFile() {
  if (!copyPath_.empty() && !isDamaged_) {
    ::unlink(copyPath_.c_str());
  }
}

int InPlaceFile::keepCopy() {
  const std::string suffix = std::filesystem::path(path_).extension().string();
  std::string path = temporaryFiles()->directory() + "orvo-old-XXXXXX" + suffix;
  const Descriptor file(::mkostemps(path.data(), static_cast<int>(suffix.size()), O_CLOEXEC));
  if (!file) {
    return errno;
  }
  copyPath_ = path;
  const Read read = [this](char* bytes, std::uint64_t byteCount, std::uint64_t from) {
    return continuedTransfer(
        byteCount, NothingMoved::endOfFile, [&](std::uint64_t done, std::uint64_t wanted) {
          return ::pread(file_.get(), bytes + done, wanted, static_cast<off_t>(from + done));
        });
  };
  const Write write = [&file](const char* bytes, std::uint64_t byteCount, std::uint64_t to) {
    return writeTo(file.get(), bytes, byteCount, to);
  };
  if (const int error = copy(read, sizeOf(file_.get()), write)) {
    return error;
  }
  if (::fsync(file.get()) != 0) {
    return errno;
  }
  syncFolderOf(copyPath_);
  return 0;
}

// Takes room for the new content while the old one is still whole.
int InPlaceFile::reserve(std::uint64_t byteCount) const {
  const std::uint64_t before = sizeOf(file_.get());
  if (byteCount <= before) {
    return 0;
  }
#if defined(__linux__)
  const int error = ::posix_fallocate(file_.get(), static_cast<off_t>(before),
                                      static_cast<off_t>(byteCount - before));
  if (error != 0 && error != EINVAL && error != EOPNOTSUPP) {
    static_cast<void>(!::ftruncate(file_.get(), static_cast<off_t>(before)));
    return error;
  }
#endif
  return 0;
}

int InPlaceFile::overwrite(File& content, std::uint64_t byteCount) {
  const Read read = [&content](char* bytes, std::uint64_t count, std::uint64_t from) {
    return content.readAt(bytes, count, from);
  };
  const Write write = [this](const char* bytes, std::uint64_t count, std::uint64_t to) {
    isDamaged_ = true;
    return writeTo(file_.get(), bytes, count, to);
  };
  if (const int error = copy(read, byteCount, write)) {
    return error;
  }
  if (::ftruncate(file_.get(), static_cast<off_t>(byteCount)) != 0) {
    return errno;
  }
  return errorOf(::fsync(file_.get()));
}

int InPlaceFile::replaceWith(File& content) {
  const std::uint64_t before = sizeOf(file_.get());
  const std::uint64_t byteCount = content.size();
  if (const int error = reserve(byteCount)) {
    return error;
  }
  const int error = overwrite(content, byteCount);
  if (error != 0 && !isDamaged_ && byteCount > before) {  // the room that was taken
    isDamaged_ = ::ftruncate(file_.get(), static_cast<off_t>(before)) != 0;
  }
  isDamaged_ = isDamaged_ && error != 0;
  return error;
}

}  // namespace platform
