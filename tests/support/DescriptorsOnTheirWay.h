#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace support {

/// As long as it lives, this process may have no more descriptors on their way to other processes
/// than `most`, root or not; those that are open stay usable, and no further ones can be opened
/// beyond as many.
///
/// Threads: one; limit and rights are those of the process.
class DescriptorsOnTheirWay {
 public:
  explicit DescriptorsOnTheirWay(rlim_t most) : isRoot_(::geteuid() == 0) {
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
    rlimit low = before_;
    low.rlim_cur = most;
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
    constexpr uid_t kNobody = 65534;  // root has no such limit
    EXPECT_TRUE(!isRoot_ || ::seteuid(kNobody) == 0);
  }
  ~DescriptorsOnTheirWay() {
    EXPECT_TRUE(!isRoot_ || ::seteuid(0) == 0);
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before_), 0);
  }
  DescriptorsOnTheirWay(const DescriptorsOnTheirWay&) = delete;
  DescriptorsOnTheirWay& operator=(const DescriptorsOnTheirWay&) = delete;

 private:
  const bool isRoot_;
  rlimit before_{};
};

}  // namespace support
