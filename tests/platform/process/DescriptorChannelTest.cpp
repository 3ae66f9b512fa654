#include "platform/process/DescriptorChannel.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "support/DescriptorsOnTheirWay.h"

namespace platform {
namespace {

using Waiting = DescriptorChannel::Waiting;

class DescriptorChannelTest : public testing::Test {
 protected:
  void SetUp() override {
    auto ends = DescriptorChannel::connect();
    ASSERT_TRUE(ends);
    std::tie(here_, there_) = *std::move(ends);
  }

  int send(const std::string& text, std::span<const int> descriptors = {}) {
    return here_->send(std::as_bytes(std::span(text)), descriptors);
  }

  std::string received() {
    std::array<std::byte, 64> bytes{};
    last_ = there_->receive(bytes, Waiting::no);
    return {reinterpret_cast<const char*>(bytes.data()), last_.byteCount};
  }

  std::unique_ptr<DescriptorChannel> here_;
  std::unique_ptr<DescriptorChannel> there_;
  DescriptorChannel::Received last_;
};

TEST_F(DescriptorChannelTest, MessagesArriveWholeAndInOrder) {
  EXPECT_EQ(send("one"), 0);
  EXPECT_EQ(send("another"), 0);
  EXPECT_EQ(received(), "one");
  EXPECT_EQ(received(), "another");
}

TEST_F(DescriptorChannelTest, WithoutAMessageItSaysSoAtOnce) {
  EXPECT_EQ(received(), "");
  EXPECT_EQ(last_.error, EAGAIN);
}

TEST_F(DescriptorChannelTest, DescriptorsArriveAsTheirOwnCopies) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  ASSERT_EQ(send("pipe", pipe), 0);
  ::close(pipe[0]);
  ::close(pipe[1]);
  EXPECT_EQ(received(), "pipe");
  ASSERT_EQ(last_.descriptors.size(), 2U);
  EXPECT_EQ(::fcntl(last_.descriptors[0], F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(::write(last_.descriptors[1], "x", 1), 1);
  char byte = 0;
  EXPECT_EQ(::read(last_.descriptors[0], &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
  for (const int descriptor : last_.descriptors) {
    ::close(descriptor);
  }
}

TEST_F(DescriptorChannelTest, SendingNeverWaitsForAnEndThatDoesNotReceive) {
  int error = 0;
  int sent = 0;
  while ((error = send("message")) == 0) {
    ++sent;
  }
  EXPECT_EQ(error, EAGAIN);
  for (int i = 0; i < sent; ++i) {
    EXPECT_EQ(received(), "message");
  }
  EXPECT_EQ(send("again"), 0);
}

TEST_F(DescriptorChannelTest, DescriptorsThatTheSystemDoesNotTakeAreNotForTheOtherEndToMend) {
  const std::array<int, 2> ends{here_->descriptor(), there_->descriptor()};
  int error = 0;
  int sent = 0;
  {
    const support::DescriptorsOnTheirWay few(20);
    while ((error = send("message", ends)) == 0) {
      ++sent;
    }
    EXPECT_EQ(error, ENOBUFS);
  }
  EXPECT_EQ(send("again", ends), 0);
  for (int i = 0; i <= sent; ++i) {
    EXPECT_EQ(received(), i < sent ? "message" : "again");
    for (const int descriptor : last_.descriptors) {
      ::close(descriptor);
    }
  }
}

TEST_F(DescriptorChannelTest, WhenTheOtherEndIsGoneBothCallsSaySo) {
  there_.swap(here_);
  here_.reset();
  EXPECT_EQ(received(), "");
  EXPECT_EQ(last_.error, 0);
  here_.swap(there_);
  EXPECT_EQ(send("message"), EPIPE);
}

}  // namespace
}  // namespace platform
