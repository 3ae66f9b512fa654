#pragma once

#include <unistd.h>

#include <cstdint>
#include <fstream>

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

}  // namespace support
