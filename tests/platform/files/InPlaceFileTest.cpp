#include "platform/files/InPlaceFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/FileSizeLimit.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

using platform::InPlaceFile;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

/// Temporary files of the test's own folder, in memory apart from the copies.
class OwnTemporaryFiles : public support::FailingTemporaryFiles {
 public:
  explicit OwnTemporaryFiles(std::string folder) : folder_(std::move(folder)) {}
  [[nodiscard]] std::string directory() const override { return folder_ + "/"; }

 private:
  const std::string folder_;
};

class InPlaceFileTest : public testing::Test {
 protected:
  ~InPlaceFileTest() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

  void put(const std::string& text) const { std::ofstream(take_, std::ios::binary) << text; }

  std::string contentsOf(const std::string& path) const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::unique_ptr<platform::File> content(const std::string& text) {
    auto created = temporary_.createUnlinked(copies_ + "/XXXXXX");
    EXPECT_EQ(created->file->writeAt(text.data(), text.size(), 0).byteCount, text.size());
    return std::move(created->file);
  }

  std::size_t copies() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(copies_), fs::directory_iterator()));
  }

  void becomeOrdinaryUser() {
    if (::geteuid() == 0) {
      ASSERT_EQ(::seteuid(kNobody), 0);
      dropped_ = true;
    }
  }

  support::TemporaryFolder folder_;
  const std::string songs_ = folder_.makeFolder("songs");
  const std::string copies_ = folder_.makeFolder("copies");
  const std::string take_ = songs_ + "/take.wav";
  OwnTemporaryFiles temporary_{copies_};
  platform::Installed<platform::TemporaryFiles>::Scope installation_{temporary_};
  bool dropped_ = false;
};

TEST_F(InPlaceFileTest, TheSameFileGetsTheNewContentAndTheCopyGoes) {
  for (const std::string text : {"shorter", "longer than what was there before"}) {
    put("what was there before");
    struct stat before = {};
    ASSERT_EQ(::stat(take_.c_str(), &before), 0);
    auto file = InPlaceFile::at(take_);
    ASSERT_TRUE(file);
    ASSERT_EQ(file->keepCopy(), 0);
    EXPECT_EQ(copies(), 1U);
    EXPECT_EQ(file->replaceWith(*content(text)), 0);
    EXPECT_EQ(file->copyLeft(), "");
    *file = nullptr;
    EXPECT_EQ(copies(), 0U);
    EXPECT_EQ(contentsOf(take_), text);
    struct stat after = {};
    ASSERT_EQ(::stat(take_.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
  }
}

TEST_F(InPlaceFileTest, TheCopyHoldsTheOldContentAndIsTheUsersAlone) {
  put("what was there before");
  const auto file = InPlaceFile::at(take_);
  ASSERT_TRUE(file);
  ASSERT_EQ(file->keepCopy(), 0);
  const fs::path copy = *fs::directory_iterator(copies_);
  EXPECT_EQ(copy.extension(), ".wav");
  EXPECT_EQ(contentsOf(copy.string()), "what was there before");
  struct stat status = {};
  ASSERT_EQ(::stat(copy.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0077U, 0U);
}

/// Content of which only so many bytes can be read.
class BrokenContent : public platform::File {
 public:
  explicit BrokenContent(std::uint64_t readable) : readable_(readable) {}

  platform::FileTransfer readAt(void* destination, std::uint64_t byteCount,
                                std::uint64_t offset) override {
    const std::uint64_t count = std::min(byteCount, readable_ - std::min(readable_, offset));
    std::memset(destination, 'n', count);
    return {.byteCount = count, .error = count < byteCount ? EIO : 0};
  }
  platform::FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override { return {}; }
  std::uint64_t size() override { return std::uint64_t{5} << 20; }
  int setSize(std::uint64_t) override { return ENOTSUP; }

 private:
  const std::uint64_t readable_;
};

TEST_F(InPlaceFileTest, AFailureInTheMiddleLeavesTheCopyAndNamesIt) {
  put("what was there before");
  auto file = InPlaceFile::at(take_);
  ASSERT_TRUE(file);
  ASSERT_EQ(file->keepCopy(), 0);
  BrokenContent content(3 << 20);
  EXPECT_EQ(file->replaceWith(content), EIO);
  const std::string copy = file->copyLeft();
  *file = nullptr;
  EXPECT_EQ(contentsOf(copy), "what was there before");
}

TEST_F(InPlaceFileTest, AFailureBeforeTheFirstByteIsWrittenDamagesNothing) {
  for (const std::string& before : {std::string(6 << 20, 'o'), std::string("a shorter one")}) {
    put(before);
    auto file = InPlaceFile::at(take_);
    ASSERT_TRUE(file);
    ASSERT_EQ(file->keepCopy(), 0);
    BrokenContent content(0);  // of 5 MiB
    EXPECT_EQ(file->replaceWith(content), EIO);
    EXPECT_EQ(file->copyLeft(), "");
    EXPECT_TRUE(contentsOf(take_) == before) << before.size();
  }
}

TEST_F(InPlaceFileTest, ContentForWhichThereIsNoRoomLeavesTheFileWhole) {
  put("what was there before");
  auto file = InPlaceFile::at(take_);
  ASSERT_TRUE(file);
  ASSERT_EQ(file->keepCopy(), 0);
  const auto large = content(std::string(100'000, 'x'));
  {
    const support::FileSizeLimit limit(10'000);
    EXPECT_EQ(file->replaceWith(*large), EFBIG);
  }
  EXPECT_EQ(file->copyLeft(), "");
  *file = nullptr;
  EXPECT_EQ(copies(), 0U);
  EXPECT_EQ(contentsOf(take_), "what was there before");
}

TEST_F(InPlaceFileTest, ACopyThatCannotBeMadeLeavesNothing) {
  put(std::string(100'000, 'o'));
  auto file = InPlaceFile::at(take_);
  ASSERT_TRUE(file);
  {
    const support::FileSizeLimit limit(10'000);
    EXPECT_EQ(file->keepCopy(), EFBIG);
  }
  *file = nullptr;
  EXPECT_EQ(copies(), 0U);
  EXPECT_EQ(contentsOf(take_), std::string(100'000, 'o'));
}

TEST_F(InPlaceFileTest, ItIsTheOnlyWayForTheUsersOwnFileInAFolderThatMayNotBeWritten) {
  put("old");
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(take_.c_str(), kNobody, kNobody), 0);
  }
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(songs_.c_str(), 0555), 0);
  becomeOrdinaryUser();
  EXPECT_TRUE(InPlaceFile::isTheOnlyWay(take_, EACCES));
  EXPECT_FALSE(InPlaceFile::isTheOnlyWay(take_, ENOSPC));
  EXPECT_FALSE(InPlaceFile::isTheOnlyWay(songs_ + "/missing.wav", EACCES));
  ASSERT_EQ(::chmod(take_.c_str(), 0444), 0);
  EXPECT_FALSE(InPlaceFile::isTheOnlyWay(take_, EACCES));
}

TEST_F(InPlaceFileTest, AnotherUsersFileIsNotWrittenInPlace) {
  put("old");
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only root can make another user's file";
  }
  ASSERT_EQ(::chmod(take_.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(songs_.c_str(), 0555), 0);
  becomeOrdinaryUser();
  EXPECT_FALSE(InPlaceFile::isTheOnlyWay(take_, EACCES));
  EXPECT_EQ(InPlaceFile::at(take_).error(), EACCES);
}

}  // namespace
