// The keeper as a program, with an environment of its own.

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "keeper/FullDisk.h"
#include "keeper/KeptRecordings.h"
#include "platform/files/TemporaryFiles.h"
#include "platform/process/DescriptorChannel.h"
#include "recovery/KeeperMessage.h"
#include "support/RecoveredFolder.h"
#include "support/Sanitizers.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"
#include "support/programs/LimitedDisk.h"

namespace {

using namespace support;

class KeeperProgramTest : public testing::Test {
 protected:
  /// Starts the keeper, which keeps `buffer_` from then on.
  void start(const std::vector<std::string>& wrapper, const Environment& environment) {
    ASSERT_NO_FATAL_FAILURE(startKeeper(wrapper, environment));
    keep();
  }

  void keep() {
    const KeeperMessage message{.document = 1};
    const std::array descriptors{buffer_->fileDescriptor(), buffer_->journal()->descriptor()};
    ASSERT_EQ(program_->send(std::as_bytes(std::span(&message, 1)), descriptors), 0);
  }

  void startKeeper(const std::vector<std::string>& wrapper, const Environment& environment) {
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
  }

  /// Whether the wrapper has become the keeper.
  [[nodiscard]] bool isKeeper() const {
    std::ifstream file("/proc/" + std::to_string(keeper_->pid()) + "/comm");
    std::string name;
    return std::getline(file, name) && name == "orvo-keeper";
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

class KeeperProgramMemoryTest : public KeeperProgramTest {
 protected:
  /// Recovers the buffer with so much memory of its own, stacks included.
  void recoverWithin(std::uint64_t bytes) {
    ASSERT_NO_FATAL_FAILURE(start({"prlimit", "--data=" + std::to_string(bytes)},
                                  {{"XDG_DATA_HOME", folder_.path()}, {"TZ", "UTC"}}));
    program_.reset();
    EXPECT_EQ(keeper_->waitForExit(), (ExitStatus{0, 0}));
    const auto names = recoveredNames(folder_.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_GT(std::filesystem::file_size(folder_.file("orvo/recovered/" + names[0])),
              buffer_->bufferFillSize());
  }
};

TEST_F(KeeperProgramMemoryTest, LongRecordingTakesNoMoreThanAShortOne) {
  if (kAnySanitizer) {
    GTEST_SKIP() << "sanitizers reserve more than any limit allows";
  }
  const Bytes second = pattern(44'100 * 8, 3);
  for (std::uint64_t i = 0; i < 200; ++i) {
    write(*buffer_, second, i * second.size());
  }
  recoverWithin(std::uint64_t{4} << 20);
}

TEST_F(KeeperProgramMemoryTest, OneOfManyPiecesTakesALittleForEach) {
  if (kAnySanitizer) {
    GTEST_SKIP() << "sanitizers reserve more than any limit allows";
  }
  const Bytes piece = pattern(64, 3);
  for (std::uint64_t parity = 0; parity < 2; ++parity) {
    for (std::uint64_t i = parity; i < 100'000; i += 2) {
      write(*buffer_, piece, i * piece.size());
    }
  }
  recoverWithin(std::uint64_t{24} << 20);
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
  ASSERT_TRUE(eventually([&] { return isKeeper(); }));
  const std::string seen = disk.seenBy(keeper_->pid());
  if (seen == data) {
    program_.reset();
    GTEST_SKIP() << "nothing can be mounted here, so that it is the temporary file's disk";
  }
  program_.reset();
  ASSERT_TRUE(eventually([&] { return !recoveredNames(seen).empty(); }));
  EXPECT_EQ(recoveredNames(seen),
            std::vector<std::string>{"Orvo recording 2001-09-09 01.46.40.caf.part"});
  EXPECT_TRUE(keeper_->isRunning());
  // The whole length, and no room.
  const std::string part = recoveredPath(seen) + "/" + recoveredNames(seen).front();
  struct stat status = {};
  EXPECT_TRUE(eventually([&] {
    return ::stat(part.c_str(), &status) == 0 && status.st_size > (3 << 20) &&
           status.st_blocks == 0;
  }));
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

/// A full disk that holds the temporary file as well as the recovered folder.
class KeeperOnItsDiskTest : public KeeperProgramTest {
 protected:
  static constexpr std::uint64_t kDisk = 8 << 20;

  void SetUp() override {
    const std::string data = folder_.makeFolder("data");
    const LimitedDisk disk = LimitedDisk::ofSize(data, kDisk);
    ASSERT_NO_FATAL_FAILURE(startKeeper(disk.wrapper(), {{"XDG_DATA_HOME", data}, {"TZ", "UTC"}}));
    ASSERT_TRUE(eventually([&] { return isKeeper(); }));
    const std::string seen = disk.seenBy(keeper_->pid());
    if (seen == data) {
      GTEST_SKIP() << "nothing can be mounted here";
    }
    disk_ = ::open(seen.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);  // survives the keeper
    ASSERT_GE(disk_, 0);
    buffer_.reset();
    const platform::Installed<platform::TemporaryFiles>::Scope installed(
        std::make_shared<TemporaryFilesIn>(seen));
    buffer_ = editedBuffer();
    ASSERT_NE(buffer_, nullptr);
  }
  ~KeeperOnItsDiskTest() override { ::close(disk_); }

  void expectRecovered() {
    const Bytes whole = wholeRecording(*buffer_);
    ASSERT_NO_FATAL_FAILURE(keep());
    program_.reset();
    expectWritten(whole);
  }

  /// The keeper ends, and has written this.
  void expectWritten(const Bytes& whole) {
    ASSERT_EQ(keeper_->waitForExit(), (ExitStatus{0, 0}));
    const std::string name = "Orvo recording 2001-09-09 01.46.40.caf";
    const std::string path = "/dev/fd/" + std::to_string(disk_);
    EXPECT_EQ(recoveredNames(path), std::vector<std::string>{name});
    EXPECT_TRUE(cafAudio(recoveredPath(path) + "/" + name) == whole);
  }

  /// Bytes that the only recovered file takes on the disk.
  [[nodiscard]] std::uint64_t writtenBytes() const {
    const std::string path = "/dev/fd/" + std::to_string(disk_);
    const auto names = recoveredNames(path);
    struct stat status = {};
    const bool isThere =
        names.size() == 1 && ::stat((recoveredPath(path) + "/" + names[0]).c_str(), &status) == 0;
    return isThere ? static_cast<std::uint64_t>(status.st_blocks) * 512 : 0;
  }

  int disk_ = -1;
};

TEST_F(KeeperOnItsDiskTest, RecordingThatFillsTheDiskIsMoved) {
  write(*buffer_, pattern(6 << 20, 1), 0);
  ASSERT_TRUE(fillBut(32 << 10, disk_));  // the folders and their names
  expectRecovered();
}

TEST_F(KeeperOnItsDiskTest, EditedRecordingIsMovedThoughItsPiecesEndAnywhere) {
  write(*buffer_, pattern(5 << 20, 1), 0);
  for (unsigned i = 0; i < 40; ++i) {
    write(*buffer_, pattern(10'008, i), 100'000ULL * (i + 1));
  }
  buffer_->cutoffBufferBeforePosition(1001);
  ASSERT_TRUE(fillBut(32 << 10, disk_));
  expectRecovered();
}

TEST_F(KeeperOnItsDiskTest, WhatTheRecordingDoesNotUseMakesRoomForACopy) {
  write(*buffer_, pattern(5 << 20, 1), 0);
  write(*buffer_, pattern(2 << 20, 2), 0);
  buffer_->cutoffBufferAfterPosition((2 << 20) / 8);
  ASSERT_TRUE(fillBut(32 << 10, disk_));
  expectRecovered();
}

TEST_F(KeeperOnItsDiskTest, TerminationSignalDoesNotEndItWhileItMoves) {
  constexpr std::uint64_t kBytes = 6 << 20;
  write(*buffer_, pattern(kBytes, 1), 0);
  ASSERT_TRUE(fillBut(0, disk_));  // the last stretch waits for room for the header
  const Bytes whole = wholeRecording(*buffer_);
  ASSERT_NO_FATAL_FAILURE(keep());
  program_.reset();
  ASSERT_TRUE(eventually([&] {
    return writtenBytes() >= kBytes - (256 << 10) && processState(keeper_->pid()) == 'S';
  }));
  keeper_->signal(SIGTERM);
  ASSERT_EQ(::unlinkat(disk_, "filler", 0), 0);
  expectWritten(whole);
}

TEST_F(KeeperOnItsDiskTest, KilledWhileItMovesLeavesWhatItHadWritten) {
  constexpr std::uint64_t kBytes = 6 << 20;
  constexpr std::uint64_t kStretch = 256 << 10;  // read at a time
  write(*buffer_, pattern(kBytes, 1), 0);
  ASSERT_TRUE(fillBut(0, disk_));  // the last stretch waits for room for the header
  const Bytes whole = wholeRecording(*buffer_);
  ASSERT_NO_FATAL_FAILURE(keep());
  program_.reset();
  ASSERT_TRUE(eventually(
      [&] { return writtenBytes() >= kBytes - kStretch && processState(keeper_->pid()) == 'S'; }));
  keeper_->signal(SIGKILL);
  ASSERT_EQ(keeper_->waitForExit(), (ExitStatus{0, SIGKILL}));
  const std::string name = "Orvo recording 2001-09-09 01.46.40.caf.part";
  const std::string folder = "/dev/fd/" + std::to_string(disk_);
  ASSERT_EQ(recoveredNames(folder), std::vector<std::string>{name});
  const std::string path = recoveredPath(folder) + "/" + name;
  const Bytes found = cafAudio(path);
  ASSERT_EQ(found.size(), whole.size()) << "its header says how long it is";
  EXPECT_TRUE(std::equal(found.begin(), found.end() - static_cast<std::ptrdiff_t>(kStretch),
                         whole.begin()));
  EXPECT_TRUE(FileLock(path).isHeld()) << "it would not be offered";
}

}  // namespace
