#include "platform/files/TemporaryFiles.h"

#include <fcntl.h>
#include <unistd.h>
#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/files/PosixFile.h"

namespace platform {
namespace {

constexpr std::string_view kPlaceholders = "XXXXXX";

// A new file from a template whose placeholders precede an extension of `extensionLength`
// characters.
TemporaryFiles::Created createFrom(const std::string& pathTemplate, std::size_t extensionLength) {
  std::vector<char> path(pathTemplate.begin(), pathTemplate.end());
  path.push_back('\0');
  const int descriptor = ::mkostemps(path.data(), static_cast<int>(extensionLength), O_CLOEXEC);
  if (descriptor < 0) {
    const int error = errno;
    return NoTemporaryFile{.error = error, .path = path.data()};
  }
  return TemporaryFile{.file = std::make_unique<PosixFile>(descriptor), .path = path.data()};
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

// Closed on exec.
class PosixTemporaryFiles : public TemporaryFiles {
 public:
  [[nodiscard]] std::string directory() const override {
    // Nothing in this program changes the environment after its start.
    const char* const tmpdir = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe)
    return chooseTemporaryDirectory(tmpdir, isOnDisk);
  }

  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override {
    Created created = createFrom(pathTemplate, 0);
    if (created) {
      // A name that could not be removed costs disk space after exit, but no audio: continue.
      ::unlink(created->path.c_str());
    }
    return created;
  }

  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override {
    const std::size_t placeholders = pathTemplate.rfind(kPlaceholders);
    if (placeholders == std::string::npos) {
      return NoTemporaryFile{.error = EINVAL, .path = pathTemplate};
    }
    return createFrom(pathTemplate, pathTemplate.size() - placeholders - kPlaceholders.size());
  }
};

}  // namespace

std::shared_ptr<TemporaryFiles> TemporaryFiles::whenNoneIsInstalled() {
  return std::make_shared<PosixTemporaryFiles>();
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

void deleteFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

}  // namespace platform
