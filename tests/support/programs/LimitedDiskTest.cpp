#include "support/programs/LimitedDisk.h"

#include <cstdlib>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

using namespace support;
using testing::HasSubstr;

namespace {

enum class Way { tried, preloaded };

class LimitedDiskTest : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    if (GetParam() == Way::preloaded) {
      ASSERT_EQ(::setenv("ORVO_TEST_WITHOUT_MOUNTS", "1", 1), 0);
    }
  }
  void TearDown() override {
    if (GetParam() == Way::preloaded) {
      ::unsetenv("ORVO_TEST_WITHOUT_MOUNTS");
    }
  }

  /// Runs a shell command with the disk, whose folder is $0.
  Finished run(const LimitedDisk& limited, const std::string& command) const {
    std::vector<std::string> words = limited.wrapper();
    words.insert(words.end(), {"sh", "-c", command, disk_});
    return runToEnd(words, cleanEnvironment());
  }

  TemporaryFolder folder_;
  std::string disk_ = folder_.makeFolder("disk");
};

TEST_P(LimitedDiskTest, TakesWhatFitsAndThenIsFull) {
  const Finished finished = run(LimitedDisk::ofSize(disk_, 65536),
                                "dd if=/dev/zero of=$0/a bs=1000 count=100; stat -c %s $0/a");
  EXPECT_THAT(finished.error, HasSubstr("No space left on device"));
  EXPECT_EQ(finished.output, "65536\n");
}

TEST_P(LimitedDiskTest, HoldsAFileFromTheStart) {
  ASSERT_TRUE(runToEnd({"sh", "-c", "head -c 40000 /dev/zero >$0", folder_.file("content")},
                       cleanEnvironment())
                  .status.succeeded());
  const Finished finished =
      run(LimitedDisk::ofSize(disk_, 65536, folder_.file("content"), "old"),
          "dd if=/dev/zero of=$0/a bs=1000 count=100; stat -c %s $0/old $0/a");
  EXPECT_THAT(finished.error, HasSubstr("No space left on device"));
  EXPECT_EQ(finished.output, "40000\n24576\n");
}

TEST_P(LimitedDiskTest, TellsItsFreeSpaceAndTakesBackWhatAFileIsCutOff) {
  const Finished finished = run(LimitedDisk::ofSize(disk_, 65536),
                                "head -c 65536 /dev/zero >$0/a; df --output=avail -B1 $0 | tail -1;"
                                "truncate -s 20480 $0/a; df --output=avail -B1 $0 | tail -1;"
                                "head -c 40960 /dev/zero >$0/b; stat -c %s $0/b");
  std::string output = finished.output;
  std::erase(output, ' ');
  EXPECT_EQ(output, "0\n45056\n40960\n") << finished.error;
}

TEST_P(LimitedDiskTest, CanOnlyBeRead) {
  const Finished finished =
      run(LimitedDisk::readOnly(disk_), "dd if=/dev/zero of=$0/a count=1; ls $0");
  EXPECT_THAT(finished.error, HasSubstr("Read-only file system"));
  EXPECT_EQ(finished.output, "");
}

TEST_P(LimitedDiskTest, LeavesOtherFoldersAlone) {
  const Finished finished =
      run(LimitedDisk::readOnly(disk_), "head -c 99999 /dev/zero >$0x && wc -c <$0x");
  EXPECT_EQ(finished.output, "99999\n") << finished.error;
}

INSTANTIATE_TEST_SUITE_P(Disk, LimitedDiskTest, testing::Values(Way::tried, Way::preloaded),
                         [](const auto& way) {
                           return way.param == Way::tried ? "AsThisMachineAllows" : "Preloaded";
                         });

}  // namespace
