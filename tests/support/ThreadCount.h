#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace support {

/// Number of threads in this process now.
[[nodiscard]] inline std::size_t threadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

}  // namespace support
