#include "platform/files/ReplacementFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/files/PosixFile.h"

namespace platform {
namespace {

constexpr int kMaximumLinks = 40;  // the system's own limit
constexpr int kMaximumAttempts = 100;
// Permissions of a new file that replaces none, before the umask.
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPrivateMode = 0600;  // until it gets the permissions of the file it replaces

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int get() const { return descriptor_; }
  int close() {
    const int open = std::exchange(descriptor_, -1);
    return open < 0 ? 0 : ::close(open);
  }

 private:
  int descriptor_;
};

// Not canonical(): the last link may point to a file that does not exist yet.
int followLinks(std::filesystem::path& path) {
  std::error_code error;
  for (int i = 0; i < kMaximumLinks; ++i) {
    const auto link = std::filesystem::read_symlink(path, error);
    if (error) {
      return 0;
    }
    path = link.is_absolute() ? link : path.parent_path() / link;
  }
  return ELOOP;
}

std::string folderOf(const std::string& path) {
  const auto folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

// 0 if a file may be placed at `path`, otherwise an errno.
int checkTarget(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    return errno == ENOENT ? 0 : errno;
  }
  if (S_ISDIR(status.st_mode)) {
    return EISDIR;
  }
  if (!S_ISREG(status.st_mode)) {
    return EINVAL;
  }
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

void takeOverRights(int descriptor, const std::string& target) {
  struct stat status = {};
  if (::stat(target.c_str(), &status) != 0) {
    return;
  }
  // Only root may change a file's owner. Permissions are set after the owner, since changing it
  // clears some of them.
  if (::fchown(descriptor, status.st_uid, status.st_gid) != 0 &&
      ::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid) != 0) {
    errno = 0;
  }
  ::fchmod(descriptor, status.st_mode & 07777);
}

// The name is independent of the target's, which may already have the maximum length.
int createBeside(const std::string& target, mode_t mode, std::string& path) {
  static constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, kLetters.size() - 1);
  for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
    path = folderOf(target) + "/.orvo-";
    for (int i = 0; i < 8; ++i) {
      path += kLetters[letter(random)];
    }
    const Descriptor created(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (created.get() >= 0) {
      return 0;
    }
    if (errno != EEXIST) {
      return errno;
    }
  }
  return EEXIST;
}

int sync(int descriptor) {
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

// The rename itself must survive a power failure too. Systems that cannot sync a folder do not need
// it.
void syncFolder(const std::string& path) {
  const Descriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.get() >= 0) {
    ::fsync(folder.get());
  }
}

}  // namespace

ReplacementFile::ReplacementFile(std::string target, std::string path)
    : target_(std::move(target)), path_(std::move(path)) {}

Result<std::unique_ptr<ReplacementFile>> ReplacementFile::beside(const std::string& target) {
  std::filesystem::path file(target);
  if (const int error = followLinks(file)) {
    return error;
  }
  if (const int error = checkTarget(file.string())) {
    return error;
  }
  std::error_code unknown;
  const bool replaces = std::filesystem::exists(file, unknown) || unknown;
  std::string path;
  const int error = createBeside(file.string(), replaces ? kPrivateMode : kNewFileMode, path);
  if (error != 0) {
    return error;
  }
  return std::unique_ptr<ReplacementFile>(new ReplacementFile(file.string(), path));
}

std::string ReplacementFile::folderBeside(const std::string& target) {
  std::filesystem::path file(target);
  return followLinks(file) == 0 ? folderOf(file.string()) : folderOf(target);
}

ReplacementFile::~ReplacementFile() {
  if (!committed_) {
    ::unlink(path_.c_str());
  }
}

int ReplacementFile::write(const void* data, std::uint64_t byteCount) {
  const int descriptor = ::open(path_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (descriptor < 0) {
    return errno;
  }
  return PosixFile(descriptor).writeAt(data, byteCount, 0).error;
}

int ReplacementFile::commit() {
  Descriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) {
    return errno;
  }
  takeOverRights(file.get(), target_);
  if (const int error = sync(file.get())) {
    return error;
  }
  if (file.close() != 0) {
    return errno;
  }
  if (::rename(path_.c_str(), target_.c_str()) != 0) {
    return errno;
  }
  committed_ = true;
  syncFolder(target_);
  return 0;
}

}  // namespace platform
