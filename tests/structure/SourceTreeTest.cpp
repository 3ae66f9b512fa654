#include "structure/SourceTree.h"

#include <gmock/gmock.h>

namespace structure {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr char kSources[] = ORVO_REPOSITORY "/src";

/// The tree of the product, as it is.
class Product : public testing::Test {
 protected:
  SourceTree tree_ = readSources(kSources);
};

TEST_F(Product, HasSources) {
  EXPECT_THAT(tree_, Not(IsEmpty()));
}

TEST_F(Product, IncludesFollowTheArrows) {
  EXPECT_THAT(complaintsAboutArrows(tree_), IsEmpty());
}

TEST_F(Product, LibrariesOfModulesAreSeenByTheirModulesAlone) {
  EXPECT_THAT(complaintsAboutLateLibraries(tree_), IsEmpty());
}

TEST_F(Product, IncludesMakeNoCircle) {
  EXPECT_THAT(complaintsAboutCircles(tree_), IsEmpty());
}

TEST_F(Product, StorageAndSummariesSeeTheStandardLibraryAlone) {
  const auto pure = readFileList(ORVO_PURE_FILES, kSources);
  ASSERT_THAT(pure, testing::Contains("platform/base/AudioTypes.h"));
  EXPECT_THAT(complaintsAboutPureFiles(tree_, pure), IsEmpty());
}

TEST_F(Product, SeesPosixOnlyWhereItMeetsTheOperatingSystem) {
  EXPECT_THAT(complaintsAboutPosix(tree_), IsEmpty());
}

TEST_F(Product, SourcesHaveHeadersOfTheirNames) {
  EXPECT_THAT(complaintsAboutMissingHeaders(tree_), IsEmpty());
}

TEST_F(Product, HeadersBeginWithTheirGuard) {
  EXPECT_THAT(complaintsAboutGuards(tree_), IsEmpty());
}

TEST(SourceTree, ReadsIncludesHoweverTheyAreSpaced) {
  const auto includes = includesOf("#include <vector>\n  #  include \"a/B.h\" // why\nint x;\n");
  ASSERT_THAT(includes, SizeIs(2));
  EXPECT_EQ(includes[0].name, "vector");
  EXPECT_FALSE(includes[0].own);
  EXPECT_EQ(includes[1].name, "a/B.h");
  EXPECT_TRUE(includes[1].own);
}

TEST(SourceTree, LowerFolderThatIncludesAHigherOneIsFound) {
  const SourceTree tree{{"storage/A.h", "#include \"audio/B.h\"\n"}, {"audio/B.h", ""}};
  EXPECT_THAT(complaintsAboutArrows(tree), ElementsAre(HasSubstr("storage/A.h: includes")));
}

TEST(SourceTree, FoldersSideBySideDoNotIncludeEachOther) {
  const SourceTree tree{{"displays/A.h", "#include \"controls/B.h\"\n"}, {"controls/B.h", ""}};
  EXPECT_THAT(complaintsAboutArrows(tree), SizeIs(1));
}

TEST(SourceTree, HigherFolderMayIncludeAnyLowerOneAndItsOwn) {
  const SourceTree tree{
      {"document/A.h", "#include \"platform/base/B.h\"\n#include \"document/C.h\"\n"},
      {"platform/base/B.h", ""},
      {"document/C.h", "#include \"ui_Window.h\"\n"}};
  EXPECT_THAT(complaintsAboutArrows(tree), IsEmpty());
}

TEST(SourceTree, IncludeOfAFileThatIsNotThereIsFound) {
  const SourceTree tree{{"document/A.h", "#include \"B.h\"\n"}};
  EXPECT_THAT(complaintsAboutArrows(tree), ElementsAre(HasSubstr("not there")));
}

TEST(SourceTree, FileOutsideTheFoldersIsFound) {
  EXPECT_THAT(complaintsAboutArrows({{"misc/A.h", ""}}), SizeIs(1));
}

TEST(SourceTree, LibraryOfAModuleThatIsSeenElsewhereIsFound) {
  const SourceTree tree{{"platform/media/A.h", "#include <libavutil/tx.h>\n"},
                        {"platform/ffmpeg/B.h", "#include <libavutil/tx.h>\n"},
                        {"platform/sound/C.h", "#include <cubeb/cubeb.h>\n"},
                        {"platform/cubeb/D.h", "#include <cubeb/cubeb.h>\n"}};
  EXPECT_THAT(complaintsAboutLateLibraries(tree),
              ElementsAre(HasSubstr("media/A.h"), HasSubstr("sound/C.h")));
}

TEST(SourceTree, CircleOfThreeHeadersIsFound) {
  const SourceTree tree{{"audio/A.h", "#include \"audio/B.h\"\n"},
                        {"audio/B.h", "#include \"audio/C.h\"\n"},
                        {"audio/C.h", "#include \"audio/A.h\"\n"}};
  EXPECT_THAT(complaintsAboutCircles(tree), ElementsAre(HasSubstr("audio/C")));
}

TEST(SourceTree, CircleOfAHeaderAndASourceIsFound) {
  const SourceTree tree{{"audio/A.h", ""},
                        {"audio/A.cpp", "#include \"audio/A.h\"\n#include \"audio/B.h\"\n"},
                        {"audio/B.h", "#include \"audio/A.h\"\n"}};
  EXPECT_THAT(complaintsAboutCircles(tree), ElementsAre(HasSubstr("audio/B")));
}

TEST(SourceTree, RoomThatIncludesTheRoomBesideItIsFound) {
  const SourceTree tree{{"platform/sound/A.h", "#include \"platform/files/B.h\"\n"},
                        {"platform/files/B.h", ""}};
  EXPECT_THAT(complaintsAboutArrows(tree), ElementsAre(HasSubstr("platform/sound/A.h")));
}

TEST(SourceTree, RoomBelowAnotherIsNotPartOfIt) {
  const SourceTree tree{{"waveform/A.h", "#include \"waveform/views/B.h\"\n"},
                        {"waveform/views/B.h", ""}};
  EXPECT_THAT(complaintsAboutArrows(tree), ElementsAre(HasSubstr("waveform/A.h")));
}

TEST(SourceTree, FolderInsideARoomBelongsToIt) {
  const SourceTree tree{{"platform/sound/A.h", "#include \"platform/sound/realtime/B.h\"\n"},
                        {"platform/sound/realtime/B.h", "#include \"platform/base/C.h\"\n"},
                        {"platform/base/C.h", ""}};
  EXPECT_THAT(complaintsAboutArrows(tree), IsEmpty());
}

TEST(SourceTree, HeaderIncludedOnTwoWaysIsNoCircle) {
  const SourceTree tree{{"audio/A.h", "#include \"audio/B.h\"\n#include \"audio/C.h\"\n"},
                        {"audio/B.h", "#include \"audio/C.h\"\n"},
                        {"audio/C.h", ""}};
  EXPECT_THAT(complaintsAboutCircles(tree), IsEmpty());
}

TEST(SourceTree, PureFileThatSeesALibraryIsFound) {
  for (const char* library : {"<QString>", "<QtCore/QString>", "<cubeb/cubeb.h>", "<cubeb.h>",
                              "<libavformat/avformat.h>", "\"audio/B.h\""}) {
    const SourceTree tree{{"storage/A.h", "#include " + std::string(library) + "\n"},
                          {"audio/B.h", ""}};
    EXPECT_THAT(complaintsAboutPureFiles(tree, {"storage/A.h"}), SizeIs(1)) << library;
  }
}

TEST(SourceTree, PureFileMaySeeTheSystemAndOtherPureFiles) {
  const SourceTree tree{{"storage/A.h",
                         "#include <vector>\n#include <sys/stat.h>\n#include <unistd.h>\n"
                         "#include \"platform/B.h\"\n"},
                        {"platform/B.h", ""}};
  EXPECT_THAT(complaintsAboutPureFiles(tree, {"storage/A.h", "platform/B.h"}), IsEmpty());
}

TEST(SourceTree, PosixOutsideItsRoomsIsFound) {
  for (const char* const header : {"unistd.h", "sys/stat.h", "pthread.h", "dlfcn.h"}) {
    const std::string include = "#include <" + std::string(header) + ">\n";
    EXPECT_THAT(complaintsAboutPosix({{"storage/A.cpp", include}}), SizeIs(1)) << header;
    EXPECT_THAT(complaintsAboutPosix({{"platform/files/A.cpp", include}}), IsEmpty()) << header;
  }
  EXPECT_THAT(complaintsAboutPosix({{"platform/base/A.cpp", "#include <dlfcn.h>\n"}}), IsEmpty());
  EXPECT_THAT(complaintsAboutPosix({{"platform/base/A.cpp", "#include <unistd.h>\n"}}), SizeIs(1));
  EXPECT_THAT(complaintsAboutPosix({{"storage/A.cpp", "#include <vector>\n"}}), IsEmpty());
}

TEST(SourceTree, SourceThatBelongsToNoHeaderIsFound) {
  const SourceTree tree{{"audio/A.cpp", "#include <vector>\n"},
                        {"audio/B.cpp", "#include \"storage/C.h\"\n"},
                        {"app/main.cpp", ""},
                        {"storage/C.h", ""}};
  EXPECT_THAT(complaintsAboutMissingHeaders(tree),
              ElementsAre(HasSubstr("audio/A.cpp"), HasSubstr("audio/B.cpp")));
}

TEST(SourceTree, SourceThatDoesNotIncludeItsHeaderIsFound) {
  const SourceTree tree{
      {"audio/A.cpp", "#include \"audio/B.h\"\n"}, {"audio/A.h", ""}, {"audio/B.h", ""}};
  EXPECT_THAT(complaintsAboutMissingHeaders(tree), ElementsAre(HasSubstr("audio/A.cpp")));
}

TEST(SourceTree, HeaderMayBeServedBySeveralSources) {
  const std::string include = "#include \"document/Window.h\"\n";
  const SourceTree tree{{"document/Window.h", ""},
                        {"document/Window.cpp", include},
                        {"document/WindowTransport.cpp", include}};
  EXPECT_THAT(complaintsAboutMissingHeaders(tree), IsEmpty());
}

TEST(SourceTree, HeaderWithoutItsGuardIsFound) {
  const SourceTree tree{{"audio/A.h", "// A\n#pragma once\n"}, {"audio/B.h", "#pragma once\n"}};
  EXPECT_THAT(complaintsAboutGuards(tree), ElementsAre(HasSubstr("audio/A.h")));
}

TEST(SourceTree, FilesAreListedBelowTheirFolder) {
  const auto files = readFileList(ORVO_PURE_FILES, kSources);
  for (const std::string& file : files) {
    EXPECT_FALSE(file.starts_with("..")) << file;
  }
}

}  // namespace
}  // namespace structure
