// Recordings that fill the disk on which they are recovered, when something else fails as well.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "keeper/FullDisk.h"
#include "keeper/Keeper.h"
#include "keeper/KeptRecording.h"
#include "keeper/KeptRecordings.h"
#include "support/FileSizeLimit.h"
#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"
#include "support/programs/LimitedDisk.h"

namespace {

using namespace support;

constexpr std::uint64_t kDisk = 8 << 20;
constexpr std::uint64_t kBytes = 6 << 20;  // of the recording

dev_t diskOf(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

class MovedRecordingTest : public testing::Test {
 protected:
  void SetUp() override {
    const std::string folder = folder_.makeFolder("data");
    const LimitedDisk disk = LimitedDisk::ofSize(folder, kDisk);
    auto command = disk.wrapper();
    command.insert(command.end(), {"sleep", "infinity"});
    std::string error;
    holder_ = ChildProcess::start(command, cleanEnvironment(), error);
    ASSERT_NE(holder_, nullptr) << error;
    data_ = disk.seenBy(holder_->pid());
    if (data_ == folder) {
      GTEST_SKIP() << "nothing can be mounted here";
    }
    ASSERT_TRUE(eventually([&] {
      const dev_t mounted = diskOf(data_);
      return mounted != 0 && mounted != diskOf(folder);
    }));
    disk_ = ::open(data_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(disk_, 0);
    const platform::Installed<platform::TemporaryFiles>::Scope installed(
        std::make_shared<TemporaryFilesIn>(data_));
    buffer_ = editedBuffer();
    ASSERT_NE(buffer_, nullptr);
    write(*buffer_, pattern(kBytes, 1), 0);
    whole_ = wholeRecording(*buffer_);
  }
  ~MovedRecordingTest() override { ::close(disk_); }

  /// The path of the only file in the recovered folder.
  [[nodiscard]] std::string onlyFile() const {
    const auto names = recoveredNames(data_);
    return names.size() == 1 ? recoveredPath(data_) + "/" + names.front() : std::string();
  }

  TemporaryFolder folder_;
  std::unique_ptr<ChildProcess> holder_;  // the disk is there as long as it runs
  std::string data_;                      // the disk's folder
  int disk_ = -1;
  std::shared_ptr<OVBlockBuffer> buffer_;
  Bytes whole_;
};

TEST_F(MovedRecordingTest, WhatCannotBeWrittenIsLeftOutAndTheRestStays) {
  ASSERT_TRUE(fillBut(32 << 10, disk_));
  std::optional<FileSizeLimit> limit;
  auto audio = std::make_unique<WatchedAudio>(buffer_->fileDescriptor(), [&](int read) {
    if (read == 4) {
      limit.emplace(1 << 20);
    } else if (read == 8) {
      limit.reset();
    }
  });
  const auto folder = *RecoveredFolder::open(data_);
  KeptRecording recording(std::move(audio), sameFile(buffer_->journal()->descriptor()));
  EXPECT_EQ(recording.recover(*folder), KeptRecording::Outcome::failed);
  EXPECT_TRUE(recording.isMoving());
  ASSERT_TRUE(onlyFile().ends_with(".caf.part")) << onlyFile();
  const Bytes found = cafAudio(onlyFile());
  ASSERT_EQ(found.size(), whole_.size());
  EXPECT_FALSE(found == whole_) << "nothing has failed";
  constexpr std::ptrdiff_t kBegin = 512 << 10;
  constexpr std::ptrdiff_t kEnd = 4 << 20;
  EXPECT_TRUE(std::equal(found.begin(), found.begin() + kBegin, whole_.begin()));
  EXPECT_TRUE(std::equal(found.begin() + kEnd, found.end(), whole_.begin() + kEnd));
  const platform::PosixFile part(::open(onlyFile().c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(::flock(part.descriptor(), LOCK_EX | LOCK_NB), 0) << "it would not be offered";
}

TEST_F(MovedRecordingTest, FolderThatCannotBeOpenedAgainIsUsedToTheEnd) {
  ASSERT_TRUE(fillBut(0, disk_));  // the last stretch waits for room for the header
  auto [program, other] = *platform::DescriptorChannel::connect();
  const KeeperMessage message{.document = 1};
  const std::array descriptors{buffer_->fileDescriptor(), buffer_->journal()->descriptor()};
  ASSERT_EQ(program->send(std::as_bytes(std::span(&message, 1)), descriptors), 0);
  program.reset();
  Keeper keeper(std::move(other), data_);
  keeper.listen();
  EXPECT_FALSE(keeper.recover());
  EXPECT_TRUE(keeper.isMoving());
  std::filesystem::rename(recoveredPath(data_), data_ + "/orvo/moved");
  std::filesystem::create_directory_symlink("moved", recoveredPath(data_));
  EXPECT_FALSE(keeper.recover());
  ASSERT_EQ(::unlinkat(disk_, "filler", 0), 0);
  EXPECT_TRUE(keeper.recover());
  EXPECT_TRUE(onlyFile().ends_with(".caf")) << onlyFile();
  EXPECT_TRUE(cafAudio(onlyFile()) == whole_);
}

}  // namespace
