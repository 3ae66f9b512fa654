#pragma once

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/files/Descriptors.h"

namespace support {

/// As long as it lives, this process can open so many files more. The test fails where that cannot
/// be arranged.
///
/// Threads: one; other threads are concerned too.
class FewDescriptors {
 public:
  explicit FewDescriptors(std::size_t left) {
    constexpr rlim_t kLow = 256;  // so that few need to be taken
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
    rlimit low = before_;
    low.rlim_cur = kLow;
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
    EXPECT_TRUE(platform::hasFreeDescriptors(left)) << "too many are open already";
    while (platform::hasFreeDescriptors(left + 1)) {
      const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
      if (descriptor < 0) {
        ADD_FAILURE() << "more should be left: " << std::strerror(errno);
        break;
      }
      taken_.push_back(descriptor);
    }
  }
  ~FewDescriptors() {
    for (const int descriptor : taken_) {
      EXPECT_EQ(::close(descriptor), 0);
    }
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before_), 0);
  }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  rlimit before_ = {};
  std::vector<int> taken_;
};

}  // namespace support
