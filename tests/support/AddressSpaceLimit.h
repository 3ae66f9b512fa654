#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <stdexcept>

namespace support {

/// While it exists, this process gets at most so many more bytes of address space; further
/// allocations fail as if memory had run out. Not for sanitizer builds, which abort then. An
/// allocation that must fail needs at least 64 MiB: a smaller one may fit into memory that the
/// process already has.
///
/// Threads: main.
class AddressSpaceLimit {
 public:
  explicit AddressSpaceLimit(std::uint64_t moreBytes) {
    if (::getrlimit(RLIMIT_AS, &before_) != 0) {
      throw std::runtime_error("getrlimit");
    }
    rlimit limited = before_;
    limited.rlim_cur = bytesInUse() + moreBytes;
    if (::setrlimit(RLIMIT_AS, &limited) != 0) {
      throw std::runtime_error("setrlimit");
    }
  }
  ~AddressSpaceLimit() { ::setrlimit(RLIMIT_AS, &before_); }
  AddressSpaceLimit(const AddressSpaceLimit&) = delete;
  AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;

 private:
  static rlim_t bytesInUse() {
    std::ifstream file("/proc/self/statm");
    rlim_t pages = 0;
    if (!(file >> pages)) {
      throw std::runtime_error("/proc/self/statm");
    }
    return pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
  }

  rlimit before_ = {};
};

}  // namespace support
