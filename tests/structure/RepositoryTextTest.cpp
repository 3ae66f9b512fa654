#include "structure/RepositoryText.h"

#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace structure {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr char kRoot[] = ORVO_REPOSITORY;

TEST(RepositoryTextOfThisTreeTest, HasFilesAndThisIsOneOfThem) {
  EXPECT_THAT(repositoryFiles(kRoot), Contains("tests/structure/RepositoryTextTest.cpp"));
}

TEST(RepositoryTextOfThisTreeTest, HoldsNothingThatIsBuilt) {
  for (const std::string& path : repositoryFiles(kRoot)) {
    EXPECT_FALSE(path.starts_with("build/") || path.starts_with("out/")) << path;
  }
}

TEST(RepositoryTextOfThisTreeTest, TextsNameNoMachineAndNoPackageHost) {
  for (const std::string& path : repositoryFiles(kRoot)) {
    std::ifstream file(std::string(kRoot) + "/" + path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    EXPECT_TRUE(file) << path << " cannot be read";
    EXPECT_THAT(complaintsAboutText(text), IsEmpty()) << path;
  }
}

// The texts that must be found are put together from pieces, so that they are not found here.

TEST(RepositoryTextTest, FolderOfAMachineIsFound) {
  for (const char* folder : {"home", "Users", "root", "work"}) {
    const std::string path = std::string("/") + folder + "/anne";
    EXPECT_THAT(complaintsAboutText("first\n" + path + "\n"),
                ElementsAre("2: names a folder of someone's machine"));
    EXPECT_THAT(complaintsAboutText("x = \"" + path + "\";"), SizeIs(1));
    EXPECT_THAT(complaintsAboutText("below$D" + path), IsEmpty());
    EXPECT_THAT(complaintsAboutText(std::string("/") + folder + "/me/tmp"), IsEmpty());
  }
}

TEST(RepositoryTextTest, PackageHostIsFound) {
  EXPECT_THAT(complaintsAboutText(std::string("http://deb") + ".debian.org/"), SizeIs(1));
  EXPECT_THAT(complaintsAboutText(std::string("https://registry") + ".example.org"), SizeIs(1));
  EXPECT_THAT(complaintsAboutText("Debian 12"), IsEmpty());
}

TEST(RepositoryTextTest, CopyWithoutGitIsReadWithoutWhatIsBuilt) {
  const support::TemporaryFolder folder;
  folder.makeFolder("build");
  folder.makeFolder("src");
  for (const char* name : {"build/a", "src/b", "c"}) {
    std::ofstream(folder.file(name)) << "text\n";
  }
  EXPECT_THAT(repositoryFiles(folder.path()), UnorderedElementsAre("src/b", "c"));
}

}  // namespace
}  // namespace structure
