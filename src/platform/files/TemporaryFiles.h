#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/base/Installed.h"
#include "platform/base/Result.h"
#include "platform/files/File.h"

namespace platform {

struct TemporaryFile {
  std::unique_ptr<File> file;
  std::string path;  ///< under which it was created
};

struct NoTemporaryFile {
  int error = 0;     ///< errno
  std::string path;  ///< under which it was to be created
};

/// Makes temporary files, with none installed the operating system's. A test installs one whose
/// files fail, fill up, or keep no zeros.
///
/// Threads: any. Real-time: not safe.
class TemporaryFiles {
 public:
  virtual ~TemporaryFiles() = default;
  static std::shared_ptr<TemporaryFiles> whenNoneIsInstalled();

  using Created = Result<TemporaryFile, NoTemporaryFile>;

  /// The user's temporary directory, ending in a separator.
  [[nodiscard]] virtual std::string directory() const = 0;

  /// Creates and opens a new file from a template that ends in "XXXXXX", readable by the user
  /// alone, and unlinks it at once: its storage is gone when it is closed or the process dies.
  [[nodiscard]] virtual Created createUnlinked(const std::string& pathTemplate) = 0;

  /// The same, from a template in which "XXXXXX" stands before an extension, for a file that keeps
  /// its name: whoever makes it has it deleted. Never a file that was there before.
  [[nodiscard]] virtual Created createNamed(const std::string& pathTemplate) = 0;
};

/// Deletes the file at a path; an error is ignored.
///
/// Threads: any. Real-time: not safe.
void deleteFile(const std::string& path);

inline std::shared_ptr<TemporaryFiles> temporaryFiles() {
  return Installed<TemporaryFiles>::get();
}

/// Whether a directory's files live on a disk. False also for one that cannot be looked at.
using IsOnDisk = std::function<bool(const std::string& directory)>;

/// Where recordings go while they are open, ending in a separator: `tmpdir` (the value of TMPDIR,
/// may be null) as it stands if it is not empty, for it is the user's choice. Otherwise "/tmp/",
/// except where /tmp lives in memory and /var/tmp does not: a day of sound is 30 GB, which a disk
/// can hold and memory cannot.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string chooseTemporaryDirectory(const char* tmpdir, const IsOnDisk& isOnDisk);

}  // namespace platform
