#include "platform/ffmpeg/AudioFileLength.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AudioFileFixture.h"

namespace platform {
namespace {

class AudioFileLengthTest : public AudioFileFixture {
 protected:
  std::int64_t lengthOf(const AudioFileDemuxer& demuxer) {
    return audioFileLengthFrames(demuxer, *file_, size_, "a", interruption_);
  }

  std::int64_t length(const std::string& bytes, std::uint64_t size = 0) {
    put(bytes, size);
    const auto demuxer = demux();
    EXPECT_NE(demuxer, nullptr) << error_;
    return demuxer != nullptr ? lengthOf(*demuxer) : -1;
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

TEST_F(AudioFileLengthTest, CountsThePacketsOfABareStream) {
  constexpr std::int64_t kPacket = 1024;
  EXPECT_EQ(length(encoded("aac", 50'001, {"-c:a", "aac"})) % kPacket, 0);
  const std::string mp3 =
      encoded("mp3", 44'100, {"-c:a", "libmp3lame", "-write_xing", "0", "-id3v2_version", "0"});
  const std::int64_t once = length(mp3);
  EXPECT_GE(once, 44'100);
  EXPECT_EQ(length(mp3 + mp3 + mp3), 3 * once) << "no header of the first stretch is believed";
}

// Endlessly repeats the same bytes.
class EndlessFile : public File {
 public:
  explicit EndlessFile(std::string bytes, std::uint64_t size)
      : bytes_(std::move(bytes)), size_(size) {}

  FileTransfer readAt(void* destination, std::uint64_t byteCount, std::uint64_t offset) override {
    const std::uint64_t count = offset < size_ ? std::min(byteCount, size_ - offset) : 0;
    for (std::uint64_t done = 0; done < count;) {
      const std::uint64_t from = (offset + done) % bytes_.size();
      const std::uint64_t part = std::min(count - done, bytes_.size() - from);
      std::memcpy(static_cast<char*>(destination) + done, bytes_.data() + from, part);
      done += part;
    }
    return {.byteCount = count, .error = 0};
  }
  FileTransfer writeAt(const void*, std::uint64_t, std::uint64_t) override { return {}; }
  std::uint64_t size() override { return size_; }
  int setSize(std::uint64_t) override { return 0; }

 private:
  const std::string bytes_;
  const std::uint64_t size_;
};

TEST_F(AudioFileLengthTest, EstimatesFromTheCountedShareWhatTakesTooLongToCount) {
  constexpr std::uint64_t kTimes = 3'000'000;  // more than a month of sound
  const std::string mp3 =
      encoded("mp3", 44'100, {"-c:a", "libmp3lame", "-write_xing", "0", "-id3v2_version", "0"});
  const auto once = static_cast<double>(length(mp3));
  size_ = mp3.size() * kTimes;
  file_ = std::make_unique<EndlessFile>(mp3, size_);
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  const auto estimated = static_cast<double>(lengthOf(*demuxer));
  EXPECT_NEAR(estimated / (once * kTimes), 1.0, 0.02);
  EXPECT_FALSE(interruption_.isDue()) << "no limit is left behind";
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

TEST_F(AudioFileLengthTest, TakesNothingAwayFromTheDemuxerBesideIt) {
  put(encoded("mp3", 44'100, {"-c:a", "libmp3lame"}));
  const auto countPackets = [](AudioFileDemuxer& demuxer) {
    const AvPacket packet(av_packet_alloc());
    int packets = 0;
    while (demuxer.read(*packet) >= 0) {
      av_packet_unref(packet.get());
      ++packets;
    }
    return packets;
  };
  const auto alone = demux();
  ASSERT_NE(alone, nullptr);
  const int expected = countPackets(*alone);
  const auto measured = demux();
  ASSERT_NE(measured, nullptr);
  EXPECT_EQ(lengthOf(*measured), 44'100);
  EXPECT_EQ(countPackets(*measured), expected);
  EXPECT_EQ(lengthOf(*measured), 44'100) << "also at its end";
}

TEST_F(AudioFileLengthTest, ACancelEndsTheCount) {
  put(encoded("mp3", 200'000, {"-c:a", "libmp3lame"}));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  const std::uint64_t before = storage_.reads();
  cancelled_->store(true);
  EXPECT_EQ(lengthOf(*demuxer), 0);
  EXPECT_EQ(storage_.reads(), before);
}

TEST_F(AudioFileLengthTest, AMediumThatFailsMeanwhileTellsNothing) {
  put(encoded("mp3", 200'000, {"-c:a", "libmp3lame"}));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  storage_.failReadsFrom(0);
  EXPECT_EQ(lengthOf(*demuxer), 0);
}

}  // namespace
}  // namespace platform
