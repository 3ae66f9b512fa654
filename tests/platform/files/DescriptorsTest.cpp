#include "platform/files/Descriptors.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace {

using platform::hasFreeDescriptors;

/// Restores the limit of open files, and closes what the test opened.
class DescriptorsTest : public testing::Test {
 protected:
  DescriptorsTest() { EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0); }
  ~DescriptorsTest() override {
    for (const int descriptor : opened_) {
      ::close(descriptor);
    }
    ::setrlimit(RLIMIT_NOFILE, &before_);
  }

  /// Of this process, whose hard limit stays.
  void limitTo(rlim_t count) {
    rlimit limit = before_;
    limit.rlim_cur = count;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  }

  rlim_t limit() const {
    rlimit now = {};
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &now), 0);
    return now.rlim_cur;
  }

  bool openOne() {
    const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
      opened_.push_back(descriptor);
    }
    return descriptor >= 0;
  }

  rlimit before_ = {};
  std::vector<int> opened_;
};

TEST_F(DescriptorsTest, TheLimitIsRaisedAsFarAsItMayBe) {
  limitTo(64);
  platform::raiseDescriptorLimit();
  EXPECT_EQ(limit(), std::min<rlim_t>(before_.rlim_max, platform::kWantedDescriptors));
}

TEST_F(DescriptorsTest, AHigherLimitStays) {
  if (before_.rlim_max <= platform::kWantedDescriptors) {
    GTEST_SKIP() << "the hard limit is low";
  }
  limitTo(platform::kWantedDescriptors + 1);
  platform::raiseDescriptorLimit();
  EXPECT_EQ(limit(), platform::kWantedDescriptors + 1);
}

TEST_F(DescriptorsTest, ThereAreAsManyAsCanBeOpened) {
  limitTo(100);
  std::size_t left = 0;
  while (hasFreeDescriptors(left + 1)) {
    ++left;
  }
  ASSERT_GT(left, 0U);
  for (std::size_t i = 0; i < left; ++i) {
    EXPECT_TRUE(hasFreeDescriptors(left - i));
    EXPECT_FALSE(hasFreeDescriptors(left - i + 1));
    ASSERT_TRUE(openOne());
  }
  EXPECT_FALSE(hasFreeDescriptors(1));
  EXPECT_TRUE(hasFreeDescriptors(0));
  EXPECT_FALSE(openOne());
}

TEST_F(DescriptorsTest, FreeOnesAboveTheFirstThousandAreFoundToo) {
  limitTo(1100);
  EXPECT_TRUE(hasFreeDescriptors(1030));
  EXPECT_FALSE(hasFreeDescriptors(1100)) << "the standard streams are open";
}

TEST_F(DescriptorsTest, ClosedStandardStreamsAreOccupied) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::close(STDIN_FILENO);
    ::close(STDERR_FILENO);
    platform::occupyStandardStreams();
    const bool written = ::write(STDERR_FILENO, "x", 1) == 1;
    const int next = ::open("/dev/null", O_RDONLY);
    ::_exit(written && next > STDERR_FILENO ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
