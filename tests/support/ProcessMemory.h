#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>

namespace support {

/// Bytes of resident memory of this process; 0 where the system does not report it.
///
/// Threads: any.
inline std::uint64_t residentMemory() {
  std::ifstream file("/proc/self/statm");
  std::uint64_t pages = 0;
  file >> pages >> pages;  // the second number
  return file ? pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) : 0;
}

/// Growth of this process's resident memory since the object's construction, at its peak, so that
/// memory freed meanwhile counts too. Where the system cannot reset the peak, the current growth.
///
/// Threads: any; only one object at a time, since a process has only one peak.
class MemoryGrowth {
 public:
  MemoryGrowth() {
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;  // resets the peak
    knowsHighest_ = file.good();
    before_ = residentMemory();
  }

  /// Bytes.
  [[nodiscard]] std::uint64_t atMost() const {
    const std::uint64_t highest = std::max(residentMemory(), knowsHighest_ ? highestMemory() : 0);
    return highest > before_ ? highest - before_ : 0;
  }

  /// Whether freed memory counts.
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
