#pragma once

#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace support {

/// As long as it lives, this process may not change a folder of its own that others may not enter.
/// Files that are open stay usable. The test fails where the folder cannot be closed or opened
/// again.
///
/// Threads: one; the rights are those of the process.
class ClosedFolder {
 public:
  explicit ClosedFolder(const std::string& path) : path_(path), isRoot_(::geteuid() == 0) {
    // Root may change a folder whatever its rights are.
    constexpr uid_t kNobody = 65534;
    EXPECT_EQ(isRoot_ ? ::seteuid(kNobody) : ::chmod(path.c_str(), 0500), 0);
    EXPECT_FALSE(isWritable()) << path;
  }
  ~ClosedFolder() {
    EXPECT_EQ(isRoot_ ? ::seteuid(0) : ::chmod(path_.c_str(), 0700), 0);
    EXPECT_TRUE(isWritable()) << path_;
  }
  ClosedFolder(const ClosedFolder&) = delete;
  ClosedFolder& operator=(const ClosedFolder&) = delete;

 private:
  [[nodiscard]] bool isWritable() const {
    return ::faccessat(AT_FDCWD, path_.c_str(), W_OK, AT_EACCESS) == 0;
  }

  const std::string path_;
  const bool isRoot_;
};

}  // namespace support
