#include "keeper/RecoveredFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view kSuffix = ".caf";
constexpr std::string_view kPart = ".part";
constexpr int kMaxNumber = 9999;  // of equal names
constexpr mode_t kUserOnly = 0700;

std::string nameWithNumber(const std::string& name, int number) {
  return name + (number == 1 ? "" : " " + std::to_string(number)) + std::string(kSuffix);
}

std::string partOf(const std::string& name) {
  return name + std::string(kPart);
}

// Whether it can be the name of a recovered file, and nothing else.
bool isPlainName(const std::string& name) {
  return name.size() > kSuffix.size() && name.size() < 200 && name.ends_with(kSuffix) &&
         name.front() != '.' && name.find('/') == std::string::npos;
}

bool isUsers(int descriptor) {
  struct stat information = {};
  return ::fstat(descriptor, &information) == 0 && information.st_uid == ::geteuid();
}

// Opens a folder in another one, and creates it if necessary; -1 with errno if that fails or the
// folder cannot be trusted.
int openOwnFolder(int parent, const char* name) {
  if (::mkdirat(parent, name, kUserOnly) != 0 && errno != EEXIST) {
    return -1;
  }
  const int folder = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder >= 0 && !isUsers(folder)) {
    ::close(folder);
    errno = EPERM;
    return -1;
  }
  return folder;
}

// The data directory itself may be a link, and that of a new user may not be there yet.
int openDataDirectory(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  int folder = ::open(path.c_str(), kFlags);
  if (folder < 0 && errno == ENOENT) {
    const std::string parent = path.substr(0, path.rfind('/'));
    if (::access(parent.c_str(), F_OK) != 0) {
      ::mkdir(parent.c_str(), kUserOnly);
    }
    ::mkdir(path.c_str(), kUserOnly);
    folder = ::open(path.c_str(), kFlags);
  }
  return folder;
}

bool isThere(int folder, const std::string& name) {
  struct stat information = {};
  return ::fstatat(folder, name.c_str(), &information, AT_SYMLINK_NOFOLLOW) == 0;
}

int renameKeepingOthers(int folder, const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return errno;
  }
#endif
  // A second name never replaces a file either.
  if (::linkat(folder, from.c_str(), folder, to.c_str(), 0) == 0) {
    return ::unlinkat(folder, from.c_str(), 0) == 0 ? 0 : errno;
  }
  if (errno == EEXIST) {
    return EEXIST;
  }
  // Some disks know neither. Only keepers write here, and two rarely need one name at once.
  if (isThere(folder, to)) {
    return EEXIST;
  }
  return ::renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

platform::Result<std::unique_ptr<RecoveredFolder>> RecoveredFolder::open(
    const std::string& dataDirectory) {
  if (dataDirectory.empty()) {
    return ENOENT;
  }
  const int data = openDataDirectory(dataDirectory);
  if (data < 0) {
    return errno;
  }
  const int own = openOwnFolder(data, "orvo");
  int error = errno;
  ::close(data);
  if (own < 0) {
    return error;
  }
  const int recovered = openOwnFolder(own, "recovered");
  error = errno;
  ::close(own);
  if (recovered < 0) {
    return error;
  }
  if (::fchmod(recovered, kUserOnly) != 0) {
    error = errno;
    ::close(recovered);
    return error;
  }
  return std::unique_ptr<RecoveredFolder>(new RecoveredFolder(recovered));
}

RecoveredFolder::~RecoveredFolder() {
  ::close(descriptor_);
}

bool RecoveredFolder::exists(const std::string& name) const {
  return isThere(descriptor_, name);
}

platform::Result<PartFile> RecoveredFolder::create(const std::string& name,
                                                   const std::string& former) {
  if (isPlainName(former)) {
    auto part = createPart(former);
    if (!part && part.error() == EEXIST && removeDeadPart(former)) {
      part = createPart(former);
    }
    if (part) {
      part->replacesFormer = true;
    }
    if (part || part.error() != EEXIST) {
      return part;
    }
  }
  for (int number = 1; number <= kMaxNumber; ++number) {
    const std::string numbered = nameWithNumber(name, number);
    if (!exists(numbered)) {
      auto part = createPart(numbered);
      if (part || part.error() != EEXIST) {
        return part;
      }
    }
  }
  return EEXIST;
}

platform::Result<PartFile> RecoveredFolder::createPart(const std::string& name) const {
  const int file = ::openat(descriptor_, partOf(name).c_str(),
                            O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (file < 0) {
    return errno;
  }
  ::flock(file, LOCK_EX | LOCK_NB);  // nobody else has it yet
  return PartFile{.file = std::make_unique<platform::PosixFile>(file), .name = name};
}

// A part file of this name, left by a keeper that was killed.
bool RecoveredFolder::removeDeadPart(const std::string& name) const {
  const std::string path = partOf(name);
  const int file = ::openat(descriptor_, path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
  if (file < 0) {
    return false;
  }
  const bool isDead = ::flock(file, LOCK_EX | LOCK_NB) == 0;
  const bool isRemoved = isDead && ::unlinkat(descriptor_, path.c_str(), 0) == 0;
  ::close(file);
  return isRemoved;
}

int RecoveredFolder::complete(PartFile& part) {
  if (!part.isSynced && ::fsync(part.file->descriptor()) != 0) {
    return errno;
  }
  part.isSynced = true;
  if (const int error = rename(part); error != 0) {
    return error;
  }
  ::fsync(descriptor_);  // the content is safe; without the name's sync it only keeps its suffix
  part.file.reset();
  return 0;
}

int RecoveredFolder::rename(const PartFile& part) const {
  const std::string from = partOf(part.name);
  if (part.replacesFormer &&
      ::renameat(descriptor_, from.c_str(), descriptor_, part.name.c_str()) == 0) {
    return 0;  // otherwise it gets a name of its own
  }
  // Another keeper may have taken the name meanwhile.
  const std::string base = part.name.substr(0, part.name.size() - kSuffix.size());
  int error = renameKeepingOthers(descriptor_, from, part.name);
  for (int number = 2; error == EEXIST && number <= kMaxNumber; ++number) {
    error = renameKeepingOthers(descriptor_, from, nameWithNumber(base, number));
  }
  return error;
}

void RecoveredFolder::discard(const PartFile& part) {
  ::unlinkat(descriptor_, partOf(part.name).c_str(), 0);
}

std::string userDataDirectory() {
  // Nothing in this program changes the environment.
  const char* const data = std::getenv("XDG_DATA_HOME");  // NOLINT(concurrency-mt-unsafe)
  if (data != nullptr && *data == '/') {
    return data;
  }
  const char* const home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  return home != nullptr && *home == '/' ? std::string(home) + "/.local/share" : std::string();
}
