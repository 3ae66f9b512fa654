#pragma once

#include <string>

namespace support {

/// A new folder, readable by the user alone, that is deleted with its content when the object dies.
/// It is in the system's temporary folder under a short path, since a socket's path has at most 107
/// bytes.
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
