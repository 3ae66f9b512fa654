#include "platform/files/AbsolutePath.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace platform {

std::string absolutePathOf(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) {
    return {};
  }
  std::error_code error;
  fs::path absolute = fs::absolute(path, error);
  if (error) {
    return {};
  }
  if (std::find(absolute.begin(), absolute.end(), "..") != absolute.end()) {
    const fs::path folder = fs::weakly_canonical(absolute.parent_path(), error);
    if (!error) {
      absolute = folder / absolute.filename();
    }
  }
  return absolute.lexically_normal().string();
}

}  // namespace platform
