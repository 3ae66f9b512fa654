#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace support {

/// A folder that appears to one program as a separate disk: a small one or a read-only one.
///
/// A tmpfs in the program's own mount namespace. Where this process may not mount, a library
/// preloaded into the program makes the folder fail like such a disk (ENOSPC, EROFS). A trial mount
/// decides; ORVO_TEST_WITHOUT_MOUNTS=1 in the environment forces the library.
///
/// Threads: any.
class LimitedDisk {
 public:
  /// A disk of so many bytes (whole pages) in place of an existing, empty folder. It initially
  /// holds the file `content` under `name`, or nothing if `name` is empty.
  [[nodiscard]] static LimitedDisk ofSize(const std::string& folder, std::uint64_t bytes,
                                          const std::string& content = {},
                                          const std::string& name = {});
  /// An empty read-only disk.
  [[nodiscard]] static LimitedDisk readOnly(const std::string& folder);

  /// Program and arguments to put before a command, so that it runs with the disk.
  [[nodiscard]] const std::vector<std::string>& wrapper() const { return wrapper_; }

  /// Path at which other processes find the folder as the running program sees it.
  [[nodiscard]] std::string seenBy(pid_t program) const;

 private:
  LimitedDisk(std::string folder, std::uint64_t bytes, const std::string& content,
              const std::string& name);

  std::string folder_;
  bool mounted_;
  std::vector<std::string> wrapper_;
};

}  // namespace support
