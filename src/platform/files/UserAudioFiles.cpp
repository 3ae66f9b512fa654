#include "platform/files/UserAudioFiles.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/files/PosixFile.h"

namespace platform {
namespace {

int errorOfKind(mode_t mode) {
  if (S_ISREG(mode)) {
    return 0;
  }
  return S_ISDIR(mode) ? EISDIR : ESPIPE;
}

// A file written sequentially. The disk starts writing while the sound is still being encoded, so
// that the final sync has little left to wait for.
class WriteBehindFile : public PosixFile {
 public:
  explicit WriteBehindFile(int descriptor) : PosixFile(descriptor), hintedDescriptor_(descriptor) {}

  [[nodiscard]] FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                     std::uint64_t offset) override {
    const FileTransfer transfer = PosixFile::writeAt(data, byteCount, offset);
#if defined(__linux__)
    if (offset + transfer.byteCount >= hinted_ + kStretch) {
      const std::uint64_t stretch = offset + transfer.byteCount - hinted_;
      // Only a hint: the sync reports any failure.
      static_cast<void>(::sync_file_range(hintedDescriptor_, static_cast<off_t>(hinted_),
                                          static_cast<off_t>(stretch), SYNC_FILE_RANGE_WRITE));
      hinted_ += stretch;
    }
#endif
    return transfer;
  }

 private:
  static constexpr std::uint64_t kStretch = std::uint64_t{8} << 20;  // bytes

  const int hintedDescriptor_;  // the base's, which owns it
  std::uint64_t hinted_ = 0;    // bytes from the start; writing thread only
};

class PosixUserAudioFiles : public UserAudioFiles {
 public:
  Opened openForReading(const std::string& path) override {
    return open<PosixFile>(path, O_RDONLY);
  }

  Opened createForWriting(const std::string& path) override {
    return open<WriteBehindFile>(path, O_WRONLY | O_CREAT | O_TRUNC);
  }

  Opened writeTo(int descriptor) override {
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);  // the file closes it
    if (own < 0) {
      return errno;
    }
    return std::make_unique<WriteBehindFile>(own);
  }

 private:
  template <typename SystemFile>
  static Opened open(const std::string& path, int flags) {
    constexpr mode_t kUsualPermissions = 0666;  // before the umask
    // Without O_NONBLOCK, opening a pipe would wait. Regular files ignore it.
    const int descriptor =
        ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, kUsualPermissions);
    if (descriptor < 0) {
      return errno;
    }
    auto file = std::make_unique<SystemFile>(descriptor);
    struct stat information = {};
    const int error =
        ::fstat(descriptor, &information) != 0 ? errno : errorOfKind(information.st_mode);
    if (error != 0) {
      return error;
    }
    return file;
  }
};

}  // namespace

std::shared_ptr<UserAudioFiles> UserAudioFiles::whenNoneIsInstalled() {
  return std::make_shared<PosixUserAudioFiles>();
}

}  // namespace platform
