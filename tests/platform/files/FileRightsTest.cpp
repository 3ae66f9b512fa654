#include "platform/files/FileRights.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "platform/files/ReplacementFile.h"
#include "support/TemporaryFolder.h"

namespace {

using platform::ReplacementFile;

constexpr const char* kList = "system.posix_acl_access";
constexpr const char* kDefaultList = "system.posix_acl_default";
constexpr std::uint32_t kSomebody = 4711;
constexpr uid_t kNobody = 65534;

/// One entry of an access control list as the system stores it.
struct Entry {
  enum Tag : std::uint16_t { user = 1, namedUser = 2, group = 4, mask = 16, others = 32 };
  std::uint16_t tag;
  std::uint16_t rights;  // 4 reads, 2 writes
  std::uint32_t id = 0xFFFFFFFF;
};

std::string listOf(const std::vector<Entry>& entries) {
  constexpr std::uint32_t kVersion = 2;
  std::string list(reinterpret_cast<const char*>(&kVersion), sizeof kVersion);
  for (const Entry& entry : entries) {
    list.append(reinterpret_cast<const char*>(&entry), sizeof entry);
  }
  return list;
}

/// Somebody may read and write; the file's group may do nothing.
std::string listForSomebody() {
  return listOf({{Entry::user, 6},
                 {Entry::namedUser, 6, kSomebody},
                 {Entry::group, 0},
                 {Entry::mask, 6},
                 {Entry::others, 0}});
}

class FileRightsTest : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(take_) << "old";
    if (::setxattr(take_.c_str(), "user.test", "", 0, 0) != 0 ||
        ::setxattr(take_.c_str(), kList, listForSomebody().data(), listForSomebody().size(), 0) !=
            0) {
      GTEST_SKIP() << "no attributes or access control lists on this disk";
    }
    ::removexattr(take_.c_str(), "user.test");
    ::removexattr(take_.c_str(), kList);
    ::chmod(take_.c_str(), 0644);
  }

  void give(const char* name, const std::string& value) {
    ASSERT_EQ(::setxattr(take_.c_str(), name, value.data(), value.size(), 0), 0);
  }

  std::string has(const char* name) const {
    std::array<char, 512> value{};
    const ssize_t size = ::getxattr(take_.c_str(), name, value.data(), value.size());
    return size < 0 ? "none" : std::string(value.data(), static_cast<std::size_t>(size));
  }

  mode_t mode() const {
    struct stat status = {};
    EXPECT_EQ(::stat(take_.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  void save() {
    const auto file = ReplacementFile::beside(take_);
    ASSERT_TRUE(file);
    ASSERT_EQ(file->write("new", 3), 0);
    ASSERT_EQ(file->commit(), 0);
  }

  support::TemporaryFolder folder_;
  const std::string take_ = folder_.file("take.wav");
};

TEST_F(FileRightsTest, TheAccessControlListIsTakenOver) {
  give(kList, listForSomebody());
  ASSERT_EQ(mode(), 0660U) << "the group's bits are the mask, not its rights";
  save();
  EXPECT_EQ(has(kList), listForSomebody());
  EXPECT_EQ(mode(), 0660U);
}

TEST_F(FileRightsTest, TheUsersAttributesAreTakenOver) {
  give("user.xdg.comment", "the second take");
  give("user.empty", "");
  save();
  EXPECT_EQ(has("user.xdg.comment"), "the second take");
  EXPECT_EQ(has("user.empty"), "");
}

TEST_F(FileRightsTest, AListThatTheFolderGivesNewFilesWidensNoOldOne) {
  const std::string list = listForSomebody();
  ASSERT_EQ(::setxattr(folder_.path().c_str(), kDefaultList, list.data(), list.size(), 0), 0);
  ASSERT_EQ(::chmod(take_.c_str(), 0640), 0);
  save();
  EXPECT_EQ(has(kList), "none");
  EXPECT_EQ(mode(), 0640U);
}

TEST_F(FileRightsTest, AListThatCannotBeReadLeavesTheFileToTheUser) {
  give(kList, listForSomebody());
  const int copy = ::open(folder_.file("copy").c_str(), O_RDWR | O_CREAT | O_EXCL, 0666);
  ASSERT_GE(copy, 0);
  platform::takeOverRights(copy, -1);
  struct stat status = {};
  ASSERT_EQ(::fstat(copy, &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  ::close(copy);
}

/// The user cannot give the new file to the old one's owner and group.
class FileRightsOfAnotherUserTest : public FileRightsTest {
 protected:
  void SetUp() override {
    FileRightsTest::SetUp();
    if (::geteuid() != 0) {
      GTEST_SKIP() << "only root can make another user's file";
    }
    ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  }

  void saveAsNobody() {
    ASSERT_EQ(::setegid(kNobody), 0);
    ASSERT_EQ(::seteuid(kNobody), 0);
    save();
    ASSERT_EQ(::seteuid(0), 0);
    ASSERT_EQ(::setegid(0), 0);
  }
};

TEST_F(FileRightsOfAnotherUserTest, TheGroupsRightsGoToNoOtherGroup) {
  ASSERT_EQ(::chmod(take_.c_str(), 06762), 0);
  saveAsNobody();
  EXPECT_EQ(mode(), 0722U) << "neither group nor others may read, and nobody acts as the owner";
}

TEST_F(FileRightsOfAnotherUserTest, TheListGoesToNoOtherGroup) {
  give(kList, listOf({{Entry::user, 6},
                      {Entry::namedUser, 4, kSomebody},
                      {Entry::namedUser, 6, kNobody},
                      {Entry::group, 6},
                      {Entry::mask, 6},
                      {Entry::others, 4}}));
  saveAsNobody();
  EXPECT_EQ(mode(), 0600U);
  EXPECT_EQ(has(kList), "none");
}

}  // namespace
