#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace support {

/// A folder that is a disk of its own for one program: a small one, or one that can only be read.
///
/// A tmpfs in a mount namespace of the program's own. Where this process may not mount, a library
/// that is preloaded into the program answers for the folder as such a disk (ENOSPC, EROFS). Which
/// it is, is tried out; ORVO_TEST_WITHOUT_MOUNTS=1 in the environment forces the library.
///
/// Threads: any.
class LimitedDisk {
 public:
  /// A disk of so many bytes (whole pages) that takes the place of an existing, empty folder.
  /// `content`: a file that the disk holds from the start as `name`; none where `name` is empty.
  [[nodiscard]] static LimitedDisk ofSize(const std::string& folder, std::uint64_t bytes,
                                          const std::string& content = {},
                                          const std::string& name = {});
  /// An empty disk that can only be read.
  [[nodiscard]] static LimitedDisk readOnly(const std::string& folder);

  /// Program and arguments that at last exec what follows them, with the disk.
  [[nodiscard]] const std::vector<std::string>& wrapper() const { return wrapper_; }

  /// Path under which others find what the running program sees in the folder.
  [[nodiscard]] std::string seenBy(pid_t program) const;

 private:
  LimitedDisk(std::string folder, std::uint64_t bytes, const std::string& content,
              const std::string& name);

  std::string folder_;
  bool mounted_;
  std::vector<std::string> wrapper_;
};

}  // namespace support
