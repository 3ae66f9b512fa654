#include "platform/files/PrivateFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files/OwnFolder.h"

namespace platform {
namespace {

int errorOfFile(int descriptor) {
  struct stat status = {};
  if (::fstat(descriptor, &status) != 0) {
    return errno;
  }
  if (!S_ISREG(status.st_mode)) {
    return EINVAL;
  }
  return status.st_uid == ::geteuid() ? 0 : EPERM;
}

// Some network file systems lock only files that are open for writing.
int openFile(int folder, const char* name) {
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const int descriptor = ::openat(folder, name, O_RDWR | kFlags);
  return descriptor >= 0 ? descriptor : ::openat(folder, name, O_RDONLY | kFlags);
}

}  // namespace

// File ------------------------------------------------------------------------------------------

PrivateFile::PrivateFile(std::shared_ptr<const Descriptor> folder, std::string name, int descriptor)
    : folder_(std::move(folder)),
      name_(std::move(name)),
      descriptor_(descriptor),
      file_(descriptor) {}

PrivateFile::~PrivateFile() = default;

std::uint64_t PrivateFile::number() const {
  struct stat status = {};
  return ::fstat(descriptor_, &status) == 0 ? status.st_ino : 0;
}

std::uint64_t PrivateFile::allocatedBytes() const {
  constexpr std::uint64_t kUnit = 512;  // of st_blocks
  struct stat status = {};
  return ::fstat(descriptor_, &status) == 0 ? static_cast<std::uint64_t>(status.st_blocks) * kUnit
                                            : 0;
}

std::chrono::system_clock::time_point PrivateFile::modified() const {
  struct stat status = {};
  return std::chrono::system_clock::from_time_t(::fstat(descriptor_, &status) == 0 ? status.st_mtime
                                                                                   : 0);
}

PrivateFile::Lock PrivateFile::lock() {
  int result = 0;
  do {
    result = ::flock(descriptor_, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    return Lock::taken;
  }
  return errno == EWOULDBLOCK ? Lock::heldByAnother : Lock::notToBeHad;
}

int PrivateFile::checkName() const {
  struct stat opened = {};
  struct stat named = {};
  if (::fstat(descriptor_, &opened) != 0 ||
      ::fstatat(folder_->get(), name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno;
  }
  return opened.st_dev == named.st_dev && opened.st_ino == named.st_ino ? 0 : ESTALE;
}

int PrivateFile::remove() {
  if (const int error = checkName()) {
    return error;
  }
  return ::unlinkat(folder_->get(), name_.c_str(), 0) == 0 ? 0 : errno;
}

// Folder ----------------------------------------------------------------------------------------

PrivateFolder::PrivateFolder(Descriptor folder)
    : folder_(std::make_shared<const Descriptor>(std::move(folder))) {}

Result<PrivateFolder> PrivateFolder::at(const std::string& path, int ownFolders) {
  std::vector<std::string> names;  // from the innermost outwards
  std::filesystem::path base = path;
  for (int i = 0; i < ownFolders; ++i) {
    names.push_back(base.filename().string());
    base = base.parent_path();
  }
  const std::string start = base.empty() ? "." : base.string();
  Descriptor folder(::open(start.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
  if (!folder) {
    return errno;
  }
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    auto inner = openOwnFolder(folder.get(), *name, MissingFolder::isAnError);
    if (!inner) {
      return inner.error();
    }
    folder = *std::move(inner);
    if (const int error = closeToOthers(folder.get())) {
      return error;
    }
  }
  return PrivateFolder(std::move(folder));
}

void PrivateFolder::forEachName(const std::function<void(const std::string& name)>& found) const {
  // A descriptor of its own: the position in the folder belongs to it.
  const int descriptor = ::openat(folder_->get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const listing = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
  if (listing == nullptr) {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
    return;
  }
  // No other thread uses this listing.
  while (const dirent* const entry = ::readdir(listing)) {  // NOLINT(concurrency-mt-unsafe)
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      found(std::string(name));
    }
  }
  ::closedir(listing);
}

PrivateFolder::Opened PrivateFolder::open(const std::string& name) const {
  const int descriptor = openFile(folder_->get(), name.c_str());
  if (descriptor < 0) {
    return errno;
  }
  std::shared_ptr<PrivateFile> file(new PrivateFile(folder_, name, descriptor));
  if (const int error = errorOfFile(descriptor)) {
    return error;
  }
  return file;
}

}  // namespace platform
