// The keeper as a program, with an environment of its own.

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

#include "keeper/KeptRecordings.h"
#include "platform/process/DescriptorChannel.h"
#include "recovery/KeeperMessage.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"
#include "support/programs/LimitedDisk.h"

namespace {

using namespace support;

class KeeperProgramTest : public testing::Test {
 protected:
  /// Starts the keeper, which keeps `buffer_` from then on.
  void start(const std::vector<std::string>& wrapper, const Environment& environment) {
    auto ends = platform::DescriptorChannel::connect();
    ASSERT_TRUE(ends);
    program_ = std::move(ends->first);
    // Programs that are started inherit this one; a shell gives it the number that the keeper has.
    const int inherited = ::dup(ends->second->descriptor());
    std::vector<std::string> arguments = wrapper;
    for (const std::string& word :
         {std::string("bash"), std::string("-c"), "exec \"$0\" 3<&" + std::to_string(inherited),
          std::string(ORVO_KEEPER)}) {
      arguments.push_back(word);
    }
    std::string error;
    keeper_ = ChildProcess::start(arguments, with(cleanEnvironment(), environment), error);
    ::close(inherited);
    ASSERT_NE(keeper_, nullptr) << error;
    const KeeperMessage message{.document = 1};
    const std::array descriptors{buffer_->fileDescriptor(), buffer_->journal()->descriptor()};
    ASSERT_EQ(program_->send(std::as_bytes(std::span(&message, 1)), descriptors), 0);
  }

  TemporaryFolder folder_;
  std::shared_ptr<OVBlockBuffer> buffer_ = editedBuffer();
  std::unique_ptr<platform::DescriptorChannel> program_;
  std::unique_ptr<ChildProcess> keeper_;
};

TEST_F(KeeperProgramTest, WritesBelowTheHomeDirectoryWithoutADataDirectory) {
  write(*buffer_, pattern(800, 1), 0);
  ASSERT_NO_FATAL_FAILURE(start({}, {{"HOME", folder_.path()}, {"TZ", "UTC"}}));
  program_.reset();
  EXPECT_EQ(keeper_->waitForExit(), (ExitStatus{0, 0}));
  EXPECT_EQ(recoveredNames(folder_.file(".local/share")),
            std::vector<std::string>{"Orvo recording 2001-09-09 01.46.40.caf"});
}

TEST_F(KeeperProgramTest, RelativeDataDirectoryIsNotUsed) {
  write(*buffer_, pattern(800, 1), 0);
  ASSERT_NO_FATAL_FAILURE(start({}, {{"XDG_DATA_HOME", "data"}, {"HOME", folder_.path()}}));
  program_.reset();
  EXPECT_EQ(keeper_->waitForExit(), (ExitStatus{0, 0}));
  EXPECT_EQ(recoveredNames(folder_.file(".local/share")).size(), 1U);
}

TEST_F(KeeperProgramTest, FullDiskIsWaitedFor) {
  constexpr std::uint64_t kDisk = 4 << 20;
  write(*buffer_, pattern(3 << 20, 1), 0);
  const std::string data = folder_.makeFolder("data");
  ASSERT_TRUE(std::ofstream(folder_.file("filler")) << std::string(2 << 20, 'x'));
  const LimitedDisk disk = LimitedDisk::ofSize(data, kDisk, folder_.file("filler"), "filler");
  ASSERT_NO_FATAL_FAILURE(start(disk.wrapper(), {{"XDG_DATA_HOME", data}, {"TZ", "UTC"}}));
  program_.reset();
  std::string seen;
  ASSERT_TRUE(eventually([&] {
    seen = disk.seenBy(keeper_->pid());
    return !recoveredNames(seen).empty();
  }));
  EXPECT_EQ(recoveredNames(seen),
            std::vector<std::string>{"Orvo recording 2001-09-09 01.46.40.caf.part"});
  EXPECT_TRUE(keeper_->isRunning());
  const int folder = ::open(seen.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);  // survives it
  ASSERT_GE(folder, 0);
  ASSERT_EQ(::unlinkat(folder, "filler", 0), 0);
  EXPECT_EQ(keeper_->waitForExit(), (ExitStatus{0, 0}));
  const std::string after = "/dev/fd/" + std::to_string(folder);
  EXPECT_EQ(recoveredNames(after),
            std::vector<std::string>{"Orvo recording 2001-09-09 01.46.40.caf"});
  EXPECT_TRUE(cafAudio(recoveredPath(after) + "/Orvo recording 2001-09-09 01.46.40.caf") ==
              wholeRecording(*buffer_));
  ::close(folder);
}

TEST_F(KeeperProgramTest, EndsByATerminationSignalOnlyWhileItWaits) {
  write(*buffer_, pattern(3 << 20, 1), 0);
  const std::string data = folder_.makeFolder("data");
  const LimitedDisk disk = LimitedDisk::ofSize(data, 1 << 20);
  ASSERT_NO_FATAL_FAILURE(start(disk.wrapper(), {{"XDG_DATA_HOME", data}}));
  program_.reset();
  ASSERT_TRUE(eventually([&] {
    keeper_->signal(SIGTERM);
    return !keeper_->isRunning();
  }));
}

}  // namespace
