#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// How much of a transfer was done, and why not more.
struct FileTransfer {
  std::uint64_t byteCount = 0;  ///< bytes moved, from the first on without a gap
  int error = 0;                ///< errno of the failure that ended the transfer; 0 for none, also
                                ///< when a read met the end of the file
};

/// An open file with positioned transfers: no shared position, so readers and a writer need no
/// lock between them as long as they touch different bytes.
///
/// Threads: any, also at the same time. Real-time: not safe.
class File {
 public:
  virtual ~File() = default;  ///< closes

  /// Reads up to `byteCount` bytes at `offset`; fewer at the end of the file. Interrupted and
  /// partial system calls are continued.
  [[nodiscard]] virtual FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                            std::uint64_t offset) = 0;

  /// Writes `byteCount` bytes at `offset`, lengthening the file as needed; fewer when it fails.
  [[nodiscard]] virtual FileTransfer writeAt(const void* data, std::uint64_t byteCount,
                                             std::uint64_t offset) = 0;

  /// Length in bytes; 0 where the system does not tell.
  [[nodiscard]] virtual std::uint64_t size() = 0;

  /// Makes the file `byteCount` bytes long: what lies behind is gone, what is new is zeros. Gives
  /// the errno of the failure, 0 for none; a file that could not be made longer or shorter is as it
  /// was.
  [[nodiscard]] virtual int setSize(std::uint64_t byteCount) = 0;
};

/// Makes temporary files. A test puts in one whose files fail, fill up, or keep no zeros.
///
/// Threads: any. Real-time: not safe.
class TemporaryFiles {
 public:
  virtual ~TemporaryFiles() = default;

  struct Created {
    std::unique_ptr<File> file;  ///< null when it failed
    std::string path;            ///< path under which it was created, or was to be
    int error = 0;               ///< errno of the failure
  };

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

/// The installed maker of temporary files; at first the operating system's.
TemporaryFiles& temporaryFiles();

/// Puts another maker in for as long as the installation lives. For tests and benchmarks; install
/// before the threads that use it start.
class TemporaryFilesInstallation {
 public:
  explicit TemporaryFilesInstallation(TemporaryFiles& files);
  ~TemporaryFilesInstallation();
  TemporaryFilesInstallation(const TemporaryFilesInstallation&) = delete;
  TemporaryFilesInstallation& operator=(const TemporaryFilesInstallation&) = delete;

 private:
  TemporaryFiles* previous_;
};

}  // namespace platform
