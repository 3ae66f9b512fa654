#include "platform/files/FolderListing.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace {

using platform::FolderEntry;
using platform::PathKind;
using testing::ElementsAre;
namespace fs = std::filesystem;

class FolderListingTest : public testing::Test {
 protected:
  int list() {
    return platform::listFolder(
        folder_.path(),
        [this](const std::vector<FolderEntry>& entries) {
          calls_.push_back(entries);
          std::sort(calls_.back().begin(), calls_.back().end(),
                    [](const auto& a, const auto& b) { return a.name < b.name; });
        },
        cancelled_);
  }

  static std::vector<std::string> namesOf(const std::vector<FolderEntry>& entries) {
    std::vector<std::string> names(entries.size());
    std::transform(entries.begin(), entries.end(), names.begin(), [](const FolderEntry& entry) {
      return entry.name + (entry.isFolder ? "/" : "");
    });
    return names;
  }

  support::TemporaryFolder folder_;
  std::vector<std::vector<FolderEntry>> calls_;
  std::atomic<bool> cancelled_ = false;
};

TEST_F(FolderListingTest, NamesComeFirstAndThenSizesDatesAndWhatLinksLeadTo) {
  std::ofstream(folder_.file("a.wav")) << "12345";
  folder_.makeFolder("songs");
  fs::create_symlink("songs", folder_.file("link"));
  fs::create_symlink("gone", folder_.file("dead"));
  std::ofstream(folder_.file(".hidden")) << "x";
  ASSERT_EQ(::mkfifo(folder_.file("pipe").c_str(), 0600), 0);
  EXPECT_EQ(list(), 0);
  ASSERT_EQ(calls_.size(), 2U);
  EXPECT_THAT(namesOf(calls_[0]), ElementsAre("a.wav", "dead", "link", "songs/"));
  EXPECT_THAT(namesOf(calls_[1]), ElementsAre("a.wav", "link/", "songs/"));
  EXPECT_EQ(calls_[1][0].byteCount, 5U);
  EXPECT_GT(calls_[1][0].modified, 0);
}

TEST_F(FolderListingTest, NamesAreKeptByteForByte) {
  std::ofstream(folder_.file("caf\xE9.wav")) << "x";
  EXPECT_EQ(list(), 0);
  EXPECT_THAT(namesOf(calls_.back()), ElementsAre("caf\xE9.wav"));
}

TEST_F(FolderListingTest, AFolderThatIsNotThereIsAnError) {
  const auto nothing = [](const std::vector<FolderEntry>&) { ADD_FAILURE(); };
  EXPECT_EQ(platform::listFolder(folder_.file("gone"), nothing, cancelled_), ENOENT);
  std::ofstream(folder_.file("file")) << "x";
  EXPECT_EQ(platform::listFolder(folder_.file("file"), nothing, cancelled_), ENOTDIR);
}

TEST_F(FolderListingTest, ACancelledListingExaminesNothing) {
  std::ofstream(folder_.file("a.wav")) << "12345";
  cancelled_ = true;
  EXPECT_EQ(list(), 0);
  EXPECT_TRUE(calls_.empty());
}

TEST_F(FolderListingTest, TellsWhatAPathLeadsToAndMakesFolders) {
  std::ofstream(folder_.file("file")) << "x";
  fs::create_symlink("made", folder_.file("link"));
  EXPECT_EQ(platform::kindOfPath(folder_.file("link")), PathKind::missing);
  EXPECT_EQ(platform::makeFolder(folder_.file("made")), 0);
  EXPECT_EQ(platform::kindOfPath(folder_.file("link")), PathKind::folder);
  EXPECT_EQ(platform::kindOfPath(folder_.file("file")), PathKind::file);
  EXPECT_EQ(platform::makeFolder(folder_.file("made")), EEXIST);
}

}  // namespace
