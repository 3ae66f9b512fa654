#include "platform/files/ReplacementFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TemporaryFolder.h"

namespace {

using platform::ReplacementFile;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

void put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class ReplacementFileTest : public testing::Test {
 protected:
  ~ReplacementFileTest() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

  std::string at(const std::string& name) const { return folder_.file(name); }

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  int replace(const std::string& name, const std::string& text) {
    const auto result = ReplacementFile::beside(at(name));
    if (!result) {
      return result.error();
    }
    EXPECT_EQ(result->write(text.data(), text.size()), 0);
    return result->commit();
  }

  /// Path of the file that is being written.
  std::string newFile() const {
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      if (entry.path().filename().string().starts_with(".orvo-")) {
        return entry.path().string();
      }
    }
    return {};
  }

  // Root may write everywhere; permissions apply only to other users.
  void becomeOrdinaryUser() {
    if (::geteuid() == 0) {
      ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
      ASSERT_EQ(::seteuid(kNobody), 0);
      dropped_ = true;
    }
  }

  support::TemporaryFolder folder_;
  bool dropped_ = false;
};

TEST_F(ReplacementFileTest, MakesAFileThatWasNotThere) {
  EXPECT_EQ(replace("take.wav", "new"), 0);
  EXPECT_EQ(contentsOf(at("take.wav")), "new");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(ReplacementFileTest, LeavesTheOldFileWholeUntilItIsCommitted) {
  put(at("take.wav"), "old");
  auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->write("new", 3), 0);
  EXPECT_EQ(contentsOf(at("take.wav")), "old");
  EXPECT_EQ(result->commit(), 0);
  EXPECT_EQ(contentsOf(at("take.wav")), "new");
}

TEST_F(ReplacementFileTest, LeavesNothingBehindWhenItIsNotCommitted) {
  put(at("take.wav"), "old");
  auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  EXPECT_EQ(filesInFolder(), 2U);
  *result = nullptr;
  EXPECT_EQ(filesInFolder(), 1U);
  EXPECT_EQ(contentsOf(at("take.wav")), "old");
}

TEST_F(ReplacementFileTest, KeepsThePermissionsOfTheOldFile) {
  put(at("take.wav"), "old");
  ASSERT_EQ(::chmod(at("take.wav").c_str(), 0604), 0);
  EXPECT_EQ(replace("take.wav", "new"), 0);
  struct stat status = {};
  ASSERT_EQ(::stat(at("take.wav").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0604U);
}

TEST_F(ReplacementFileTest, GivesANewFileWhatTheUsersMaskLeaves) {
  const mode_t before = ::umask(027);
  EXPECT_EQ(replace("take.wav", "new"), 0);
  ::umask(before);
  struct stat status = {};
  ASSERT_EQ(::stat(at("take.wav").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(ReplacementFileTest, IsReadableByTheUserAloneBeforeItHasTheOldFilesRights) {
  put(at("take.wav"), "old");
  ASSERT_EQ(::chmod(at("take.wav").c_str(), 0600), 0);
  const auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  struct stat status = {};
  ASSERT_EQ(::stat(newFile().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0077, 0U);
}

TEST_F(ReplacementFileTest, ReplacesWhatASymbolicLinkPointsToAndKeepsTheLink) {
  folder_.makeFolder("elsewhere");
  put(at("elsewhere/real.wav"), "old");
  fs::create_symlink("elsewhere/real.wav", at("middle.wav"));
  fs::create_symlink("middle.wav", at("take.wav"));
  EXPECT_EQ(replace("take.wav", "new"), 0);
  EXPECT_TRUE(fs::is_symlink(at("take.wav")));
  EXPECT_TRUE(fs::is_symlink(at("middle.wav")));
  EXPECT_FALSE(fs::is_symlink(at("elsewhere/real.wav")));
  EXPECT_EQ(contentsOf(at("elsewhere/real.wav")), "new");
}

TEST_F(ReplacementFileTest, MakesTheFileThatADanglingLinkPointsTo) {
  fs::create_symlink("missing.wav", at("take.wav"));
  EXPECT_EQ(replace("take.wav", "new"), 0);
  EXPECT_TRUE(fs::is_symlink(at("take.wav")));
  EXPECT_EQ(contentsOf(at("missing.wav")), "new");
}

TEST_F(ReplacementFileTest, RefusesLinksThatGoInACircle) {
  fs::create_symlink("b.wav", at("a.wav"));
  fs::create_symlink("a.wav", at("b.wav"));
  EXPECT_EQ(replace("a.wav", "new"), ELOOP);
}

TEST_F(ReplacementFileTest, RefusesAFolderAndWhatIsNoFile) {
  folder_.makeFolder("folder.wav");
  EXPECT_EQ(replace("folder.wav", "new"), EISDIR);
  ASSERT_EQ(::mkfifo(at("pipe.wav").c_str(), 0600), 0);
  EXPECT_EQ(replace("pipe.wav", "new"), EINVAL);
  EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(ReplacementFileTest, RefusesAFileThatMayNotBeWritten) {
  put(at("take.wav"), "old");
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  ASSERT_EQ(::chmod(at("take.wav").c_str(), 0444), 0);
  if (::geteuid() == 0) {
    ASSERT_EQ(::seteuid(kNobody), 0);
    dropped_ = true;
  }
  EXPECT_EQ(replace("take.wav", "new"), EACCES);
  EXPECT_EQ(contentsOf(at("take.wav")), "old");
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(ReplacementFileTest, FailsInAFolderWithoutPermission) {
  const std::string locked = folder_.makeFolder("locked");
  ASSERT_EQ(::chmod(locked.c_str(), 0500), 0);
  becomeOrdinaryUser();
  EXPECT_EQ(replace("locked/take.wav", "new"), EACCES);
}

TEST_F(ReplacementFileTest, FailsInAFolderThatIsGone) {
  EXPECT_EQ(replace("gone/take.wav", "new"), ENOENT);
}

TEST_F(ReplacementFileTest, ToldWhenItsFolderVanishedMeanwhile) {
  const std::string medium = folder_.makeFolder("medium");
  const auto result = ReplacementFile::beside(medium + "/take.wav");
  ASSERT_TRUE(result);
  fs::remove_all(medium);
  EXPECT_EQ(result->commit(), ENOENT);
}

TEST_F(ReplacementFileTest, TakesNamesOfEveryKindUpTo255Bytes) {
  for (const std::string& name :
       {std::string(251, 'x') + ".wav", std::string("two\nlines.wav"), std::string("100%s %n.wav"),
        std::string("\xE5\xBD\x95\xE9\x9F\xB3 \xD7\xA9.wav"), std::string("-rf .wav"),
        std::string(" "), std::string("file:not a scheme.wav")}) {
    EXPECT_EQ(replace(name, "new"), 0) << name;
    EXPECT_EQ(contentsOf(at(name)), "new") << name;
  }
  EXPECT_EQ(replace(std::string(256, 'x'), "new"), ENAMETOOLONG);
}

TEST_F(ReplacementFileTest, TakesATargetInTheWorkingFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  const auto result = ReplacementFile::beside("take.wav");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->write("new", 3), 0);
  EXPECT_EQ(result->commit(), 0);
  fs::current_path(before);
  EXPECT_EQ(contentsOf(at("take.wav")), "new");
}

TEST_F(ReplacementFileTest, TheFolderBesideIsThatOfTheFileThatALinkPointsTo) {
  fs::create_directory(at("far"));
  fs::create_symlink("far/real.wav", at("link.wav"));
  EXPECT_EQ(ReplacementFile::folderBeside(at("link.wav")), at("far"));
  EXPECT_EQ(ReplacementFile::folderBeside(at("new.wav")), folder_.path());
  EXPECT_EQ(ReplacementFile::folderBeside("new.wav"), ".");
  fs::create_symlink("round", at("round"));
  EXPECT_EQ(ReplacementFile::folderBeside(at("round")), folder_.path());
  EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(ReplacementFileTest, GivesANewListOfTheUsersToNobodyElse) {
  const mode_t before = ::umask(0);
  auto result = ReplacementFile::beside(at("list"), ReplacementFile::NewFile::ownerOnly);
  ::umask(before);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->commit(), 0);
  struct stat status = {};
  ASSERT_EQ(::stat(at("list").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
}

// What others do in the folder meanwhile --------------------------------------------------------

TEST_F(ReplacementFileTest, WritesToNoOtherFileThatTookTheNewOnesName) {
  put(at("take.wav"), "old");
  put(at("victim"), "secret");
  ASSERT_EQ(::chmod(at("victim").c_str(), 0600), 0);
  auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  const std::string name = newFile();
  fs::remove(name);
  fs::create_symlink("victim", name);
  EXPECT_EQ(result->write("new", 3), 0);
  EXPECT_EQ(result->commit(), ESTALE);
  *result = nullptr;
  EXPECT_EQ(contentsOf(at("victim")), "secret");
  struct stat status = {};
  ASSERT_EQ(::stat(at("victim").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  EXPECT_EQ(contentsOf(at("take.wav")), "old");
  EXPECT_TRUE(fs::is_symlink(name)) << "what another program put there is not ours to delete";
}

TEST_F(ReplacementFileTest, PutsNoOtherFileInTheTargetsPlace) {
  put(at("take.wav"), "old");
  const auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  put(at("foreign"), "foreign");
  fs::rename(at("foreign"), newFile());
  EXPECT_EQ(result->commit(), ESTALE);
  EXPECT_EQ(contentsOf(at("take.wav")), "old");
}

TEST_F(ReplacementFileTest, IsToldThatAnotherFolderTookTheFoldersPlace) {
  const std::string folder = folder_.makeFolder("songs");
  const auto result = ReplacementFile::beside(folder + "/take.wav");
  ASSERT_TRUE(result);
  fs::rename(folder, at("moved"));
  folder_.makeFolder("songs");
  EXPECT_EQ(result->commit(), ESTALE);
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(ReplacementFileTest, IsToldThatTheTargetBecameALinkToAnotherFile) {
  put(at("take.wav"), "old");
  put(at("victim"), "secret");
  const auto result = ReplacementFile::beside(at("take.wav"));
  ASSERT_TRUE(result);
  fs::remove(at("take.wav"));
  fs::create_symlink("victim", at("take.wav"));
  EXPECT_EQ(result->commit(), ESTALE);
  EXPECT_EQ(contentsOf(at("victim")), "secret");
}

TEST_F(ReplacementFileTest, GetsNoRightsOfAFileThatCameMeanwhile) {
  const mode_t before = ::umask(077);
  const auto fresh = ReplacementFile::beside(at("fresh.wav"));
  ::umask(before);
  put(at("old.wav"), "old");
  ASSERT_EQ(::chmod(at("old.wav").c_str(), 0600), 0);
  const auto replacing = ReplacementFile::beside(at("old.wav"));
  ASSERT_TRUE(fresh && replacing);
  fs::remove(at("old.wav"));
  for (const char* const name : {"fresh.wav", "old.wav"}) {
    put(at(name), "foreign");
    ASSERT_EQ(::chmod(at(name).c_str(), 0666), 0);
  }
  EXPECT_EQ(fresh->commit(), 0);
  EXPECT_EQ(replacing->commit(), 0);
  for (const char* const name : {"fresh.wav", "old.wav"}) {
    struct stat status = {};
    ASSERT_EQ(::stat(at(name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U) << name;
  }
}

TEST_F(ReplacementFileTest, FollowsNoLinkOfAnotherUserWhereOthersMayWrite) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can give a link to another user";
  }
  const std::string shared = folder_.makeFolder("shared");
  put(at("victim"), "secret");
  fs::create_symlink(at("victim"), shared + "/take.wav");
  ASSERT_EQ(::lchown((shared + "/take.wav").c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(replace("shared/take.wav", "followed"), 0) << "only the user may write there";
  ASSERT_EQ(::chmod(shared.c_str(), 0777), 0);
  EXPECT_EQ(replace("shared/take.wav", "new"), EACCES);
  EXPECT_EQ(contentsOf(at("victim")), "followed");
}

}  // namespace
