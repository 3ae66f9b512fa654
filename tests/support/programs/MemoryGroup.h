#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace support {

/// A control group whose memory can be limited: the system kills a program in it that goes on
/// taking memory.
///
/// Threads: any one at a time.
class MemoryGroup {
 public:
  /// Null where this process may not make one.
  [[nodiscard]] static std::unique_ptr<MemoryGroup> create();
  /// Removes it once its processes have ended.
  ~MemoryGroup();
  MemoryGroup(const MemoryGroup&) = delete;
  MemoryGroup& operator=(const MemoryGroup&) = delete;

  /// Program and arguments to put before a command, so that it runs in the group, as what it starts
  /// does.
  [[nodiscard]] std::vector<std::string> wrapper() const;
  /// Leaves the group so many bytes beyond what it must have now. False on failure.
  [[nodiscard]] bool limitTo(std::uint64_t furtherBytes) const;

 private:
  MemoryGroup(std::string path, std::string limit, std::string usage)
      : path_(std::move(path)), limit_(std::move(limit)), usage_(std::move(usage)) {}

  const std::string path_;
  const std::string limit_;  // names of the files that hold the limit and the use
  const std::string usage_;
};

}  // namespace support
