#include "platform/files/LeftoverFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <iterator>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

#include "platform/files/Descriptor.h"

namespace platform {
namespace {

constexpr std::string_view kPrefix = ".orvo-";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t kLetterCount = 8;
// A file is held from a moment after its creation on.
constexpr std::time_t kYoung = 3600;  // seconds

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

bool isReplacementName(std::string_view name) {
  return name.size() == kPrefix.size() + kLetterCount && name.starts_with(kPrefix) &&
         name.find_first_not_of(kLetters, kPrefix.size()) == std::string_view::npos;
}

std::vector<std::string> replacementNames(int folder) {
  std::vector<std::string> names;
  const int readable = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const Folder listed(readable < 0 ? nullptr : ::fdopendir(readable));
  if (!listed) {
    const Descriptor closed(readable);
    return names;
  }
  while (const dirent* const entry = ::readdir(listed.get())) {  // NOLINT(concurrency-mt-unsafe)
    if (isReplacementName(entry->d_name)) {
      names.emplace_back(entry->d_name);
    }
  }
  return names;
}

bool isLeft(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         status.st_mtime < std::time(nullptr) - kYoung;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The lock is kept until the name is gone, so that nobody takes it in between.
void removeIfLeft(int folder, const std::string& name) {
  struct stat named = {};
  if (::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0 || !isLeft(named)) {
    return;
  }
  // For writing, which a lock takes on network drives.
  const Descriptor file(
      ::openat(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat opened = {};
  if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 && ::fstat(file.get(), &opened) == 0 &&
      ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
      isSameFile(named, opened) && isLeft(opened)) {
    ::unlinkat(folder, name.c_str(), 0);
  }
}

}  // namespace

std::string freshReplacementName() {
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, kLetters.size() - 1);
  std::string name(kPrefix);
  std::generate_n(std::back_inserter(name), kLetterCount, [&] { return kLetters[letter(random)]; });
  return name;
}

void holdReplacement(int file) {
  static_cast<void>(::flock(file, LOCK_EX | LOCK_NB));
}

void removeLeftReplacements(int folder) {
  for (const std::string& name : replacementNames(folder)) {
    removeIfLeft(folder, name);
  }
}

}  // namespace platform
