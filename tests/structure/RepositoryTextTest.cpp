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

TEST(Repository, HasFilesAndThisIsOneOfThem) {
  EXPECT_THAT(repositoryFiles(kRoot), Contains("tests/structure/RepositoryTextTest.cpp"));
}

TEST(Repository, HoldsNothingThatIsBuilt) {
  for (const std::string& path : repositoryFiles(kRoot)) {
    EXPECT_FALSE(path.starts_with("build/") || path.starts_with("out/")) << path;
  }
}

TEST(Repository, TextsNameNoMachineNoPackageHostAndNoMissingPapers) {
  for (const std::string& path : repositoryFiles(kRoot)) {
    std::ifstream file(std::string(kRoot) + "/" + path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    EXPECT_THAT(complaintsAboutText(text), IsEmpty()) << path;
  }
}

TEST(Repository, FileNamesNameNoMissingPapers) {
  for (const std::string& path : repositoryFiles(kRoot)) {
    EXPECT_THAT(complaintsAboutName(path), IsEmpty());
  }
}

// The texts that must be found are put together from pieces, so that they are not found here.

TEST(RepositoryText, FolderOfAMachineIsFound) {
  for (const char* folder : {"home", "Users", "root", "work"}) {
    const std::string path = std::string("/") + folder + "/anne";
    EXPECT_THAT(complaintsAboutText("first\n" + path + "\n"),
                ElementsAre("2: names a folder of someone's machine"));
    EXPECT_THAT(complaintsAboutText("x = \"" + path + "\";"), SizeIs(1));
    EXPECT_THAT(complaintsAboutText("below$D" + path), IsEmpty());
    EXPECT_THAT(complaintsAboutText(std::string("/") + folder + "/me/tmp"), IsEmpty());
  }
}

TEST(RepositoryText, PackageHostIsFound) {
  EXPECT_THAT(complaintsAboutText(std::string("http://deb") + ".debian.org/"), SizeIs(1));
  EXPECT_THAT(complaintsAboutText(std::string("https://registry") + ".example.org"), SizeIs(1));
  EXPECT_THAT(complaintsAboutText("Debian 12"), IsEmpty());
}

TEST(RepositoryText, MissingPapersAreFound) {
  const std::string paper = std::string("Sp") + "ec";
  for (const std::string& text :
       {paper + ".md", "as the " + paper + " says", paper + "ification", std::string("Part") + " 3",
        std::string("part") + " 3.1", std::string("Implement") + "er",
        std::string("../shared") + "/design.md"}) {
    EXPECT_THAT(complaintsAboutText(text), SizeIs(1)) << text;
  }
}

TEST(RepositoryText, OrdinaryWordsAreNotFound) {
  for (const char* text :
       {"specific", "inspect", "a part of it", "parts of 3", "implements", "shared/ring"}) {
    EXPECT_THAT(complaintsAboutText(text), IsEmpty()) << text;
  }
}

TEST(RepositoryText, PublicStandardMayHaveAName) {
  EXPECT_THAT(complaintsAboutText(std::string("Desktop Entry Spec") + "ification"), IsEmpty());
}

TEST(RepositoryText, FileNameOfAPaperIsFound) {
  EXPECT_THAT(complaintsAboutName(std::string("docs/sp") + "ec.md"), SizeIs(1));
  EXPECT_THAT(complaintsAboutName(std::string("tests/part") + "3/A.cpp"), SizeIs(1));
  EXPECT_THAT(complaintsAboutName("displays/SpectrumView.h"), IsEmpty());
}

TEST(RepositoryText, CopyWithoutGitIsReadWithoutWhatIsBuilt) {
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
