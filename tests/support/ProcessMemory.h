#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>

namespace support {

/// Bytes of memory that this process has resident now; 0 where the system does not tell.
///
/// Threads: any.
inline std::uint64_t residentMemory() {
  std::ifstream file("/proc/self/statm");
  std::uint64_t pages = 0;
  file >> pages >> pages;  // the second number
  return file ? pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) : 0;
}

/// By how much this process's resident memory exceeds what it was when the object was made: at its
/// highest meanwhile, so that what was given back counts, too. Where the system does not let the
/// highest be forgotten, by how much it exceeds it now.
///
/// Threads: any; one at a time in the process, since there is only one highest.
class MemoryGrowth {
 public:
  MemoryGrowth() {
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;  // the highest is now what there is
    knowsHighest_ = file.good();
    before_ = residentMemory();
  }

  /// Bytes.
  [[nodiscard]] std::uint64_t atMost() const {
    const std::uint64_t highest = std::max(residentMemory(), knowsHighest_ ? highestMemory() : 0);
    return highest > before_ ? highest - before_ : 0;
  }

  /// Whether what was given back counts.
  [[nodiscard]] bool knowsHighest() const { return knowsHighest_; }

 private:
  static std::uint64_t highestMemory() {
    std::ifstream file("/proc/self/status");
    std::uint64_t kilobytes = 0;
    for (std::string word; file >> word;) {
      if (word == "VmHWM:") {
        file >> kilobytes;
        break;
      }
    }
    return kilobytes * 1024;
  }

  bool knowsHighest_ = false;
  std::uint64_t before_ = 0;
};

}  // namespace support
