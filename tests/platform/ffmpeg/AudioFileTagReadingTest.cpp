#include "platform/ffmpeg/AudioFileTagReading.h"

#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AudioFileFixture.h"
#include "platform/ffmpeg/AvResources.h"
#include "platform/ffmpeg/Ffmpeg.h"

namespace platform {
namespace {

using Texts = std::map<AudioFileTag, std::string>;
using testing::IsEmpty;

class AudioFileTagReadingTest : public AudioFileFixture {
 protected:
  /// The tags of a sound file that ffmpeg makes with these options.
  AudioFileTags read(const std::string& suffix, const std::vector<std::string>& options) {
    put(encoded(suffix, 5000, options));
    return readFile();
  }

  AudioFileTags readFile() {
    const auto demuxer = demux();
    if (demuxer == nullptr) {
      ADD_FAILURE() << "cannot be opened";
      return {};
    }
    return tagsOf(demuxer->container(), demuxer->stream());
  }

  /// A file of sound with a picture that ffmpeg makes.
  AudioFileTags readWithCover(const std::string& suffix, const std::string& picture,
                              std::vector<std::string> options) {
    const support::TemporaryFolder folder;
    picture_ = folder.file("picture." + picture);
    EXPECT_EQ(
        support::ffmpeg({"-f", "lavfi", "-i", "color=red:size=16x16", "-frames:v", "1", picture_}),
        "");
    pictureBytes_ = support::fileBytes(picture_);
    const std::string source = folder.file("source.wav");
    EXPECT_TRUE(support::writeWav(source, support::noise(5000, 1)));
    options.insert(options.begin(),
                   {"-map", "0", "-map", "1", "-c:v", "copy", "-disposition:v", "attached_pic"});
    put(madeBy({"-i", source, "-i", picture_}, suffix, options));
    return readFile();
  }

  std::string picture_;
  std::string pictureBytes_;
};

const std::vector<std::string> kAll{"-metadata", "title=Ein Lied – 歌",
                                    "-metadata", "artist=Käthe & Co",
                                    "-metadata", "album=Album",
                                    "-metadata", "date=2026-11-21",
                                    "-metadata", "comment=Two words",
                                    "-metadata", "genre=Folk",
                                    "-metadata", "track=3"};

const Texts kTexts{{AudioFileTag::title, "Ein Lied – 歌"},
                   {AudioFileTag::artist, "Käthe & Co"},
                   {AudioFileTag::album, "Album"},
                   {AudioFileTag::date, "2026-11-21"},
                   {AudioFileTag::comment, "Two words"},
                   {AudioFileTag::genre, "Folk"},
                   {AudioFileTag::track, "3"}};

TEST_F(AudioFileTagReadingTest, TheTagsOfEveryContainerAreRead) {
  for (const char* const suffix : {"wav", "mp3", "m4a", "caf"}) {
    EXPECT_EQ(read(suffix, kAll).texts, kTexts) << suffix;
  }
  std::vector<std::string> withId3 = kAll;
  withId3.insert(withId3.end(), {"-write_id3v2", "1"});
  EXPECT_EQ(read("aiff", withId3).texts, kTexts);
}

TEST_F(AudioFileTagReadingTest, AFileWithoutTagsHasNone) {
  for (const char* const suffix : {"wav", "aiff", "mp3", "m4a", "caf", "aac"}) {
    EXPECT_EQ(read(suffix, {"-fflags", "+bitexact"}), AudioFileTags()) << suffix;
  }
}

TEST_F(AudioFileTagReadingTest, OfSeveralSoundsTheTextsOfTheOneThatIsReadCount) {
  const AvInput file(avformat_alloc_context());
  ASSERT_NE(file, nullptr);
  for (const char* const title : {"One", "Other"}) {
    AVStream* const stream = avformat_new_stream(file.get(), nullptr);
    ASSERT_NE(stream, nullptr);
    stream->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    av_dict_set(&stream->metadata, "title", title, 0);
  }
  av_dict_set(&file->streams[0]->metadata, "artist", "Someone", 0);
  EXPECT_EQ(tagsOf(*file, *file->streams[0]).texts,
            (Texts{{AudioFileTag::title, "One"}, {AudioFileTag::artist, "Someone"}}));
  EXPECT_EQ(tagsOf(*file, *file->streams[1]).texts, (Texts{{AudioFileTag::title, "Other"}}));
  av_dict_set(&file->metadata, "title", "All", 0);
  EXPECT_EQ(tagsOf(*file, *file->streams[1]).texts, (Texts{{AudioFileTag::title, "All"}}));
}

TEST_F(AudioFileTagReadingTest, NamesThatCafAndAiffHaveOfTheirOwnAreKnown) {
  EXPECT_EQ(read("caf", {"-metadata", "comments=Words", "-metadata", "year=1999", "-metadata",
                         "track number=7"})
                .texts,
            (Texts{{AudioFileTag::comment, "Words"},
                   {AudioFileTag::date, "1999"},
                   {AudioFileTag::track, "7"}}));
  EXPECT_EQ(read("aiff", {"-metadata", "author=Someone", "-metadata", "comment=Words"}).texts,
            (Texts{{AudioFileTag::artist, "Someone"}, {AudioFileTag::comment, "Words"}}));
}

TEST_F(AudioFileTagReadingTest, TextThatIsNotUtf8IsTakenForLatin1) {
  const std::string info = std::string("INFOINAM\x06\0\0\0K\xE4the\0", 18);
  std::string file = wav(100);
  file += std::string("LIST") + static_cast<char>(info.size()) + std::string(3, '\0') + info;
  const auto size = static_cast<std::uint32_t>(file.size() - 8);
  for (std::size_t i = 0; i < 4; ++i) {
    file[4 + i] = static_cast<char>(size >> (8 * i));
  }
  put(file);
  EXPECT_EQ(readFile().texts, (Texts{{AudioFileTag::title, "Käthe"}}));
}

TEST_F(AudioFileTagReadingTest, ACoverIsReadByteForByte) {
  for (const char* const picture : {"jpg", "png"}) {
    for (const char* const suffix : {"mp3", "m4a"}) {
      EXPECT_EQ(readWithCover(suffix, picture, {}).cover, pictureBytes_) << suffix;
    }
    EXPECT_EQ(readWithCover("aiff", picture, {"-write_id3v2", "1"}).cover, pictureBytes_);
  }
}

TEST_F(AudioFileTagReadingTest, APictureOfAnotherKindIsLeftOut) {
  const AudioFileTags tags = readWithCover("mp3", "bmp", {"-metadata", "title=Song"});
  EXPECT_THAT(tags.cover, IsEmpty());
  EXPECT_EQ(tags.texts, (Texts{{AudioFileTag::title, "Song"}}));
}

}  // namespace
}  // namespace platform
