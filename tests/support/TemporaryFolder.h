#pragma once

#include <string>

namespace support {

/// A new folder, readable by the user alone, that is deleted with all it holds when the object
/// dies. It lies in the system's temporary folder under a short path, since a socket's path may
/// have 107 bytes at most.
///
/// Threads: any one at a time.
class TemporaryFolder {
 public:
  TemporaryFolder();  ///< throws std::system_error
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  /// Makes a folder inside, readable by the user alone, and returns its path.
  std::string makeFolder(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace support
