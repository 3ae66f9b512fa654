#include "platform/process/SpawnedProgram.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <unistd.h>

#include "platform/process/DescriptorChannel.h"
#include "support/Eventually.h"

namespace platform {
namespace {

TEST(SpawnedProgramTest, RunsInASessionOfItsOwnAndIsSeenToEnd) {
  auto ends = DescriptorChannel::connect();
  ASSERT_TRUE(ends);
  auto program = SpawnedProgram::start("/usr/bin/yes", ends->second->descriptor());
  ASSERT_TRUE(program);
  EXPECT_FALSE((*program)->hasEnded());
  EXPECT_EQ(::getsid((*program)->number()), (*program)->number());
  ::kill((*program)->number(), SIGKILL);
  EXPECT_TRUE(support::eventually([&] { return (*program)->hasEnded(); }));
}

TEST(SpawnedProgramTest, ProgramThatIsStoppedCanBeKilled) {
  auto ends = DescriptorChannel::connect();
  ASSERT_TRUE(ends);
  auto program = SpawnedProgram::start("/usr/bin/yes", ends->second->descriptor());
  ASSERT_TRUE(program);
  ASSERT_EQ(::kill((*program)->number(), SIGSTOP), 0);
  (*program)->kill();
  EXPECT_TRUE(support::eventually([&] { return (*program)->hasEnded(); }));
  (*program)->kill();  // nothing
}

TEST(SpawnedProgramTest, InheritsTheDescriptorAloneOfThisProgramsOwn) {
  auto ends = DescriptorChannel::connect();
  ASSERT_TRUE(ends);
  // It has no input: it ends at once, and with it the connection.
  auto program = SpawnedProgram::start("/bin/cat", ends->second->descriptor());
  ASSERT_TRUE(program);
  ends->second.reset();
  std::byte byte{};
  const auto received =
      ends->first->receive(std::span(&byte, 1), DescriptorChannel::Waiting::untilItCame);
  EXPECT_EQ(received.byteCount, 0U);
}

TEST(SpawnedProgramTest, ProgramThatIsNotThereIsAnError) {
  auto ends = DescriptorChannel::connect();
  ASSERT_TRUE(ends);
  const auto program = SpawnedProgram::start("/nowhere/program", ends->second->descriptor());
  EXPECT_FALSE(program);
  EXPECT_EQ(program.error(), ENOENT);
}

}  // namespace
}  // namespace platform
