#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

/// A file that a person can drop on a window and that is not what its name says, or not all of it.
struct BadFile {
  static constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max();

  std::string name;  ///< of the test
  std::string file;
  std::function<void(const std::string& path)> make;
  std::uint64_t frames = 0;  ///< that are delivered; 0: none, kAnyNumber: one or more
  std::string told = {};     ///< part of the one alert; empty: none is shown
};

std::ostream& operator<<(std::ostream& stream, const BadFile& each);

/// All that there are, some good ones under odd names among them.
[[nodiscard]] std::vector<BadFile> badFiles();
