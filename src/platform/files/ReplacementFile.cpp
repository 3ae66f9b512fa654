#include "platform/files/ReplacementFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/files/ContinuedTransfer.h"
#include "platform/files/FileRights.h"
#include "platform/files/LeftoverFiles.h"

namespace platform {
namespace {

constexpr int kMaximumAttempts = 100;
constexpr mode_t kUsualMode = 0666;    // before the umask
constexpr mode_t kPrivateMode = 0600;  // until it gets the permissions of the file it replaces

// None, with the reason in errno, on failure.
Descriptor create(const FilePlace& place, mode_t mode, std::string& name) {
  for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
    name = freshReplacementName();
    Descriptor created(::openat(place.folder(), name.c_str(),
                                O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (created || errno != EEXIST) {
      return created;
    }
  }
  return Descriptor();
}

}  // namespace

Result<std::unique_ptr<ReplacementFile>> ReplacementFile::beside(const std::string& target,
                                                                 NewFile rights) {
  auto place = FilePlace::of(target);
  if (!place) {
    return place.error();
  }
  if (const int error = place->check()) {
    return error;
  }
  Descriptor old = place->openExisting();
  const bool isPrivate = rights == NewFile::ownerOnly || old || place->isOccupied();
  std::string name;
  Descriptor file = create(*place, isPrivate ? kPrivateMode : kUsualMode, name);
  if (!file) {
    return errno;
  }
  holdReplacement(file.get());
  removeLeftReplacements(place->folder());
  return std::unique_ptr<ReplacementFile>(new ReplacementFile(
      target, *std::move(place), std::move(old), std::move(name), std::move(file)));
}

std::string ReplacementFile::folderBeside(const std::string& target) {
  constexpr int kMaximumLinks = 40;  // the system's own limit
  const auto folderOf = [](const std::filesystem::path& file) {
    const std::string folder = file.parent_path().string();
    return folder.empty() ? "." : folder;
  };
  std::filesystem::path file(target);
  for (int i = 0; i < kMaximumLinks; ++i) {
    std::error_code noLink;
    const auto link = std::filesystem::read_symlink(file, noLink);
    if (noLink) {
      return folderOf(file);
    }
    file = file.parent_path() / link;  // the link alone if it is absolute
  }
  return folderOf(target);
}

std::string ReplacementFile::closedFolderBeside(const std::string& target, int error) {
  if (error != EACCES && error != EPERM) {
    return {};
  }
  std::string folder = folderBeside(target);
  const bool isClosed =
      ::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0 && errno == EACCES;
  return isClosed ? folder : std::string();
}

ReplacementFile::~ReplacementFile() {
  if (!committed_ && place_.checkName(temporaryName_, file_.get()) == 0) {
    ::unlinkat(place_.folder(), temporaryName_.c_str(), 0);
  }
}

int ReplacementFile::write(const void* data, std::uint64_t byteCount) {
  if (::ftruncate(file_.get(), 0) != 0) {
    return errno;
  }
  const auto* const bytes = static_cast<const char*>(data);
  const FileTransfer transfer = continuedTransfer(
      byteCount, NothingMoved::failure, [&](std::uint64_t done, std::uint64_t wanted) {
        return ::pwrite(file_.get(), bytes + done, wanted, static_cast<off_t>(done));
      });
  if (transfer.error != 0) {
    return transfer.error;
  }
  return ::fsync(file_.get()) == 0 ? 0 : errno;
}

// Others may have changed names in the folder, and folders on the way to it.
int ReplacementFile::checkAgain() const {
  if (const int error = place_.checkName(temporaryName_, file_.get())) {
    return error;
  }
  const auto place = FilePlace::of(target_);
  if (!place) {
    return place.error();
  }
  return place->isSameAs(place_) ? place->check() : ESTALE;
}

int ReplacementFile::commit() {
  if (old_) {
    takeOverRights(file_.get(), old_.get());
  }
  if (::fsync(file_.get()) != 0) {
    return errno;
  }
  if (const int error = checkAgain()) {
    return error;
  }
  if (::renameat(place_.folder(), temporaryName_.c_str(), place_.folder(), place_.name().c_str()) !=
      0) {
    return errno;
  }
  committed_ = true;
  if (const int error = place_.checkName(place_.name(), file_.get())) {
    return error == ENOENT ? ESTALE : error;
  }
  place_.sync();
  return 0;
}

}  // namespace platform
