#include "platform/files/TemporaryFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

namespace {

using platform::chooseTemporaryDirectory;
using platform::TemporaryFiles;

class TemporaryDirectory : public testing::Test {
 protected:
  void SetUp() override {
    std::string path = std::filesystem::temp_directory_path() / "orvo-test-XXXXXX";
    ASSERT_NE(::mkdtemp(path.data()), nullptr);
    path_ = path + "/";
  }
  void TearDown() override { std::filesystem::remove_all(path_); }

  std::string path_;
  const std::shared_ptr<TemporaryFiles> files_ = TemporaryFiles::whenNoneIsInstalled();
};

TEST_F(TemporaryDirectory, KeepsNoNameOfAnOpenTemporaryFile) {
  const auto created = files_->createUnlinked(path_ + "orvoXXXXXX");
  ASSERT_TRUE(created);
  EXPECT_TRUE(created->path.starts_with(path_ + "orvo"));
  EXPECT_NE(created->path, path_ + "orvoXXXXXX");
  EXPECT_FALSE(std::filesystem::exists(created->path));
  EXPECT_TRUE(std::filesystem::is_empty(path_));
}

// Descriptors of this process that are open on unlinked files of a directory.
std::set<int> descriptorsIn(const std::string& directory) {
  std::set<int> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code ignored;
    const auto target = std::filesystem::read_symlink(entry.path(), ignored);
    if (target.string().starts_with(directory)) {
      found.insert(std::stoi(entry.path().filename().string()));
    }
  }
  return found;
}

TEST_F(TemporaryDirectory, MakesFilesForTheUserAloneThatNoChildProcessInherits) {
  if (!std::filesystem::exists("/proc/self/fd")) {
    GTEST_SKIP() << "no list of this process's descriptors";
  }
  {
    const auto created = files_->createUnlinked(path_ + "orvoXXXXXX");
    const auto open = descriptorsIn(path_);
    ASSERT_EQ(open.size(), 1U);
    EXPECT_NE(::fcntl(*open.begin(), F_GETFD) & FD_CLOEXEC, 0);
    struct stat information = {};
    ASSERT_EQ(::fstat(*open.begin(), &information), 0);
    EXPECT_EQ(information.st_mode & 0777, 0600U);
    EXPECT_EQ(information.st_nlink, 0U);
  }
  EXPECT_TRUE(descriptorsIn(path_).empty()) << "closing a file must release its storage";
}

TEST_F(TemporaryDirectory, ThatDoesNotExistGivesNoFile) {
  const auto created = files_->createUnlinked(path_ + "missing/orvoXXXXXX");
  EXPECT_FALSE(created);
  EXPECT_EQ(created.error().error, ENOENT);
}

TEST_F(TemporaryDirectory, TemplateWithoutPlaceholdersGivesNoFile) {
  const auto created = files_->createUnlinked(path_ + "orvoXXX");
  EXPECT_FALSE(created);
  EXPECT_EQ(created.error().error, EINVAL);
}

TEST_F(TemporaryDirectory, KeepsTheNameOfAFileThatIsToHaveOne) {
  const auto created = files_->createNamed(path_ + "orvo_XXXXXX.flt");
  ASSERT_TRUE(created);
  const std::filesystem::path path(created->path);
  EXPECT_EQ(path.parent_path().string() + "/", path_);
  EXPECT_TRUE(path.filename().string().starts_with("orvo_"));
  EXPECT_EQ(path.extension(), ".flt");
  EXPECT_EQ(path.filename().string().size(), std::string("orvo_XXXXXX.flt").size());
  struct stat information = {};
  ASSERT_EQ(::stat(created->path.c_str(), &information), 0);
  EXPECT_EQ(information.st_mode & 0777, 0600U);
  platform::deleteFile(created->path);
  EXPECT_TRUE(std::filesystem::is_empty(path_));
}

TEST_F(TemporaryDirectory, GivesEveryNamedFileANameOfItsOwn) {
  std::set<std::string> paths;
  for (int i = 0; i < 50; ++i) {
    paths.insert(files_->createNamed(path_ + "orvo_XXXXXX.flt")->path);
  }
  EXPECT_EQ(paths.size(), 50U);
}

TEST_F(TemporaryDirectory, ThatDoesNotExistGivesNoNamedFile) {
  const auto created = files_->createNamed(path_ + "missing/orvo_XXXXXX.flt");
  EXPECT_FALSE(created);
  EXPECT_EQ(created.error().error, ENOENT);
  EXPECT_TRUE(created.error().path.starts_with(path_ + "missing/orvo_"));
}

TEST_F(TemporaryDirectory, NamedTemplateWithoutPlaceholdersGivesNoFile) {
  const auto created = files_->createNamed(path_ + "orvo.flt");
  EXPECT_FALSE(created);
  EXPECT_EQ(created.error().error, EINVAL);
}

TEST(DeleteFile, IgnoresWhatIsNotThere) {
  EXPECT_NO_THROW(platform::deleteFile("/nowhere/at/all"));
}

bool everythingOnDisk(const std::string& /*directory*/) {
  return true;
}

TEST(ChooseTemporaryDirectory, TakesTheUsersChoiceAsItStands) {
  const auto nothingOnDisk = [](const std::string&) { return false; };
  EXPECT_EQ(chooseTemporaryDirectory("/home/me/tmp", nothingOnDisk), "/home/me/tmp/");
  EXPECT_EQ(chooseTemporaryDirectory("/home/me/tmp/", nothingOnDisk), "/home/me/tmp/");
  EXPECT_EQ(chooseTemporaryDirectory("/", nothingOnDisk), "/");
}

TEST(ChooseTemporaryDirectory, IsTmpWithoutAChoice) {
  EXPECT_EQ(chooseTemporaryDirectory(nullptr, everythingOnDisk), "/tmp/");
  EXPECT_EQ(chooseTemporaryDirectory("", everythingOnDisk), "/tmp/");
}

TEST(ChooseTemporaryDirectory, AvoidsATmpInMemoryWhereVarTmpIsOnDisk) {
  const auto varTmpOnly = [](const std::string& directory) { return directory == "/var/tmp"; };
  EXPECT_EQ(chooseTemporaryDirectory(nullptr, varTmpOnly), "/var/tmp/");
}

TEST(ChooseTemporaryDirectory, StaysInTmpWhereNothingIsOnDisk) {
  EXPECT_EQ(chooseTemporaryDirectory(nullptr, [](const std::string&) { return false; }), "/tmp/");
}

TEST(TemporaryFiles, HaveADirectoryThatExistsAndEndsInASeparator) {
  const std::string directory = platform::temporaryFiles()->directory();
  EXPECT_EQ(directory.back(), '/');
  EXPECT_TRUE(std::filesystem::is_directory(directory));
}

}  // namespace
