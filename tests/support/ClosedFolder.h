#pragma once

#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace support {

/// As long as it lives, this process may not change a folder of its own that others may not enter.
/// Files that are open stay usable.
///
/// Threads: one; the rights are those of the process.
class ClosedFolder {
 public:
  explicit ClosedFolder(const std::string& path) : path_(path), isRoot_(::geteuid() == 0) {
    // Root may change a folder whatever its rights are.
    constexpr uid_t kNobody = 65534;
    isClosed_ = (isRoot_ ? ::seteuid(kNobody) : ::chmod(path.c_str(), 0500)) == 0;
  }
  ~ClosedFolder() { isClosed_ = (isRoot_ ? ::seteuid(0) : ::chmod(path_.c_str(), 0700)) != 0; }
  ClosedFolder(const ClosedFolder&) = delete;
  ClosedFolder& operator=(const ClosedFolder&) = delete;

  [[nodiscard]] bool isClosed() const { return isClosed_; }

 private:
  const std::string path_;
  const bool isRoot_;
  bool isClosed_ = false;
};

}  // namespace support
