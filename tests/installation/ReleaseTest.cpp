// scripts/release, in clones of the repository with made-up versions.
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/programs/ChildProcess.h"

namespace {

using testing::HasSubstr;

class Release : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(ORVO_REPOSITORY "/.git")) {
      GTEST_SKIP() << "This is no clone of the repository.";
    }
  }

  /// Runs commands of the shell in a clone, with further variables.
  support::Finished in(const std::string& clone, const std::string& commands,
                       const support::Environment& more = {}) {
    return support::runToEnd(
        {"sh", "-ec", "cd '" + folder_.file(clone) + "'\n" + commands},
        support::with(support::with(support::cleanEnvironment(), kAuthor), more));
  }

  void makeClone(const std::string& name) {
    const support::Finished clone =
        support::runToEnd({"git", "-c", "safe.directory=*", "clone", "--quiet", "--depth=1",
                           "file://" ORVO_REPOSITORY, folder_.file(name)},
                          support::with(support::cleanEnvironment(), kAuthor));
    ASSERT_TRUE(clone.status.succeeded()) << clone.error;
  }

  /// A clone with version 9.8.7, tagged.
  void makeTagged(const std::string& name) {
    ASSERT_NO_FATAL_FAILURE(makeClone(name));
    const support::Finished tagged = in(name,
                                        "scripts/release --prepare 9.8.7 2031-02-03\n"
                                        "git commit --quiet -a -m 'Release 9.8.7'\ngit tag v9.8.7");
    ASSERT_TRUE(tagged.status.succeeded()) << tagged.output << tagged.error;
  }

  [[nodiscard]] std::string contentOf(const std::string& file) const {
    std::ifstream stream(folder_.file(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

  const support::Environment kAuthor{{"HOME", "/nonexistent"},
                                     {"GIT_CONFIG_COUNT", "1"},
                                     {"GIT_CONFIG_KEY_0", "safe.directory"},
                                     {"GIT_CONFIG_VALUE_0", "*"},
                                     {"GIT_AUTHOR_NAME", "A"},
                                     {"GIT_AUTHOR_EMAIL", "a@orvo.example"},
                                     {"GIT_AUTHOR_DATE", "2031-02-03T00:00:00Z"},
                                     {"GIT_COMMITTER_NAME", "A"},
                                     {"GIT_COMMITTER_EMAIL", "a@orvo.example"},
                                     {"GIT_COMMITTER_DATE", "2031-02-03T00:00:00Z"}};
  support::TemporaryFolder folder_;
};

TEST_F(Release, PreparedVersionStandsEverywhere) {
  ASSERT_NO_FATAL_FAILURE(makeTagged("clone"));
  EXPECT_THAT(contentOf("clone/CMakeLists.txt"), HasSubstr("project(Orvo VERSION 9.8.7 "));
  EXPECT_THAT(contentOf("clone/CHANGELOG.md"),
              HasSubstr("## [Unreleased]\n\n## [9.8.7] - 2031-02-03\n\n### "));
  EXPECT_THAT(contentOf("clone/resources/desktop/metainfo.xml.in"),
              HasSubstr("<release version=\"9.8.7\" date=\"2031-02-03\""));
  EXPECT_TRUE(contentOf("clone/packaging/debian/changelog").starts_with("orvo (9.8.7-1) "));
}

TEST_F(Release, ArchiveHasTheSameBytesWhereverAndWheneverItIsMade) {
  ASSERT_NO_FATAL_FAILURE(makeTagged("clone"));
  ASSERT_NO_FATAL_FAILURE(makeTagged("another place"));
  const support::Finished first = in("clone", "scripts/release 9.8.7 ../first");
  EXPECT_TRUE(first.status.succeeded()) << first.error;
  const support::Finished second = in("another place", "umask 077\nscripts/release 9.8.7 ../second",
                                      {{"TZ", "Pacific/Kiritimati"}, {"LC_ALL", "C"}});
  EXPECT_TRUE(second.status.succeeded()) << second.error;
  const std::string archive = contentOf("first/orvo-9.8.7.tar.xz");
  EXPECT_GT(archive.size(), 100'000U);
  EXPECT_TRUE(archive == contentOf("second/orvo-9.8.7.tar.xz"));
  EXPECT_EQ(contentOf("first/SHA256SUMS"), contentOf("second/SHA256SUMS"));
  EXPECT_TRUE(in("clone", "cd ../first\nsha256sum --check SHA256SUMS").status.succeeded());
}

TEST_F(Release, FlatpakManifestNamesTheArchiveAndItsSum) {
  ASSERT_NO_FATAL_FAILURE(makeTagged("clone"));
  ASSERT_TRUE(in("clone", "scripts/release 9.8.7 ../made").status.succeeded());
  const std::string manifest = contentOf("made/" ORVO_APPLICATION_ID ".yml");
  const std::string sum = contentOf("made/SHA256SUMS").substr(0, 64);
  EXPECT_THAT(manifest, HasSubstr("id: " ORVO_APPLICATION_ID "\n"));
  EXPECT_THAT(manifest, HasSubstr("path: orvo-9.8.7.tar.xz\n        sha256: " + sum + "\n"));
  EXPECT_THAT(manifest, testing::Not(HasSubstr("@")));
}

TEST_F(Release, TagWhoseFilesNameAnotherVersionIsRefused) {
  ASSERT_NO_FATAL_FAILURE(makeTagged("clone"));
  EXPECT_THAT(in("clone", "git tag v9.9.0\nscripts/release 9.9.0 ../made").error,
              HasSubstr("CMakeLists.txt in v9.9.0 is version 9.8.7"));
  const support::Finished other =
      in("clone",
         "sed -i 's/2031-02-03/2031-02-04/' resources/desktop/metainfo.xml.in\n"
         "git commit --quiet -a -m Change\ngit tag -f v9.8.7\nscripts/release 9.8.7 ../made");
  EXPECT_FALSE(other.status.succeeded());
  EXPECT_THAT(other.error, HasSubstr("metainfo.xml.in in v9.8.7 says"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("made/SHA256SUMS")));
}

TEST_F(Release, VersionWithoutATagOrThatIsNoneIsRefused) {
  ASSERT_NO_FATAL_FAILURE(makeClone("clone"));
  EXPECT_THAT(in("clone", "scripts/release 7.7.7").error, HasSubstr("there is no tag v7.7.7"));
  EXPECT_EQ(in("clone", "scripts/release 7.7").status.code, 2);
  EXPECT_EQ(in("clone", "scripts/release --prepare 7.7.7 soon").status.code, 2);
}

}  // namespace
