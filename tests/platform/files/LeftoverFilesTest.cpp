#include "platform/files/LeftoverFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "platform/files/Descriptor.h"
#include "platform/files/ReplacementFile.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr std::time_t kHour = 3600;
constexpr std::time_t kMinute = 60;

class LeftoverFilesTest : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_.file(name); }

  std::string put(const std::string& name, std::time_t age) {
    std::ofstream(at(name)) << "part of a file";
    setAge(name, age);
    return at(name);
  }

  void setAge(const std::string& name, std::time_t age) {
    const timespec then{std::time(nullptr) - age, 0};
    const timespec times[] = {then, then};
    EXPECT_EQ(::utimensat(AT_FDCWD, at(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
  }

  void remove() {
    const platform::Descriptor folder(::open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY));
    platform::removeLeftReplacements(folder.get());
  }

  bool isThere(const std::string& name) const { return fs::exists(fs::symlink_status(at(name))); }

  support::TemporaryFolder folder_;
};

TEST_F(LeftoverFilesTest, OneThatIsOlderThanAnHourAndThatNobodyHoldsIsRemoved) {
  put(".orvo-abcdef01", kHour + kMinute);
  put(".orvo-abcdef02", kHour - kMinute);
  remove();
  EXPECT_FALSE(isThere(".orvo-abcdef01"));
  EXPECT_TRUE(isThere(".orvo-abcdef02"));
}

TEST_F(LeftoverFilesTest, OneThatIsHeldStaysHoweverOldItIs) {
  const std::string path = put(".orvo-abcdef01", 30 * 24 * kHour);
  {
    const platform::Descriptor saver(::open(path.c_str(), O_RDWR));
    platform::holdReplacement(saver.get());
    remove();
    EXPECT_TRUE(isThere(".orvo-abcdef01"));
  }
  remove();
  EXPECT_FALSE(isThere(".orvo-abcdef01"));
}

TEST_F(LeftoverFilesTest, ALockIsHeldForAsLongAsACopyOfTheDescriptorIsOpen) {
  const std::string path = put(".orvo-abcdef01", 2 * kHour);
  platform::Descriptor copy;
  {
    const platform::Descriptor saver(::open(path.c_str(), O_RDWR));
    platform::holdReplacement(saver.get());
    copy = platform::Descriptor(::dup(saver.get()));
  }
  remove();
  EXPECT_TRUE(isThere(".orvo-abcdef01"));
}

TEST_F(LeftoverFilesTest, FilesOfOtherNamesFoldersAndLinksStay) {
  for (const char* const name :
       {".orvo-abcdef0", ".orvo-abcdef012", ".orvo-ABCDEF01", ".orvo-abcdef.1", "orvo-abcdef01",
        ".orvo-abcdef01.wav", "take.wav"}) {
    put(name, 2 * kHour);
  }
  fs::create_directory(at(".orvo-folder01"));
  setAge(".orvo-folder01", 2 * kHour);
  fs::create_symlink(at("take.wav"), at(".orvo-link0001"));
  setAge(".orvo-link0001", 2 * kHour);
  remove();
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()), 9);
}

TEST_F(LeftoverFilesTest, AnotherUsersFileStays) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can make another user's file";
  }
  constexpr uid_t kNobody = 65534;
  const std::string path = put(".orvo-abcdef01", 2 * kHour);
  ASSERT_EQ(::chown(path.c_str(), kNobody, kNobody), 0);
  setAge(".orvo-abcdef01", 2 * kHour);
  remove();
  EXPECT_TRUE(isThere(".orvo-abcdef01"));
}

TEST_F(LeftoverFilesTest, TheNextSaveInTheFolderRemovesWhatAKilledOneLeft) {
  put(".orvo-abcdef01", 2 * kHour);
  put(".orvo-abcdef02", kMinute);
  const auto saved = platform::ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(saved);
  EXPECT_FALSE(isThere(".orvo-abcdef01"));
  EXPECT_TRUE(isThere(".orvo-abcdef02"));
}

TEST_F(LeftoverFilesTest, ASaveThatTakesLongIsNotRemovedByAnother) {
  const auto slow = platform::ReplacementFile::beside(at("long.wav"));
  ASSERT_TRUE(slow);
  for (const auto& entry : fs::directory_iterator(folder_.path())) {
    setAge(entry.path().filename().string(), 5 * kHour);
  }
  const auto other = platform::ReplacementFile::beside(at("other.wav"));
  ASSERT_TRUE(other);
  EXPECT_EQ((*slow)->write("whole", 5), 0);
  EXPECT_EQ((*slow)->commit(), 0);
  EXPECT_TRUE(isThere("long.wav"));
}

TEST(LeftoverFilesNameTest, FreshNamesAreHiddenAndDiffer) {
  std::set<std::string> names;
  for (int i = 0; i < 100; ++i) {
    const std::string name = platform::freshReplacementName();
    EXPECT_TRUE(name.starts_with(".orvo-")) << name;
    EXPECT_EQ(name.size(), 14U);
    names.insert(name);
  }
  EXPECT_EQ(names.size(), 100U);
}

}  // namespace
