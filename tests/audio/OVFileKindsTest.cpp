#include "audio/OVFileKinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "audio/OVAudioFileWriter.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int32_t kNone = -1;

TEST(OVFileKindsTest, PanelsOfferTheReadableSuffixesInTheirOrder) {
  EXPECT_THAT(readableFileTypes(),
              ElementsAre("caf", "aif", "aiff", "wav", "mp3", "mp4", "m4a", "m4r", "aac"));
}

TEST(OVFileKindsTest, WritableKindsAreThoseOfTheWriterInItsOrder) {
  std::vector<std::pair<std::uint32_t, std::string>> kinds;
  for (const OVFileKind& kind : writableFileKinds()) {
    kinds.emplace_back(static_cast<std::uint32_t>(kind.type), kind.title.english());
    EXPECT_EQ(fileKindOfType(kind.type), &kind);
  }
  EXPECT_THAT(kinds, ElementsAre(std::pair(OVAudioFileWriter::kWave, std::string("WAV")),
                                 std::pair(OVAudioFileWriter::kAiff, std::string("AIFF")),
                                 std::pair(OVAudioFileWriter::kCaf, std::string("CAF")),
                                 std::pair(OVAudioFileWriter::kAac, std::string("AAC"))));
  EXPECT_EQ(fileKindOfType(kNone), nullptr);
  EXPECT_EQ(fileKindOfType(4), nullptr);
}

TEST(OVFileKindsTest, SuffixesOfAKindBeginWithTheUsualOne) {
  EXPECT_THAT(suffixesOfType(0), ElementsAre("wav"));
  EXPECT_THAT(suffixesOfType(1), ElementsAre("aiff", "aif"));
  EXPECT_THAT(suffixesOfType(2), ElementsAre("caf"));
  EXPECT_THAT(suffixesOfType(3), ElementsAre("m4a", "mp4"));
  EXPECT_THAT(suffixesOfType(kNone), IsEmpty());
  EXPECT_THAT(suffixesOfType(4), IsEmpty());
}

TEST(OVFileKindsTest, EverySuffixOfAKindNamesItInAnyCase) {
  for (const OVFileKind& kind : writableFileKinds()) {
    for (const std::string& suffix : suffixesOfType(kind.type)) {
      EXPECT_EQ(fileTypeOfPath("/a/take." + suffix), kind.type) << suffix;
    }
  }
  EXPECT_EQ(fileTypeOfPath("TAKE.AiFf"), 1);
}

TEST(OVFileKindsTest, OtherNamesAreOfNoKindThatCanBeWritten) {
  for (const char* path : {"a.mp3", "a.m4r", "a.aac", "a.flac", "a.wav.txt", "a.", "wav", ".wav",
                           "", "/wav/a", "a.wa", "a.wavv", "a.w\xC4v"}) {
    EXPECT_EQ(fileTypeOfPath(path), kNone) << path;
  }
}

TEST(OVFileKindsTest, MimeTypesFollowTheSuffix) {
  const std::vector<std::pair<std::string, std::string>> types{{"a.caf", "audio/x-caf"},
                                                               {"a.aif", "audio/x-aiff"},
                                                               {"a.aiff", "audio/x-aiff"},
                                                               {"a.wav", "audio/x-wav"},
                                                               {"a.mp3", "audio/mpeg"},
                                                               {"a.mp4", "video/mp4"},
                                                               {"a.m4a", "audio/mp4"},
                                                               {"a.m4r", "audio/x-m4r"},
                                                               {"a.aac", "audio/aac"},
                                                               {"/b/a.AAC", "audio/aac"},
                                                               {"a.flac", ""},
                                                               {"wav", ""},
                                                               {"a.", ""},
                                                               {"a.wav.txt", ""}};
  for (const auto& [path, type] : types) {
    EXPECT_EQ(mimeTypeOfPath(path), type) << path;
  }
}

TEST(OVFileKindsTest, DesktopEntryListsEveryMimeType) {
  std::ifstream file(ORVO_DESKTOP_ENTRY);
  const std::string entry{std::istreambuf_iterator<char>(file), {}};
  const auto begin = entry.find("MimeType=");
  ASSERT_NE(begin, std::string::npos);
  std::string types = entry.substr(begin, entry.find('\n', begin) - begin);
  types.replace(0, std::string("MimeType=").size(), ";");
  for (const std::string& suffix : readableFileTypes()) {
    EXPECT_THAT(types, HasSubstr(";" + mimeTypeOfPath("a." + suffix) + ";")) << suffix;
  }
}

TEST(OVFileKindsTest, NamesLoseTheirFolderAndTheirLastSuffix) {
  EXPECT_EQ(lastPathComponent("/a/b.c.wav"), "b.c.wav");
  EXPECT_EQ(lastPathComponent("b.wav"), "b.wav");
  EXPECT_EQ(nameWithoutSuffix("/a/b.c.wav"), "b.c");
  EXPECT_EQ(nameWithoutSuffix("/a.b/c"), "c");
}

}  // namespace
