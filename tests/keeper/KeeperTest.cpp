#include "keeper/Keeper.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <span>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

#include "keeper/KeptRecordings.h"
#include "support/ClosedFolder.h"
#include "support/Eventually.h"
#include "support/FewDescriptors.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

using platform::DescriptorChannel;
using support::editedBuffer;
using support::pattern;
using support::recoveredNames;
using support::write;
using Kind = KeeperMessage::Kind;

class KeeperTest : public testing::Test {
 protected:
  KeeperTest() {
    auto [own, other] = *DescriptorChannel::connect();
    program_ = std::move(own);
    keepersEnd_ = other->descriptor();
    keeper_ = std::make_unique<Keeper>(std::move(other), data_.path());
  }

  void send(const KeeperMessage& message, std::span<const int> descriptors = {}) {
    EXPECT_EQ(program_->send(std::as_bytes(std::span(&message, 1)), descriptors), 0);
  }

  /// An edited recording of a document.
  std::shared_ptr<OVBlockBuffer> keep(std::uint64_t document) {
    auto buffer = editedBuffer();
    write(*buffer, pattern(800, static_cast<unsigned>(document)), 0);
    const std::array descriptors{buffer->fileDescriptor(), buffer->journal()->descriptor()};
    send({.kind = Kind::keep, .document = document}, descriptors);
    return buffer;
  }

  void endProgram() {
    program_.reset();
    keeper_->listen();
  }

  support::TemporaryFolder data_;
  std::unique_ptr<DescriptorChannel> program_;
  int keepersEnd_ = -1;
  std::unique_ptr<Keeper> keeper_;
};

TEST_F(KeeperTest, WritesEveryDocumentThatIsLeftWhenTheProgramHasEnded) {
  keep(1);
  keep(2);
  keep(3);
  send({.kind = Kind::letGo, .document = 2});
  endProgram();
  EXPECT_EQ(keeper_->size(), 2U);
  EXPECT_TRUE(keeper_->recover());
  EXPECT_EQ(recoveredNames(data_.path()).size(), 2U);
  EXPECT_EQ(keeper_->size(), 0U);
}

TEST_F(KeeperTest, MakesNoFolderWhenThereIsNothingToWrite) {
  keep(1);
  send({.kind = Kind::letGo, .document = 1});
  endProgram();
  EXPECT_TRUE(keeper_->recover());
  EXPECT_FALSE(std::filesystem::exists(data_.file("orvo")));
}

TEST_F(KeeperTest, LetsGoOfDescriptorsWithTheirDocument) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  const std::array descriptors{pipe[1], pipe[1]};
  send({.kind = Kind::keep, .document = 1}, descriptors);
  ::close(pipe[1]);
  send({.kind = Kind::letGo, .document = 1});
  endProgram();
  char byte = 0;
  EXPECT_EQ(::read(pipe[0], &byte, 1), 0) << "the pipe's other end is still open";
  ::close(pipe[0]);
}

TEST_F(KeeperTest, MessagesItDoesNotKnowChangeNothing) {
  keep(1);
  send({.version = 99, .kind = Kind::letGo, .document = 1});
  send({.kind = static_cast<Kind>(77), .document = 1});
  send({.kind = Kind::keep, .document = 5});  // without descriptors
  const std::byte byte{};
  EXPECT_EQ(program_->send(std::span(&byte, 1), {}), 0);
  endProgram();
  EXPECT_EQ(keeper_->size(), 1U);
}

TEST_F(KeeperTest, ErrorOfTheConnectionIsNotTakenForTheEndOfTheProgram) {
  // Each look that finds no message fails.
  ASSERT_EQ(::fcntl(keepersEnd_, F_SETFL, O_NONBLOCK), 0);
  std::atomic<pid_t> listener = 0;
  std::atomic<bool> hasEnded = false;
  std::thread listening([&] {
    listener = ::gettid();
    keeper_->listen();
    hasEnded = true;
  });
  EXPECT_TRUE(support::eventually(
      [&] { return hasEnded || (listener > 0 && support::processState(listener) == 'S'); }));
  EXPECT_FALSE(hasEnded);
  keep(1);
  program_.reset();
  listening.join();
  EXPECT_EQ(keeper_->size(), 1U);
}

TEST_F(KeeperTest, FolderThatCannotBeOpenedJustNowIsWaitedFor) {
  keep(1);
  endProgram();
  {
    const support::FewDescriptors none(0);
    EXPECT_FALSE(keeper_->recover());
  }
  EXPECT_EQ(keeper_->size(), 1U);
  EXPECT_TRUE(keeper_->recover());
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

TEST_F(KeeperTest, FolderThatTheUserMustOpenFirstIsWaitedFor) {
  keep(1);
  endProgram();
  {
    const support::ClosedFolder closed(data_.path());
    EXPECT_FALSE(keeper_->recover());
  }
  EXPECT_TRUE(keeper_->recover());
  EXPECT_EQ(recoveredNames(data_.path()).size(), 1U);
}

TEST_F(KeeperTest, FolderThatCannotBeUsedIsNotWaitedFor) {
  keep(1);
  endProgram();
  std::filesystem::create_symlink("/nowhere", data_.file("orvo"));
  EXPECT_TRUE(keeper_->recover());
}

}  // namespace
