#include "platform/mainloop/FailedWriteSignals.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace {

/// Restores the signals' former effects.
class FailedWriteSignalsTest : public testing::Test {
 protected:
  FailedWriteSignalsTest() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      struct sigaction standard = {};
      standard.sa_handler = SIG_DFL;
      ::sigaction(kSignals[i], &standard, &before_[i]);
    }
  }
  ~FailedWriteSignalsTest() override {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      ::sigaction(kSignals[i], &before_[i], nullptr);
    }
  }

  static constexpr std::array kSignals{SIGPIPE, SIGXFSZ};
  std::array<struct sigaction, kSignals.size()> before_{};
};

TEST_F(FailedWriteSignalsTest, AWriteThatNobodyReadsFails) {
  platform::failWritesWithoutSignals();
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  ::close(pipe[0]);
  EXPECT_EQ(::write(pipe[1], "x", 1), -1);
  EXPECT_EQ(errno, EPIPE);
  ::close(pipe[1]);
}

TEST_F(FailedWriteSignalsTest, AProgramThatIsStartedEndsOfSuchAWriteAgain) {
  platform::failWritesWithoutSignals();
  // Without a reader, the shell itself is ended by its write.
  std::string shell = "sh";
  std::string option = "-c";
  std::string command = "kill -PIPE $$; exit 3";
  std::array<char*, 4> arguments{shell.data(), option.data(), command.data(), nullptr};
  pid_t child = 0;
  ASSERT_EQ(::posix_spawnp(&child, "sh", nullptr, nullptr, arguments.data(), environ), 0);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status;
}

TEST_F(FailedWriteSignalsTest, ASignalThatWasIgnoredStaysIgnored) {
  std::signal(SIGPIPE, SIG_IGN);
  platform::failWritesWithoutSignals();
  struct sigaction action = {};
  ASSERT_EQ(::sigaction(SIGPIPE, nullptr, &action), 0);
  EXPECT_EQ(action.sa_handler, SIG_IGN);
}

}  // namespace
