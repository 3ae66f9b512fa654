#include "platform/files/FreeSpace.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace {

class FreeSpaceTest : public testing::Test {
 protected:
  support::TemporaryFolder folder_;
  const std::shared_ptr<platform::FreeSpace> system_ = platform::FreeSpace::whenNoneIsInstalled();
};

TEST_F(FreeSpaceTest, IsWhatThisUserMayStillWrite) {
  const auto before = std::filesystem::space(folder_.path()).available;
  const auto space = system_->ofFolder(folder_.path());
  const auto after = std::filesystem::space(folder_.path()).available;
  ASSERT_TRUE(space);
  // Others write meanwhile; a wrong unit would be at least 512 times as much or as little.
  EXPECT_GT(space->freeBytes, std::min(before, after) / 2);
  EXPECT_LT(space->freeBytes, std::max(before, after) * 2);
}

TEST_F(FreeSpaceTest, OfAFolderThatIsGoneIsAnError) {
  const auto space = system_->ofFolder(folder_.file("gone"));
  ASSERT_FALSE(space);
  EXPECT_EQ(space.error(), ENOENT);
}

#if defined(__linux__)
TEST_F(FreeSpaceTest, WhereSpaceIsNotCountedIsAnErrorAndNotAFullDisk) {
  const auto space = system_->ofFolder("/proc");
  ASSERT_FALSE(space);
  EXPECT_EQ(space.error(), ENOTSUP);
}
#endif

}  // namespace
