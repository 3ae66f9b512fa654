#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/files/File.h"

/// Files and temporary files of a POSIX system. Another system's stand beside this in a file of
/// their own and answer operatingSystemTemporaryFiles() too.
namespace platform {

/// A file behind a descriptor, which it owns. Offsets that the system cannot express (from 2^63
/// on) read as the end of the file and refuse to be written, or to become the end, with EFBIG.
///
/// Threads: any, also at the same time. Real-time: not safe.
class PosixFile : public File {
 public:
  explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixFile() override;
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  [[nodiscard]] FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                    std::uint64_t offset) override;
  [[nodiscard]] FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                     std::uint64_t offset) override;
  [[nodiscard]] std::uint64_t size() override;
  [[nodiscard]] int setSize(std::uint64_t byteCount) override;

 private:
  const int descriptor_;
};

/// Temporary files made with mkostemps, closed on exec.
///
/// Threads: any. Real-time: not safe.
class PosixTemporaryFiles : public TemporaryFiles {
 public:
  [[nodiscard]] std::string directory() const override;
  [[nodiscard]] Created createUnlinked(const std::string& pathTemplate) override;
  [[nodiscard]] Created createNamed(const std::string& pathTemplate) override;
};

/// Whether a directory's files live on a disk. False also for one that cannot be looked at.
using IsOnDisk = std::function<bool(const std::string& directory)>;

/// Where recordings go while they are open, ending in a separator: `tmpdir` (the value of TMPDIR,
/// may be null) as it stands if it is not empty, for it is the user's choice. Otherwise "/tmp/",
/// except where /tmp lives in memory and /var/tmp does not: a day of sound is 30 GB, which a disk
/// can hold and memory cannot.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string chooseTemporaryDirectory(const char* tmpdir, const IsOnDisk& isOnDisk);

/// The operating system's maker of temporary files.
TemporaryFiles& operatingSystemTemporaryFiles();

}  // namespace platform
