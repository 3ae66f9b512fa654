#include "platform/ffmpeg/AudioFileTagWriting.h"

#include <array>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/FfmpegLog.h"
#include "platform/ffmpeg/FfmpegMakers.h"
#include "platform/files/UserAudioFiles.h"
#include "support/RawAudio.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/AudioFileTools.h"

namespace platform {
namespace {

using testing::HasSubstr;

struct Kind {
  AudioFileKind kind;
  const char* suffix;
};

constexpr std::array kKinds{Kind{AudioFileKind::wave, "wav"}, Kind{AudioFileKind::aiff, "aiff"},
                            Kind{AudioFileKind::caf, "caf"}, Kind{AudioFileKind::m4a, "m4a"}};

class AudioFileTagWritingTest : public testing::Test {
 protected:
  void SetUp() override { FfmpegLog::install(ConsoleLog); }

  std::string write(const Kind& kind, const AudioFileTags& tags, const std::string& name) {
    const std::string path = folder_.file(name + "." + kind.suffix);
    auto created = createOutput(userAudioFiles()->createForWriting(path), kind.kind, tags);
    EXPECT_EQ(created.status, kAudioStatusOk) << kind.suffix;
    if (created.file != nullptr) {
      EXPECT_EQ(created.file->write(sound_.data(), sound_.size() / 2), kAudioStatusOk);
      EXPECT_EQ(created.file->dispose(), kAudioStatusOk) << kind.suffix;
    }
    return path;
  }

  static AudioFileTags tagsIn(const std::string& path) {
    const auto opened = openInput(*userAudioFiles(), path, nullptr);
    if (opened.file == nullptr) {
      ADD_FAILURE() << path << " cannot be opened";
      return {};
    }
    return opened.file->tags();
  }

  std::string picture(const std::string& suffix) {
    const std::string path = folder_.file("picture." + suffix);
    EXPECT_EQ(
        support::ffmpeg({"-f", "lavfi", "-i", "color=red:size=300x300", "-frames:v", "1", path}),
        "");
    return support::fileBytes(path);
  }

  /// Title to track, and a cover.
  AudioFileTags allTags(const std::string& cover = "jpg") {
    return {.texts = {{AudioFileTag::title, "Ein Lied – 歌"},
                      {AudioFileTag::artist, "Käthe & Co"},
                      {AudioFileTag::album, "Album"},
                      {AudioFileTag::date, "2026-11-21"},
                      {AudioFileTag::comment, "Two words"},
                      {AudioFileTag::genre, "Folk"},
                      {AudioFileTag::track, "3"}},
            .cover = picture(cover)};
  }

  support::InstalledRecordingServices services_;
  support::TemporaryFolder folder_;
  const support::Samples sound_ = support::noise16(100'001, 7);
};

TEST_F(AudioFileTagWritingTest, EveryKindHoldsWhatItCan) {
  for (const char* const cover : {"jpg", "png"}) {
    const AudioFileTags tags = allTags(cover);
    for (const Kind& kind : kKinds) {
      AudioFileTags expected = tags;
      if (!holdsCover(kind.kind)) {
        expected.cover.clear();
      }
      EXPECT_EQ(tagsIn(write(kind, tags, "a")), expected) << kind.suffix;
    }
  }
}

TEST_F(AudioFileTagWritingTest, TheSoundIsTheSameBitForBit) {
  const AudioFileTags tags = allTags();
  for (const Kind& kind : kKinds) {
    const std::string plain = write(kind, {}, "plain");
    const std::string tagged = write(kind, tags, "tagged");
    EXPECT_EQ(support::decodedByFfmpeg(tagged), support::decodedByFfmpeg(plain)) << kind.suffix;
    if (kind.kind != AudioFileKind::m4a) {
      EXPECT_EQ(support::decodedBySox(tagged), sound_) << kind.suffix;
    }
  }
}

TEST_F(AudioFileTagWritingTest, AFileWithoutTagsIsTheSameAsEver) {
  for (const Kind& kind : kKinds) {
    const std::string bytes = support::fileBytes(write(kind, {}, "plain"));
    for (const char* const mark : {"ID3", "INFO", "info", "covr", "NAME"}) {
      EXPECT_EQ(bytes.substr(0, 4096).find(mark), std::string::npos) << kind.suffix << mark;
    }
  }
}

TEST_F(AudioFileTagWritingTest, OtherProgramsReadThem) {
  const AudioFileTags tags = allTags();
  for (const Kind& kind : kKinds) {
    const std::string path = write(kind, tags, "a");
    const std::string list = folder_.file("list.txt");
    ASSERT_EQ(support::ffmpeg({"-i", path, "-f", "ffmetadata", list}), "") << kind.suffix;
    const std::string text = support::fileBytes(list);
    EXPECT_THAT(text, HasSubstr("title=Ein Lied – 歌")) << kind.suffix;
    EXPECT_THAT(text, HasSubstr("artist=Käthe & Co")) << kind.suffix;
    EXPECT_THAT(text, HasSubstr("=2026-11-21")) << kind.suffix;
    if (holdsCover(kind.kind)) {
      const std::string copy = folder_.file("copy.jpg");
      ASSERT_EQ(support::ffmpeg({"-i", path, "-map", "0:v", "-c", "copy", copy}), "");
      EXPECT_EQ(support::fileBytes(copy), tags.cover) << kind.suffix;
    }
  }
}

TEST_F(AudioFileTagWritingTest, AnEmptyFileCanHoldThemToo) {
  const AudioFileTags tags = allTags();
  for (const Kind& kind : kKinds) {
    const std::string path = folder_.file(std::string("empty.") + kind.suffix);
    auto created = createOutput(userAudioFiles()->createForWriting(path), kind.kind, tags);
    ASSERT_NE(created.file, nullptr);
    EXPECT_EQ(created.file->dispose(), kAudioStatusOk) << kind.suffix;
    EXPECT_EQ(tagsIn(path).texts, tags.texts) << kind.suffix;
  }
}

TEST_F(AudioFileTagWritingTest, AiffHasLessRoomForSoundBesideALargeCover) {
  constexpr std::uint64_t kCover = 10'000'000;
  const std::uint64_t without = *ExtAudioFileOutput::maximumFrames(AudioFileKind::aiff);
  const std::uint64_t with = *ExtAudioFileOutput::maximumFrames(AudioFileKind::aiff, kCover);
  EXPECT_EQ(without - with, kCover / 4);
  EXPECT_EQ(*ExtAudioFileOutput::maximumFrames(AudioFileKind::aiff, std::uint64_t{1} << 40), 0U);
  EXPECT_EQ(ExtAudioFileOutput::maximumFrames(AudioFileKind::wave, kCover), std::nullopt);
}

}  // namespace
}  // namespace platform
