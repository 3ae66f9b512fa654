#include "platform/files/PrivateFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

namespace platform {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

class PrivateFolderTest : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_ + "/" + name; }

  void put(const std::string& name, const std::string& text = "x") const {
    std::ofstream(at(name)) << text;
  }

  PrivateFolder open() const {
    auto opened = PrivateFolder::at(folder_);
    EXPECT_TRUE(opened) << opened.error();
    return *std::move(opened);
  }

  std::shared_ptr<PrivateFile> openFile(const std::string& name) const {
    const auto opened = open().open(name);
    EXPECT_TRUE(opened) << opened.error();
    return *opened;
  }

  static int errorOf(const std::string& path) { return PrivateFolder::at(path).error(); }

  support::TemporaryFolder temporary_;
  const std::string folder_ = temporary_.makeFolder("private");
};

TEST_F(PrivateFolderTest, AMissingFolderIsAnErrorAndNotMade) {
  EXPECT_EQ(errorOf(temporary_.file("data")), ENOENT);
  EXPECT_FALSE(fs::exists(temporary_.file("data")));
  put("file");
  EXPECT_EQ(errorOf(at("file/folder")), ENOTDIR);
  EXPECT_EQ(errorOf(""), ENOENT);
}

TEST_F(PrivateFolderTest, ALinkAndAFileAreNotUsed) {
  fs::create_directory_symlink(folder_, temporary_.file("link"));
  EXPECT_NE(errorOf(temporary_.file("link")), 0);
  put("file");
  EXPECT_EQ(errorOf(at("file")), ENOTDIR);
  fs::create_symlink(temporary_.file("nowhere"), temporary_.file("dangling"));
  EXPECT_NE(errorOf(temporary_.file("dangling")), 0);
  EXPECT_FALSE(fs::exists(temporary_.file("nowhere")));
}

TEST_F(PrivateFolderTest, AFolderThatOthersMayUseIsClosedToThem) {
  for (const mode_t mode : {0750U, 0705U, 0711U, 0702U, 0777U}) {
    ASSERT_EQ(::chmod(folder_.c_str(), mode), 0);
    EXPECT_EQ(errorOf(folder_), 0) << mode;
    EXPECT_EQ(fs::status(folder_).permissions(), fs::perms::owner_all);
  }
}

TEST_F(PrivateFolderTest, FoldersAboveItAreTheUsersOwnAsFarAsAsked) {
  const std::string above = temporary_.makeFolder("above");
  fs::create_directory(above + "/inner");
  fs::permissions(above, fs::perms::all);
  EXPECT_TRUE(PrivateFolder::at(above + "/inner", 2));
  EXPECT_EQ(fs::status(above).permissions(), fs::perms::owner_all);
  fs::create_directory_symlink(above, temporary_.file("link"));
  EXPECT_TRUE(PrivateFolder::at(temporary_.file("link/inner"), 1));
  EXPECT_FALSE(PrivateFolder::at(temporary_.file("link/inner"), 2));
  if (::chown(above.c_str(), kNobody, kNobody) == 0) {
    EXPECT_EQ(PrivateFolder::at(above + "/inner", 2).error(), EPERM);
  }
}

TEST_F(PrivateFolderTest, RoomOfAFileIsWhatTheDiskHasSetAside) {
  put("file", std::string(100'000, 'x'));
  put("hole", "");
  fs::resize_file(at("hole"), 100'000);
  EXPECT_GE(openFile("file")->allocatedBytes(), 100'000U);
  EXPECT_EQ(openFile("hole")->allocatedBytes(), 0U);
}

TEST_F(PrivateFolderTest, AFolderAndAFileOfSomeoneElsesAreNotUsed) {
  put("file");
  if (::chown(at("file").c_str(), kNobody, kNobody) != 0) {
    GTEST_SKIP() << "needs root";
  }
  EXPECT_EQ(open().open("file").error(), EPERM);
  ASSERT_EQ(::chown(folder_.c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(errorOf(folder_), EPERM);
}

TEST_F(PrivateFolderTest, NamesAreListedAsTheyAreEachTime) {
  EXPECT_EQ(::mkdir(at("folder").c_str(), 0700), 0);
  put("a b\n\xff");
  put(".hidden");
  const PrivateFolder folder = open();
  for (int i = 0; i < 2; ++i) {
    std::vector<std::string> names;
    folder.forEachName([&names](const std::string& name) { names.push_back(name); });
    EXPECT_THAT(names, UnorderedElementsAre("folder", "a b\n\xff", ".hidden"));
  }
  fs::remove_all(folder_);
  std::vector<std::string> names;
  folder.forEachName([&names](const std::string& name) { names.push_back(name); });
  EXPECT_THAT(names, IsEmpty());
}

TEST_F(PrivateFolderTest, OnlyRegularFilesAreOpenedAndNoneIsWaitedFor) {
  put("file", "content");
  fs::create_symlink("file", at("link"));
  fs::create_directory(at("folder"));
  ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
  const PrivateFolder folder = open();
  EXPECT_EQ(folder.open("link").error(), ELOOP);
  EXPECT_NE(folder.open("folder").error(), 0);
  EXPECT_EQ(folder.open("pipe").error(), EINVAL);
  EXPECT_EQ(folder.open("gone").error(), ENOENT);
  const auto file = folder.open("file");
  ASSERT_TRUE(file);
  std::string text(7, '\0');
  EXPECT_EQ((*file)->content().readAt(text.data(), text.size(), 0).byteCount, 7U);
  EXPECT_EQ(text, "content");
  EXPECT_EQ((*file)->name(), "file");
}

TEST_F(PrivateFolderTest, AFileWithoutTheRightToWriteIsOpenedToo) {
  put("file");
  ASSERT_EQ(::chmod(at("file").c_str(), 0400), 0);
  const auto file = open().open("file");
  ASSERT_TRUE(file);
  EXPECT_EQ((*file)->lock(), PrivateFile::Lock::taken);
}

TEST_F(PrivateFolderTest, TheLockIsHeldByOneUntilItsEnd) {
  put("file");
  auto first = openFile("file");
  const auto second = openFile("file");
  EXPECT_EQ(first->lock(), PrivateFile::Lock::taken);
  EXPECT_EQ(first->lock(), PrivateFile::Lock::taken) << "its own";
  EXPECT_EQ(second->lock(), PrivateFile::Lock::heldByAnother);
  first.reset();
  EXPECT_EQ(second->lock(), PrivateFile::Lock::taken);
}

TEST_F(PrivateFolderTest, AFileOutlivesTheFolderObjectAndIsRemoved) {
  put("file");
  const auto file = openFile("file");
  EXPECT_EQ(file->checkName(), 0);
  EXPECT_EQ(file->remove(), 0);
  EXPECT_FALSE(fs::exists(at("file")));
  EXPECT_EQ(file->remove(), ENOENT);
  EXPECT_EQ(file->checkName(), ENOENT);
}

TEST_F(PrivateFolderTest, AnotherFileOfTheNameIsNotRemoved) {
  put("file", "old");
  const auto file = openFile("file");
  put("new", "new");
  fs::rename(at("new"), at("file"));
  EXPECT_EQ(file->remove(), ESTALE);
  EXPECT_TRUE(fs::exists(at("file")));
  EXPECT_NE(openFile("file")->number(), file->number());
}

TEST_F(PrivateFolderTest, TheTimeIsThatOfTheLastChange) {
  put("file");
  const timespec times[2] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1000000, .tv_nsec = 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, at("file").c_str(), times, 0), 0);
  EXPECT_EQ(std::chrono::system_clock::to_time_t(openFile("file")->modified()), 1000000);
}

}  // namespace
}  // namespace platform
