#include "platform/ffmpeg/AudioFileLength.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AudioFileFixture.h"

namespace platform {
namespace {

class AudioFileLengthTest : public AudioFileFixture {
 protected:
  AudioFileLength told(const std::string& bytes, std::uint64_t size = 0) {
    put(bytes, size);
    const auto demuxer = demux();
    EXPECT_NE(demuxer, nullptr) << error_;
    return demuxer != nullptr ? audioFileLength(*demuxer) : AudioFileLength{.frames = -1};
  }

  // Of a file that tells it.
  std::int64_t length(const std::string& bytes) {
    const AudioFileLength length = told(bytes);
    EXPECT_FALSE(length.isEstimated);
    return length.frames;
  }
};

TEST_F(AudioFileLengthTest, IsExactForEveryKindThatSaysItsLength) {
  constexpr std::size_t kFrames = 50'001;
  for (const auto& [suffix, options] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"wav", {}},
           {"wav", {"-rf64", "always"}},
           {"wav", {"-ac", "1"}},
           {"aiff", {}},
           {"caf", {"-c:a", "pcm_s16le"}},
           {"m4a", {"-c:a", "aac", "-movie_timescale", "44100"}},
           {"m4a", {"-c:a", "alac"}},
           {"mp3", {"-c:a", "libmp3lame"}}}) {
    EXPECT_EQ(length(encoded(suffix, kFrames, options)), std::int64_t{kFrames}) << suffix;
  }
}

TEST_F(AudioFileLengthTest, CountsInFramesOf44100HzRounded) {
  EXPECT_EQ(length(wav(1000, 48'000)), 919) << "918.75";
  EXPECT_EQ(length(wav(1001, 48'000)), 920) << "919.67";
  EXPECT_EQ(length(wav(1000, 8000)), 5513) << "5512.5";
  EXPECT_EQ(length(wav(1000, 192'000)), 230) << "229.69";
  EXPECT_EQ(length(wav(0)), 0);
}

TEST_F(AudioFileLengthTest, IsNeverMoreThanTheFileHolds) {
  for (const std::uint32_t promised : {0U, 1004U, 0x40000000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(length(wavThatPromises(promised, 250)), 250) << promised;
  }
  EXPECT_EQ(length(wavThatPromises(400, 250)), 100) << "what follows are no samples";
}

TEST_F(AudioFileLengthTest, OfABareStreamThatDoesNotTellItIsEstimatedByItsBitRate) {
  constexpr std::int64_t kFrames = 441'000;
  for (const auto& [suffix, options] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"aac", {"-c:a", "aac"}},
           {"mp3", {"-c:a", "libmp3lame", "-write_xing", "0", "-id3v2_version", "0"}}}) {
    const std::string stream = encoded(suffix, kFrames, options);
    const AudioFileLength once = told(stream);
    EXPECT_TRUE(once.isEstimated) << suffix;
    EXPECT_NEAR(static_cast<double>(once.frames) / kFrames, 1.0, 0.2) << suffix;
    const AudioFileLength thrice = told(stream + stream + stream);
    EXPECT_TRUE(thrice.isEstimated) << suffix;
    EXPECT_NEAR(static_cast<double>(thrice.frames) / static_cast<double>(once.frames), 3.0, 0.05)
        << suffix;
  }
}

TEST_F(AudioFileLengthTest, OfAnMp3ThatWasJoinedFromSeveralIsNotThatOfTheFirst) {
  const std::string mp3 = encoded("mp3", 441'000, {"-c:a", "libmp3lame"});
  const AudioFileLength joined = told(mp3 + mp3);
  EXPECT_TRUE(joined.isEstimated);
  EXPECT_NEAR(static_cast<double>(joined.frames) / 882'000, 1.0, 0.05);
}

TEST_F(AudioFileLengthTest, IsToldWithoutReadingTheFile) {
  for (const auto& [suffix, codec] : {std::pair("mp3", "libmp3lame"), std::pair("aac", "aac")}) {
    put(encoded(suffix, 2'000'000, {"-c:a", codec, "-b:a", "320k"}));
    const auto demuxer = demux();
    ASSERT_NE(demuxer, nullptr);
    EXPECT_GT(audioFileLength(*demuxer).frames, 0) << suffix;
    EXPECT_LT(demuxer->bytesRead(), size_ / 4) << suffix;
  }
}

TEST_F(AudioFileLengthTest, NonsenseInAHeaderStaysWithinBounds) {
  constexpr std::int64_t kHighestPlausibleLength = std::int64_t{1} << 51;  // frames
  std::string file = encoded("m4a", 44'100, {"-c:a", "aac"});
  const std::size_t box = file.find("mdhd");
  ASSERT_NE(box, std::string::npos);
  // After the name: version and flags, two dates, the time scale, the duration.
  file.replace(box + 16, 8, std::string("\0\0\0\1\xFF\xFF\xFF\xFE", 8));
  const std::int64_t frames = length(file);
  EXPECT_GE(frames, 0);
  EXPECT_LE(frames, kHighestPlausibleLength);
}

}  // namespace
}  // namespace platform
