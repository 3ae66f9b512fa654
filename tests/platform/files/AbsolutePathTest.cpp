#include "platform/files/AbsolutePath.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TemporaryFolder.h"

using platform::absolutePathOf;

class AbsolutePathTest : public testing::Test {
 protected:
  AbsolutePathTest() { std::filesystem::current_path(folder_.path()); }
  ~AbsolutePathTest() override { std::filesystem::current_path(before_); }

  const std::filesystem::path before_ = std::filesystem::current_path();
  support::TemporaryFolder folder_;
};

TEST_F(AbsolutePathTest, CountsFromTheWorkingFolder) {
  EXPECT_EQ(absolutePathOf("take.wav"), folder_.file("take.wav"));
  EXPECT_EQ(absolutePathOf("./a/./take.wav"), folder_.file("a/take.wav"));
  EXPECT_EQ(absolutePathOf("/tmp/take.wav"), "/tmp/take.wav");
}

TEST_F(AbsolutePathTest, GoesUpFromWhereALinkLeads) {
  folder_.makeFolder("real");
  folder_.makeFolder("real/inner");
  std::filesystem::create_directory_symlink("real/inner", folder_.file("link"));
  EXPECT_EQ(absolutePathOf("link/../take.wav"), folder_.file("real/take.wav"));
}

TEST_F(AbsolutePathTest, IsEmptyForWhatIsNoPath) {
  EXPECT_EQ(absolutePathOf(""), "");
}

TEST_F(AbsolutePathTest, IsEmptyWhereTheWorkingFolderIsGone) {
  std::filesystem::current_path(folder_.makeFolder("gone"));
  std::filesystem::remove(folder_.file("gone"));
  EXPECT_EQ(absolutePathOf("take.wav"), "");
  EXPECT_EQ(absolutePathOf("/take.wav"), "/take.wav");
}
