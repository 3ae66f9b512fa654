#include "platform/files/PosixFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/files/ContinuedTransfer.h"

namespace platform {
namespace {

// The maker put in last; null stands for the operating system's. Written by installations only,
// before the threads that read it start.
std::atomic<TemporaryFiles*> installedFiles{nullptr};

static_assert(sizeof(off_t) == 8, "a recording is longer than 2 GB: build with 64-bit offsets");

constexpr std::string_view kPlaceholders = "XXXXXX";
constexpr auto kMaxOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

// Whether the system can express every offset of a transfer.
bool canExpress(std::uint64_t byteCount, std::uint64_t offset) {
  return offset <= kMaxOffset && byteCount <= kMaxOffset - offset;
}

// A new file from a template whose placeholders stand before an extension of so many characters.
TemporaryFiles::Created createFrom(const std::string& pathTemplate, std::size_t extensionLength) {
  std::vector<char> path(pathTemplate.begin(), pathTemplate.end());
  path.push_back('\0');
  const int descriptor = ::mkostemps(path.data(), static_cast<int>(extensionLength), O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    return {.file = nullptr, .path = path.data(), .error = error};
  }
  return {.file = std::make_unique<PosixFile>(descriptor), .path = path.data(), .error = 0};
}

bool isOnDisk(const std::string& directory) {
#if defined(__linux__)
  struct statfs information = {};
  if (::statfs(directory.c_str(), &information) != 0) {
    return false;
  }
  return information.f_type != TMPFS_MAGIC && information.f_type != RAMFS_MAGIC;
#else
  return ::access(directory.c_str(), W_OK) == 0;
#endif
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

std::string chooseTemporaryDirectory(const char* tmpdir, const IsOnDisk& onDisk) {
  std::string directory = tmpdir == nullptr ? "" : tmpdir;
  if (directory.empty()) {
    directory = !onDisk("/tmp") && onDisk("/var/tmp") ? "/var/tmp" : "/tmp";
  }
  if (directory.back() != '/') {
    directory += '/';
  }
  return directory;
}

std::string PosixTemporaryFiles::directory() const {
  // Nothing in this program changes the environment after its start.
  const char* const tmpdir = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe)
  return chooseTemporaryDirectory(tmpdir, isOnDisk);
}

TemporaryFiles::Created PosixTemporaryFiles::createUnlinked(const std::string& pathTemplate) {
  Created created = createFrom(pathTemplate, 0);
  if (created.file != nullptr) {
    // A name that could not be removed costs disk space after the end, but no audio: carry on.
    ::unlink(created.path.c_str());
  }
  return created;
}

TemporaryFiles::Created PosixTemporaryFiles::createNamed(const std::string& pathTemplate) {
  const std::size_t placeholders = pathTemplate.rfind(kPlaceholders);
  if (placeholders == std::string::npos) {
    return {.file = nullptr, .path = pathTemplate, .error = EINVAL};
  }
  return createFrom(pathTemplate, pathTemplate.size() - placeholders - kPlaceholders.size());
}

TemporaryFiles& operatingSystemTemporaryFiles() {
  static auto* const files = new PosixTemporaryFiles;  // never destroyed: threads may outlive main
  return *files;
}

TemporaryFiles& temporaryFiles() {
  TemporaryFiles* const files = installedFiles.load(std::memory_order_acquire);
  return files != nullptr ? *files : operatingSystemTemporaryFiles();
}

void deleteFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

TemporaryFilesInstallation::TemporaryFilesInstallation(TemporaryFiles& files)
    : previous_(installedFiles.exchange(&files, std::memory_order_acq_rel)) {}

TemporaryFilesInstallation::~TemporaryFilesInstallation() {
  installedFiles.store(previous_, std::memory_order_release);
}

}  // namespace platform
