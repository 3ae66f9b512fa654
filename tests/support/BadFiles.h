#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

/// A file that a user may drop on a window although its content does not fully match its name.
struct BadFile {
  static constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max();

  std::string name;  ///< of the test
  std::string file;
  std::function<void(const std::string& path)> make;
  std::uint64_t frames = 0;  ///< delivered; 0 for none, kAnyNumber for one or more
  std::string told = {};     ///< part of the only alert; empty for no alert
};

std::ostream& operator<<(std::ostream& stream, const BadFile& each);

/// All cases, including some good files with odd names.
[[nodiscard]] std::vector<BadFile> badFiles();
