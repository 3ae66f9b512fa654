#include "audio/AudioFileFailure.h"

#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/media/AudioFileStatus.h"
#include "support/ClosedFolder.h"
#include "support/TemporaryFolder.h"

namespace {

using testing::HasSubstr;

const std::vector<platform::AudioStatus>& statuses() {
  static const std::vector<platform::AudioStatus> all{platform::kFileNotFoundStatus,
                                                      platform::kFilePermissionStatus,
                                                      platform::kFolderStatus,
                                                      platform::kNotARegularFileStatus,
                                                      platform::kEmptyFileStatus,
                                                      platform::kBadFileNameStatus,
                                                      platform::kNoAudioStatus,
                                                      platform::kUnsupportedDataFormatStatus,
                                                      platform::kUnsupportedFileTypeStatus,
                                                      platform::kInvalidFileStatus,
                                                      platform::kDiskFullStatus,
                                                      platform::kFileTooLargeStatus,
                                                      platform::kFileInputOutputStatus,
                                                      platform::kTooManyOpenFilesStatus,
                                                      platform::kOutOfMemoryStatus,
                                                      -1};
  return all;
}

TEST(AudioFileFailureTest, EveryStatusIsASentenceWithTheFilesName) {
  for (const platform::AudioStatus status : statuses()) {
    for (const auto& reason :
         {openingFailureReason(status, "/a/b.wav"), readingFailureReason(status, "/a/b.wav"),
          writingFailureReason(status, "/a/b.wav")}) {
      EXPECT_THAT(reason, HasSubstr("“b.wav”"));
      EXPECT_EQ(reason.back(), '.');
      EXPECT_EQ(reason.find("%1"), std::string::npos);
    }
  }
}

TEST(AudioFileFailureTest, WhatCanBeMetWhileOpeningHasASentenceOfItsOwn) {
  std::set<std::string> sentences;
  for (std::size_t i = 0; i < 8; ++i) {
    sentences.insert(openingFailureReason(statuses()[i], "a"));
  }
  EXPECT_EQ(sentences.size(), 8U);
}

TEST(AudioFileFailureTest, AFolderThatIsClosedIsNamedAndNoOther) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("song.wav");
  EXPECT_THAT(writingFailureReason(platform::kFilePermissionStatus, path),
              HasSubstr("You are not allowed to write “song.wav”."))
      << "the file alone may be read-only";
  const support::ClosedFolder closed(folder.path());
  EXPECT_EQ(
      writingFailureReason(platform::kFilePermissionStatus, path),
      "You may not write in the folder " + shownFileName(folder.path()) + ". Choose another.");
  EXPECT_THAT(writingFailureReason(platform::kDiskFullStatus, path), HasSubstr("“song.wav”"));
  EXPECT_THAT(writingFailureReason(platform::kFilePermissionStatus, "song.wav"),
              HasSubstr("“song.wav”"))
      << "a mere name";
}

TEST(AudioFileFailureTest, TheShownNameIsTheLastComponent) {
  EXPECT_EQ(shownFileName("/music/song.wav"), "“song.wav”");
  EXPECT_EQ(shownFileName("song.wav"), "“song.wav”");
  EXPECT_EQ(shownFileName("/music/folder/"), "“folder”");
  EXPECT_EQ(shownFileName("/"), "“/”");
  EXPECT_EQ(shownFileName(""), "“”");
}

TEST(AudioFileFailureTest, WhatDoesNotPrintIsShownAsASpaceOrAReplacement) {
  EXPECT_EQ(shownFileName("a\nb\tc\x7F.wav"), "“a b c .wav”");
  EXPECT_EQ(shownFileName("a\u202Eb\u2028c.wav"), "“a b c.wav”");
  EXPECT_EQ(shownFileName("a\xFF.wav"), "“a\uFFFD.wav”");
  EXPECT_EQ(shownFileName("歌 Größe.wav"), "“歌 Größe.wav”");
}

TEST(AudioFileFailureTest, AWholePathIsShownInTheSameForm) {
  EXPECT_EQ(shownPath("/music/My\nfolder"), "“/music/My folder”");
  EXPECT_EQ(shownPath("/"), "“/”");
}

TEST(AudioFileFailureTest, APlaceholderInANameIsLeftAlone) {
  EXPECT_THAT(openingFailureReason(platform::kEmptyFileStatus, "%1%2 %s.wav"),
              testing::StrEq("“%1%2 %s.wav” is empty."));
}

}  // namespace
