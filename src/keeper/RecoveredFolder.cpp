#include "keeper/RecoveredFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/files/OwnFolder.h"

namespace {

constexpr std::string_view kSuffix = ".caf";
constexpr std::string_view kPart = ".part";
constexpr int kMaxNumber = 9999;  // of equal names
constexpr mode_t kUserOnly = 0700;

std::string nameWithNumber(const std::string& name, int number) {
  std::string numbered = name;
  if (number > 1) {
    numbered += ' ';
    numbered += std::to_string(number);
  }
  return numbered.append(kSuffix);
}

std::string partOf(const std::string& name) {
  return name + std::string(kPart);
}

// The text before `end`, if it ends so; otherwise the whole text.
std::string withoutEnd(const std::string& text, std::string_view end) {
  return text.ends_with(end) ? text.substr(0, text.size() - end.size()) : text;
}

// Whether it can be the name of a recovered file, and nothing else.
bool isPlainName(const std::string& name) {
  return name.size() > kSuffix.size() && name.size() < 200 && name.ends_with(kSuffix) &&
         name.front() != '.' && name.find('/') == std::string::npos;
}

// The data directory itself may be a link, and that of a new user may not be there yet.
platform::Descriptor openDataDirectory(const std::string& path) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  platform::Descriptor folder(::open(path.c_str(), kFlags));
  if (!folder && errno == ENOENT) {
    for (auto end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
      ::mkdir(path.substr(0, end).c_str(), kUserOnly);
    }
    ::mkdir(path.c_str(), kUserOnly);
    folder = platform::Descriptor(::open(path.c_str(), kFlags));
  }
  return folder;
}

// Takes the lock of a whole file. Whoever has just died may hold it for a moment.
bool lock(int file, std::chrono::milliseconds patience = {}) {
  constexpr std::chrono::milliseconds kAgain{2};
  const auto giveUp = std::chrono::steady_clock::now() + patience;
  while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) {
      continue;
    }
    if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= giveUp) {
      return false;
    }
    std::this_thread::sleep_for(kAgain);
  }
  return true;
}

bool isThere(int folder, const std::string& name) {
  struct stat information = {};
  return ::fstatat(folder, name.c_str(), &information, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isNameOf(int file, int folder, const std::string& name) {
  struct stat opened = {};
  struct stat named = {};
  return ::fstat(file, &opened) == 0 && S_ISREG(opened.st_mode) &&
         ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
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
    return EINVAL;
  }
  const platform::Descriptor data = openDataDirectory(dataDirectory);
  if (!data) {
    return errno;
  }
  constexpr auto kMade = platform::MissingFolder::isMade;
  const auto own = platform::openOwnFolder(data.get(), "orvo", kMade);
  if (!own) {
    return own.error();
  }
  auto recovered = platform::openOwnFolder((*own).get(), "recovered", kMade);
  if (!recovered) {
    return recovered.error();
  }
  for (const int folder : {(*own).get(), (*recovered).get()}) {
    if (const int error = platform::closeToOthers(folder)) {
      return error;
    }
  }
  return std::unique_ptr<RecoveredFolder>(new RecoveredFolder(*std::move(recovered)));
}

bool RecoveredFolder::exists(const std::string& name) const {
  return isThere(folder_.get(), name);
}

platform::Result<PartFile> RecoveredFolder::create(const std::string& name, const Former& former) {
  if (isPlainName(former.name)) {
    auto part = createPart(former.name);
    if (!part && part.error() == EEXIST && removeDeadPart(former.name)) {
      part = createPart(former.name);
    }
    if (part) {
      part->replacesFormer = true;
      part->formerNumber = former.number;
    }
    if (part || part.error() != EEXIST) {
      return part;
    }
  }
  // A part that its document was opened from stays until the new file is complete.
  const std::string whole = withoutEnd(former.name, kPart);
  if (whole.size() < former.name.size() && isPlainName(whole)) {
    auto part = createNumbered(withoutEnd(whole, kSuffix));
    if (part) {
      part->formerPart = former.name;
    }
    return part;
  }
  return createNumbered(name);
}

platform::Result<PartFile> RecoveredFolder::createNumbered(const std::string& name) const {
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
  const int file = ::openat(folder_.get(), partOf(name).c_str(),
                            O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (file < 0) {
    return errno;
  }
  static_cast<void>(lock(file));  // nobody else has it yet
  return PartFile{.file = std::make_unique<platform::PosixFile>(file), .name = name};
}

// A part file of this name, left by a keeper that was killed. The program that has just ended may
// have offered it. By the time that its lock is had the name may be another part's.
bool RecoveredFolder::removeDeadPart(const std::string& name) const {
  const std::string path = partOf(name);
  const platform::Descriptor file(
      ::openat(folder_.get(), path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return file && lock(file.get(), std::chrono::seconds(1)) &&
         isNameOf(file.get(), folder_.get(), path) &&
         ::unlinkat(folder_.get(), path.c_str(), 0) == 0;
}

int RecoveredFolder::complete(PartFile& part) {
  if (!part.isSynced && ::fsync(part.file->descriptor()) != 0) {
    return errno;
  }
  part.isSynced = true;
  if (const int error = rename(part); error != 0) {
    return error;
  }
  if (!part.formerPart.empty()) {
    static_cast<void>(removeDeadPart(withoutEnd(part.formerPart, kPart)));
  }
  ::fsync(folder_.get());  // the content is safe; without the name's sync it only keeps its suffix
  part.file.reset();
  return 0;
}

// Another keeper, whose program was stopped, may have replaced it by what is newer there.
bool RecoveredFolder::isFormerThere(const PartFile& part) const {
  struct stat status = {};
  return part.replacesFormer &&
         (part.formerNumber == 0 ||
          (::fstatat(folder_.get(), part.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           status.st_ino == part.formerNumber));
}

int RecoveredFolder::rename(const PartFile& part) const {
  const std::string from = partOf(part.name);
  if (isFormerThere(part) &&
      ::renameat(folder_.get(), from.c_str(), folder_.get(), part.name.c_str()) == 0) {
    return 0;  // otherwise it gets a name of its own
  }
  // Another keeper may have taken the name meanwhile.
  const std::string base = withoutEnd(part.name, kSuffix);
  int error = renameKeepingOthers(folder_.get(), from, part.name);
  for (int number = 2; error == EEXIST && number <= kMaxNumber; ++number) {
    error = renameKeepingOthers(folder_.get(), from, nameWithNumber(base, number));
  }
  return error;
}

void RecoveredFolder::discard(const PartFile& part) {
  ::unlinkat(folder_.get(), partOf(part.name).c_str(), 0);
}
