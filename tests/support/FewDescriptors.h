#pragma once

#include <cstddef>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "platform/files/Descriptors.h"

namespace support {

/// As long as it lives, this process can open at most so many files more.
///
/// Threads: one; other threads are concerned too.
class FewDescriptors {
 public:
  explicit FewDescriptors(std::size_t left) {
    constexpr rlim_t kLow = 256;  // so that few need to be taken
    ::getrlimit(RLIMIT_NOFILE, &before_);
    rlimit low = before_;
    low.rlim_cur = kLow;
    ::setrlimit(RLIMIT_NOFILE, &low);
    while (platform::hasFreeDescriptors(left + 1)) {
      taken_.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
  }
  ~FewDescriptors() {
    for (const int descriptor : taken_) {
      ::close(descriptor);
    }
    ::setrlimit(RLIMIT_NOFILE, &before_);
  }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  rlimit before_ = {};
  std::vector<int> taken_;
};

}  // namespace support
