#include "keeper/RecoveredFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/ClosedFolder.h"
#include "support/Eventually.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

class RecoveredFolderTest : public testing::Test {
 protected:
  void open() {
    auto opened = RecoveredFolder::open(data_.path());
    ASSERT_TRUE(opened);
    folder_ = *std::move(opened);
  }

  [[nodiscard]] std::string path(const std::string& name = {}) const {
    return data_.path() + "/orvo/recovered" + (name.empty() ? "" : "/" + name);
  }

  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(path())) {
      found.push_back(entry.path().filename().string());
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  /// Creates a part file, writes a text and completes it.
  void add(const std::string& text, const std::string& name, const std::string& former = {}) {
    auto part = folder_->create(name, {.name = former});
    ASSERT_TRUE(part);
    EXPECT_EQ(part->file->writeAt(text.data(), text.size(), 0).error, 0);
    EXPECT_EQ(folder_->complete(*part), 0);
  }

  [[nodiscard]] std::string content(const std::string& name) const {
    std::ifstream file(path(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }

  support::TemporaryFolder data_;
  std::unique_ptr<RecoveredFolder> folder_;
};

mode_t modeOf(const std::string& path) {
  struct stat information = {};
  return ::stat(path.c_str(), &information) == 0 ? information.st_mode & 0777 : 0;
}

TEST_F(RecoveredFolderTest, IsMadeForTheUserAlone) {
  open();
  add("text", "a");
  EXPECT_EQ(modeOf(path()), 0700U);
  EXPECT_EQ(modeOf(path("a.caf")), 0600U);
}

TEST_F(RecoveredFolderTest, IsMadeWhereTheDataDirectoryIsNotThereYet) {
  EXPECT_TRUE(RecoveredFolder::open(data_.file("local/share")));
  EXPECT_TRUE(RecoveredFolder::open(data_.file("not/there/at/all")));
  EXPECT_EQ(modeOf(data_.file("not/there")), 0700U);
  EXPECT_EQ(RecoveredFolder::open("").error(), EINVAL);
}

TEST_F(RecoveredFolderTest, FolderThatOthersCouldReadIsClosedToThem) {
  open();
  fs::permissions(path(), fs::perms::all);
  fs::permissions(data_.file("orvo"), fs::perms::all);
  open();
  EXPECT_EQ(modeOf(path()), 0700U);
  EXPECT_EQ(modeOf(data_.file("orvo")), 0700U);
}

TEST_F(RecoveredFolderTest, LinkIsNotUsed) {
  const std::string elsewhere = data_.makeFolder("elsewhere");
  data_.makeFolder("orvo");
  fs::create_directory_symlink(elsewhere, path());
  const auto opened = RecoveredFolder::open(data_.path());
  EXPECT_FALSE(opened);
  EXPECT_TRUE(opened.error() == ELOOP || opened.error() == ENOTDIR) << opened.error();
  EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST_F(RecoveredFolderTest, FolderOfSomeoneElseIsNotUsed) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can give a folder to someone else";
  }
  open();
  ASSERT_EQ(::chown(path().c_str(), 65534, 65534), 0);
  EXPECT_EQ(RecoveredFolder::open(data_.path()).error(), EPERM);
}

TEST_F(RecoveredFolderTest, FileHasItsSuffixAndItsLockUntilItIsComplete) {
  open();
  auto part = folder_->create("a", {});
  ASSERT_TRUE(part);
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf.part"});
  const platform::PosixFile other(::open(path("a.caf.part").c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_NE(::flock(other.descriptor(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(folder_->complete(*part), 0);
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf"});
  EXPECT_EQ(::flock(other.descriptor(), LOCK_EX | LOCK_NB), 0);
}

TEST_F(RecoveredFolderTest, EqualNamesAreNumbered) {
  open();
  add("1", "a");
  auto part = folder_->create("a", {});
  ASSERT_TRUE(part);
  add("3", "a");
  EXPECT_EQ(folder_->complete(*part), 0);
  add("4", "a");
  EXPECT_EQ(names(), (std::vector<std::string>{"a 2.caf", "a 3.caf", "a 4.caf", "a.caf"}));
  EXPECT_EQ(content("a.caf"), "1");
}

TEST_F(RecoveredFolderTest, NameTakenMeanwhileIsNotReplaced) {
  open();
  auto part = folder_->create("a", {});
  ASSERT_TRUE(part);
  std::ofstream(path("a.caf")) << "other";
  EXPECT_EQ(folder_->complete(*part), 0);
  EXPECT_EQ(content("a.caf"), "other");
  EXPECT_EQ(names(), (std::vector<std::string>{"a 2.caf", "a.caf"}));
}

TEST_F(RecoveredFolderTest, FormerFileIsReplacedOnceTheNewOneIsComplete) {
  open();
  add("old", "a");
  auto part = folder_->create("b", {.name = "a.caf"});
  ASSERT_TRUE(part);
  EXPECT_EQ(content("a.caf"), "old");
  EXPECT_EQ(part->file->writeAt("new", 3, 0).error, 0);
  EXPECT_EQ(folder_->complete(*part), 0);
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf"});
  EXPECT_EQ(content("a.caf"), "new");
}

TEST_F(RecoveredFolderTest, AnotherFileOfTheFormersNameIsNotReplaced) {
  open();
  add("old", "a");
  struct stat status = {};
  ASSERT_EQ(::stat(path("a.caf").c_str(), &status), 0);
  const RecoveredFolder::Former former{.name = "a.caf", .number = status.st_ino};
  auto newer = folder_->create("b", former);
  ASSERT_TRUE(newer);
  EXPECT_EQ(newer->file->writeAt("newer", 5, 0).error, 0);
  EXPECT_EQ(folder_->complete(*newer), 0);
  EXPECT_EQ(content("a.caf"), "newer") << "that was the former";
  auto late = folder_->create("b", former);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->file->writeAt("late", 4, 0).error, 0);
  EXPECT_EQ(folder_->complete(*late), 0);
  EXPECT_EQ(content("a.caf"), "newer");
  EXPECT_EQ(content("a 2.caf"), "late");
}

TEST_F(RecoveredFolderTest, FormerNameThatCannotBeTakenAgainLeavesAFurtherOne) {
  open();
  fs::create_directory(path("a.caf"));
  add("new", "b", "a.caf");
  EXPECT_EQ(names(), (std::vector<std::string>{"a 2.caf", "a.caf"}));
  EXPECT_EQ(content("a 2.caf"), "new");
}

TEST_F(RecoveredFolderTest, WholePartThatCannotBeNamedIsNamedLater) {
  open();
  auto part = folder_->create("a", {});
  ASSERT_TRUE(part);
  EXPECT_EQ(part->file->writeAt("text", 4, 0).error, 0);
  EXPECT_FALSE(part->isSynced);
  {
    const support::ClosedFolder closed(path());
    EXPECT_EQ(folder_->complete(*part), EACCES);
  }
  EXPECT_TRUE(part->isSynced);
  EXPECT_EQ(folder_->complete(*part), 0);
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf"});
  EXPECT_EQ(content("a.caf"), "text");
}

TEST_F(RecoveredFolderTest, FormerNameThatIsAPathIsIgnored) {
  open();
  for (const char* const former : {"../b.caf", "/b.caf", ".caf", ".b.caf", "b", ""}) {
    add("text", "a", former);
  }
  EXPECT_EQ(names().size(), 6U);
  EXPECT_FALSE(fs::exists(data_.file("orvo/b.caf")));
}

TEST_F(RecoveredFolderTest, PartOfADeadKeeperGivesWayToTheSameRecording) {
  open();
  add("old", "a");
  std::ofstream(path("a.caf.part")) << "half";
  add("new", "b", "a.caf");
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf"});
  EXPECT_EQ(content("a.caf"), "new");
}

TEST_F(RecoveredFolderTest, PartThatWasOpenedIsReplacedOnceTheNewFileIsComplete) {
  open();
  std::ofstream(path("a.caf.part")) << "half";
  auto part = folder_->create("b", {.name = "a.caf.part"});
  ASSERT_TRUE(part);
  EXPECT_EQ(content("a.caf.part"), "half");
  EXPECT_EQ(part->file->writeAt("new", 3, 0).error, 0);
  EXPECT_EQ(folder_->complete(*part), 0);
  EXPECT_EQ(names(), std::vector<std::string>{"a 2.caf"});
  EXPECT_EQ(content("a 2.caf"), "new");
}

TEST_F(RecoveredFolderTest, PartThatAnotherProgramHasStays) {
  open();
  std::ofstream(path("a.caf.part")) << "half";
  const platform::PosixFile other(::open(path("a.caf.part").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(other.descriptor(), LOCK_EX | LOCK_NB), 0);
  add("new", "b", "a.caf.part");
  EXPECT_EQ(names(), (std::vector<std::string>{"a 2.caf", "a.caf.part"}));
}

TEST_F(RecoveredFolderTest, LockThatIsReleasedLateIsWaitedFor) {
  open();
  add("old", "a");
  std::ofstream(path("a.caf.part")) << "half";
  auto other = std::make_unique<platform::PosixFile>(
      ::open(path("a.caf.part").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(other->descriptor(), LOCK_EX | LOCK_NB), 0);
  std::thread dying([&other] {
    std::this_thread::yield();
    other.reset();
  });
  add("new", "b", "a.caf");
  dying.join();
  EXPECT_EQ(names(), std::vector<std::string>{"a.caf"});
}

/// Descriptors of this process for the file.
std::ptrdiff_t descriptorsOf(const std::string& path) {
  const auto all = fs::directory_iterator("/proc/self/fd");
  return std::count_if(begin(all), end(all), [&path](const auto& entry) {
    std::error_code gone;
    return fs::equivalent(entry.path(), path, gone);
  });
}

TEST_F(RecoveredFolderTest, PartThatTakesTheNameOfADeadOneMeanwhileStays) {
  open();
  add("old", "a");
  std::ofstream(path("a.caf.part")) << "half";
  auto other = std::make_unique<platform::PosixFile>(
      ::open(path("a.caf.part").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(other->descriptor(), LOCK_EX | LOCK_NB), 0);
  std::thread finishing([this, &other] {
    EXPECT_TRUE(support::eventually([this] { return descriptorsOf(path("a.caf.part")) > 1; }));
    fs::rename(path("a.caf.part"), path("b.caf"));
    std::ofstream(path("a.caf.part")) << "another";
    other.reset();
  });
  add("new", "c", "a.caf");
  finishing.join();
  EXPECT_EQ(content("a.caf.part"), "another");
  EXPECT_EQ(content("c.caf"), "new");
}

TEST_F(RecoveredFolderTest, FolderAboveThatIsALinkIsNotUsed) {
  const std::string elsewhere = data_.makeFolder("elsewhere");
  fs::create_directory_symlink(elsewhere, data_.file("orvo"));
  const auto opened = RecoveredFolder::open(data_.path());
  EXPECT_FALSE(opened);
  EXPECT_TRUE(opened.error() == ELOOP || opened.error() == ENOTDIR) << opened.error();
  EXPECT_TRUE(fs::is_empty(elsewhere));
}

TEST_F(RecoveredFolderTest, PartOfALivingKeeperDoesNot) {
  open();
  add("old", "a");
  auto first = folder_->create("b", {.name = "a.caf"});
  ASSERT_TRUE(first);
  add("new", "b", "a.caf");
  EXPECT_EQ(folder_->complete(*first), 0);
  EXPECT_EQ(names(), (std::vector<std::string>{"a.caf", "b.caf"}));
}

TEST_F(RecoveredFolderTest, DiscardedPartIsGone) {
  open();
  const auto part = folder_->create("a", {});
  ASSERT_TRUE(part);
  folder_->discard(*part);
  EXPECT_TRUE(names().empty());
}

}  // namespace
