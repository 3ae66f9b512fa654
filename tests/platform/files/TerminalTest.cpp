#include "platform/files/Terminal.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A terminal of its own.
class TerminalTest : public testing::Test {
 protected:
  void SetUp() override {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(master_, 0);
    ASSERT_EQ(::grantpt(master_), 0);
    ASSERT_EQ(::unlockpt(master_), 0);
    const int user = ::open(::ptsname(master_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(user, 0);
    terminal_.reset(::fdopen(user, "w"));
    ASSERT_NE(terminal_, nullptr);
  }
  ~TerminalTest() override {
    terminal_.reset();
    ::close(master_);
  }

  void setColumns(unsigned short columns) const {
    const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    ASSERT_EQ(::ioctl(master_, TIOCSWINSZ, &size), 0);
  }

  int master_ = -1;
  Stream terminal_{nullptr, &std::fclose};
};

TEST_F(TerminalTest, SaysItsColumnsAsTheyAreNow) {
  for (const int columns : {50, 120}) {
    setColumns(static_cast<unsigned short>(columns));
    EXPECT_EQ(platform::terminalColumns(terminal_.get()), columns);
  }
}

TEST_F(TerminalTest, OneThatDoesNotKnowItsColumnsSaysNothing) {
  setColumns(0);
  EXPECT_EQ(platform::terminalColumns(terminal_.get()), std::nullopt);
}

TEST_F(TerminalTest, AFileHasNoColumns) {
  const Stream file(std::fopen("/dev/null", "we"), &std::fclose);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(platform::terminalColumns(file.get()), std::nullopt);
}

}  // namespace
