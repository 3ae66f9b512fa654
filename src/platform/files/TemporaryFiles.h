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
  std::string path;  ///< where it was created
};

struct NoTemporaryFile {
  int error = 0;     ///< errno
  std::string path;  ///< where it was to be created
};

/// Creates temporary files; by default, those of the operating system. Tests install one whose
/// files fail, fill up or lose their zeros.
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
  /// alone, and unlinks it at once: its storage is freed when it is closed or the process dies.
  [[nodiscard]] virtual Created createUnlinked(const std::string& pathTemplate) = 0;

  /// The same for a file that keeps its name, from a template with "XXXXXX" before an extension.
  /// The caller arranges for its deletion. Never opens an existing file.
  [[nodiscard]] virtual Created createNamed(const std::string& pathTemplate) = 0;
};

/// Deletes the file at a path; an error is ignored.
///
/// Threads: any. Real-time: not safe.
void deleteFile(const std::string& path);

inline std::shared_ptr<TemporaryFiles> temporaryFiles() {
  return Installed<TemporaryFiles>::get();
}

/// Whether a directory is on a disk. False for one that cannot be examined.
using IsOnDisk = std::function<bool(const std::string& directory)>;

/// The directory for open recordings, ending in a separator: `tmpdir` (the value of TMPDIR, may be
/// null) if it is not empty, since it is the user's choice. Otherwise "/tmp/", unless /tmp is in
/// memory and /var/tmp is on a disk, then "/var/tmp/": a day of sound takes 30 GB, too much for
/// memory.
///
/// Threads: any. Real-time: not safe.
[[nodiscard]] std::string chooseTemporaryDirectory(const char* tmpdir, const IsOnDisk& isOnDisk);

}  // namespace platform
