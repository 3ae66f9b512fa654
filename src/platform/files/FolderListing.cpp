#include "platform/files/FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>

#include "platform/files/Descriptor.h"

namespace platform {
namespace {

#if defined(AT_NO_AUTOMOUNT)
constexpr int kLook = AT_NO_AUTOMOUNT;
#else
constexpr int kLook = 0;
#endif

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

bool mayBeListed(const dirent& entry) {
  return entry.d_name[0] != '.' && (entry.d_type == DT_DIR || entry.d_type == DT_REG ||
                                    entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN);
}

// 0, or an errno.
int readNames(DIR* folder, std::vector<FolderEntry>& entries, const std::atomic<bool>& cancelled) {
  while (!cancelled) {
    errno = 0;
    const dirent* const entry = ::readdir(folder);  // NOLINT(concurrency-mt-unsafe): own folder
    if (entry == nullptr) {
      return errno;
    }
    if (mayBeListed(*entry)) {
      entries.push_back({.name = entry->d_name, .isFolder = entry->d_type == DT_DIR});
    }
  }
  return 0;
}

// False for an entry that is not to be listed.
bool examine(int folder, FolderEntry& entry) {
  struct stat status = {};
  if (entry.isFolder) {
    return true;
  }
  if (::fstatat(folder, entry.name.c_str(), &status, kLook) != 0) {
    return false;
  }
  entry.isFolder = S_ISDIR(status.st_mode);
  if (!entry.isFolder) {
    entry.byteCount = static_cast<std::uint64_t>(status.st_size);
    entry.modified = status.st_mtime;
  }
  return entry.isFolder || S_ISREG(status.st_mode);
}

}  // namespace

int listFolder(const std::string& path,
               const std::function<void(const std::vector<FolderEntry>&)>& found,
               const std::atomic<bool>& cancelled) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    return errno;
  }
  const Folder folder(::fdopendir(descriptor));
  if (!folder) {
    const Descriptor closed(descriptor);
    return errno;
  }
  std::vector<FolderEntry> names;
  if (const int error = readNames(folder.get(), names, cancelled)) {
    return error;
  }
  if (cancelled) {
    return 0;
  }
  found(names);
  std::vector<FolderEntry> entries;
  for (FolderEntry& entry : names) {
    if (cancelled) {
      return 0;
    }
    if (examine(::dirfd(folder.get()), entry)) {
      entries.push_back(std::move(entry));
    }
  }
  found(entries);
  return 0;
}

PathKind kindOfPath(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    return PathKind::missing;
  }
  return S_ISDIR(status.st_mode) ? PathKind::folder : PathKind::file;
}

int makeFolder(const std::string& path) {
  constexpr mode_t kUsualMode = 0777;  // before the umask
  return ::mkdir(path.c_str(), kUsualMode) == 0 ? 0 : errno;
}

}  // namespace platform
