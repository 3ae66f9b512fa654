#include "platform/ffmpeg/AudioFileDemuxer.h"

#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AudioFileFixture.h"
#include "platform/ffmpeg/FfmpegStatus.h"

namespace platform {
namespace {

/// A stream's packets and the error that ended them.
struct Packets {
  std::vector<std::string> data;
  int end = 0;

  [[nodiscard]] std::string joined() const {
    std::string all;
    for (const std::string& each : data) {
      all += each;
    }
    return all;
  }
};

class AudioFileDemuxerTest : public AudioFileFixture {
 protected:
  static bool readOne(AudioFileDemuxer& demuxer, Packets& packets) {
    const AvPacket packet(av_packet_alloc());
    packets.end = demuxer.read(*packet);
    if (packets.end < 0) {
      return false;
    }
    packets.data.emplace_back(reinterpret_cast<const char*>(packet->data),
                              static_cast<std::size_t>(packet->size));
    return true;
  }

  static Packets readAll(AudioFileDemuxer& demuxer) {
    Packets packets;
    while (readOne(demuxer, packets)) {
    }
    return packets;
  }
};

TEST_F(AudioFileDemuxerTest, ThePacketsAreTheSamplesOnceAndInOrder) {
  const std::string sound = rubbish(400'000);
  put(support::wavBytes(44100, 2, 16, sound));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(demuxer->headerEnd(), 44U);
  const Packets packets = readAll(*demuxer);
  EXPECT_TRUE(packets.joined() == sound);
  EXPECT_EQ(packets.end, AVERROR_EOF);
  EXPECT_EQ(readAll(*demuxer).data.size(), 0U) << "the end stays the end";
}

TEST_F(AudioFileDemuxerTest, HalfAFrameAtTheEndIsLeftOut) {
  put(support::wavBytes(44100, 2, 16, std::string(4003, 'x')));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(readAll(*demuxer).joined().size(), 4000U);
}

TEST_F(AudioFileDemuxerTest, EveryContainerIsKnownByItsBytesWhateverItsNameSays) {
  struct Kind {
    std::string suffix;
    std::vector<std::string> options;
    bool mpeg4 = false;
    bool bare = false;
    bool linearPcm = false;
  };
  const std::vector<Kind> kinds{
      {.suffix = "wav", .options = {}, .linearPcm = true},
      {.suffix = "wav", .options = {"-rf64", "always"}, .linearPcm = true},
      {.suffix = "wav", .options = {"-c:a", "adpcm_ima_wav"}},
      {.suffix = "w64", .options = {}, .linearPcm = true},
      {.suffix = "aiff", .options = {}, .linearPcm = true},
      {.suffix = "caf", .options = {"-c:a", "pcm_s16le"}, .linearPcm = true},
      {.suffix = "m4a", .options = {"-c:a", "aac"}, .mpeg4 = true},
      {.suffix = "mp3", .options = {"-c:a", "libmp3lame"}, .bare = true},
      {.suffix = "aac", .options = {"-c:a", "aac"}, .bare = true},
  };
  for (const Kind& kind : kinds) {
    put(encoded(kind.suffix, 20'000, kind.options));
    for (const std::string& path : {"a." + kind.suffix, std::string("a.wav"), std::string("a.mp3"),
                                    std::string("a.m3u"), std::string("a")}) {
      const auto demuxer = demux(path);
      ASSERT_NE(demuxer, nullptr) << kind.suffix << " named " << path;
      EXPECT_EQ(demuxer->isMpeg4(), kind.mpeg4) << kind.suffix << " named " << path;
      EXPECT_EQ(demuxer->isBareStream(), kind.bare) << kind.suffix << " named " << path;
      EXPECT_EQ(demuxer->isLinearPcm(), kind.linearPcm) << kind.suffix << " named " << path;
    }
  }
}

TEST_F(AudioFileDemuxerTest, OtherContainersAndListsOfFilesAreRefused) {
  std::vector<std::string> files{encoded("flac", 20'000),
                                 encoded("ogg", 20'000, {"-c:a", "flac"}),
                                 encoded("mka", 20'000),
                                 encoded("avi", 20'000),
                                 "#EXTM3U\n#EXTINF:1,x\n/etc/passwd\n",
                                 "ffconcat version 1.0\nfile '/etc/passwd'\n"};
  for (const std::string& bytes : files) {
    put(bytes);
    error_ = 0;
    EXPECT_EQ(demux("a.wav"), nullptr) << bytes.substr(0, 4);
    EXPECT_EQ(audioFileStatus(AudioFileStage::opening, error_), kUnsupportedFileTypeStatus)
        << bytes.substr(0, 4);
  }
}

TEST_F(AudioFileDemuxerTest, AFileWithoutSoundSaysSo) {
  put(madeBy({"-f", "lavfi", "-i", "color=c=red:s=16x16:d=0.2"}, "mp4", {"-c:v", "mpeg4"}));
  EXPECT_EQ(demux(), nullptr);
  EXPECT_EQ(error_, AVERROR_STREAM_NOT_FOUND);
}

TEST_F(AudioFileDemuxerTest, PicturesAreLeftOut) {
  put(madeBy({"-f", "lavfi", "-i", "color=c=red:s=16x16:d=1", "-f", "lavfi", "-i", "sine=d=1"},
             "mp4", {"-c:v", "mpeg4", "-c:a", "alac"}));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(demuxer->stream().codecpar->codec_type, AVMEDIA_TYPE_AUDIO);
  const AvPacket packet(av_packet_alloc());
  int packets = 0;
  while (demuxer->read(*packet) >= 0) {
    EXPECT_EQ(packet->stream_index, demuxer->stream().index);
    av_packet_unref(packet.get());
    ++packets;
  }
  EXPECT_EQ(packets, 11) << "a second in packets of 4096 frames";
}

TEST_F(AudioFileDemuxerTest, OfSeveralSoundStreamsTheFilesDefaultIsRead) {
  const std::vector<std::string> sources{"-f", "lavfi", "-i", "sine=d=1:r=32000",
                                         "-f", "lavfi", "-i", "sine=d=1:r=48000"};
  for (const int chosen : {0, 1}) {
    for (const auto& [first, second] : {std::pair("32k", "256k"), std::pair("256k", "32k")}) {
      put(madeBy(
          sources, "mp4",
          {"-map", "0:a", "-map", "1:a", "-c:a", "aac", "-b:a:0", first, "-ac:a:0", "1", "-b:a:1",
           second, "-ac:a:1", "2", "-disposition:a:0", chosen == 0 ? "default" : "0",
           "-disposition:a:1", chosen == 1 ? "default" : "0"}));
      const auto demuxer = demux();
      ASSERT_NE(demuxer, nullptr);
      EXPECT_EQ(demuxer->stream().index, chosen) << first << " before " << second;
      EXPECT_EQ(demuxer->stream().codecpar->sample_rate, chosen == 0 ? 32'000 : 48'000);
      const AvPacket packet(av_packet_alloc());
      while (demuxer->read(*packet) >= 0) {
        EXPECT_EQ(packet->stream_index, chosen);
        av_packet_unref(packet.get());
      }
    }
  }
}

// Lengths

TEST_F(AudioFileDemuxerTest, AWavWhoseLengthHasWrappedIsReadToItsEnd) {
  constexpr std::uint64_t kSound = (std::uint64_t{1} << 32) + 200'000;  // bytes
  put(wavThatPromises(200'000, 1000), 44 + kSound);
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(demuxer->size(), 44 + kSound);
  const AvPacket packet(av_packet_alloc());
  std::uint64_t bytes = 0;
  while (demuxer->read(*packet) >= 0) {
    bytes += static_cast<std::uint64_t>(packet->size);
    av_packet_unref(packet.get());
  }
  EXPECT_EQ(bytes, kSound);
}

TEST_F(AudioFileDemuxerTest, HalfAFrameBehindFullPacketsIsNoPacket) {
  put(support::wavBytes(44100, 2, 16, std::string(2 * 65'536 + 2, 'x')));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  const Packets packets = readAll(*demuxer);
  EXPECT_EQ(packets.joined().size(), 2U * 65'536);
  EXPECT_THAT(packets.data, testing::Each(testing::Not(testing::IsEmpty())));
  EXPECT_EQ(packets.end, AVERROR_EOF);
}

TEST_F(AudioFileDemuxerTest, TheHeaderOfLinearPcmPromisesItsFramesWhetherTheyAreThereOrNot) {
  for (const auto& [bytes, frames] : {std::pair(1000U, 250), std::pair(0x40000000U, 0x10000000),
                                      std::pair(0xFFFFFFF0U, 0x3FFFFFFC)}) {
    put(wavThatPromises(bytes, 250));
    const auto demuxer = demux();
    ASSERT_NE(demuxer, nullptr) << bytes;
    EXPECT_EQ(demuxer->promisedPcmFrames(), frames) << bytes;
  }
}

TEST_F(AudioFileDemuxerTest, ALengthThatWasGuessedByTheFilesSizeIsNotDeclared) {
  put(encoded("aac", 44'100, {"-c:a", "aac"}));
  auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(demuxer->declaredDuration(), 0);
  put(encoded("aiff", 44'100));
  demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_EQ(demuxer->declaredDuration(), 44'100);
  EXPECT_EQ(demuxer->promisedPcmFrames(), 44'100);
}

// Early ends

TEST_F(AudioFileDemuxerTest, ACancelBeforehandOpensNothing) {
  put(wav(1000));
  cancelled_->store(true);
  EXPECT_EQ(demux(), nullptr);
  EXPECT_EQ(error_, AVERROR_EXIT);
  EXPECT_EQ(storage_.reads(), 0U);
}

TEST_F(AudioFileDemuxerTest, ACancelDuringAnEndlessHeaderEndsIt) {
  put(wav(1000), 1ULL << 50);  // every 8 bytes of zeros look like a chunk header
  storage_.beforeReads([this](std::uint64_t number) {
    if (number == 20) {
      cancelled_->store(true);
    }
  });
  EXPECT_EQ(demux(), nullptr);
  EXPECT_EQ(error_, AVERROR_EXIT);
  EXPECT_LE(storage_.reads(), 21U);
}

TEST_F(AudioFileDemuxerTest, ACancelEndsThePackets) {
  put(wav(1'000'000));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  Packets packets;
  ASSERT_TRUE(readOne(*demuxer, packets));
  cancelled_->store(true);
  EXPECT_FALSE(readOne(*demuxer, packets));
  EXPECT_EQ(packets.end, AVERROR_EXIT);
}

TEST_F(AudioFileDemuxerTest, AnEndlessHeaderIsGivenUpWithWhatIsKnown) {
  put(wav(1000), 1ULL << 50);
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  EXPECT_FALSE(interruption_.isDue()) << "no limit is left behind";
  EXPECT_EQ(readAll(*demuxer).joined().size(), 4000U);
}

TEST_F(AudioFileDemuxerTest, AnEndlessSearchForTheNextPacketIsTheEnd) {
  const std::string sound = encoded("mp3", 44'100, {"-c:a", "libmp3lame", "-write_xing", "0"});
  put(sound);
  const auto whole = demux();
  ASSERT_NE(whole, nullptr);
  const std::size_t packets = readAll(*whole).data.size();
  put(sound, 1ULL << 45);
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  const Packets found = readAll(*demuxer);
  EXPECT_EQ(found.end, AVERROR_EOF);
  EXPECT_GE(found.data.size() + 1, packets);
  EXPECT_FALSE(interruption_.isDue()) << "no limit is left behind";
}

// Failing media

TEST_F(AudioFileDemuxerTest, AMediumThatFailsWhileOpeningIsToldAsSuch) {
  for (const std::uint64_t place : {std::uint64_t{0}, std::uint64_t{20}}) {
    put(wav(1000));
    storage_.failReadsFrom(place);
    EXPECT_EQ(demux(), nullptr);
    EXPECT_EQ(error_, AVERROR(EIO)) << "from byte " << place;
  }
}

TEST_F(AudioFileDemuxerTest, AMediumThatFailsLaterIsNotTakenForTheEndOfTheFile) {
  put(wav(1'000'000));
  const auto demuxer = demux();
  ASSERT_NE(demuxer, nullptr);
  storage_.failReadsFrom(2'000'000);
  const Packets packets = readAll(*demuxer);
  EXPECT_EQ(packets.end, AVERROR(EIO));
  EXPECT_GT(packets.joined().size(), 1'900'000U) << "what stands before the place is read";
  EXPECT_LE(packets.joined().size(), 2'000'000U);
}

TEST_F(AudioFileDemuxerTest, SeveralReadTheSameFile) {
  put(encoded("m4a", 100'000, {"-c:a", "aac"}));
  const auto first = demux();
  ASSERT_NE(first, nullptr);
  DecodingBudget other(nullptr);
  const auto second = AudioFileDemuxer::open(*file_, size_, "a", other, error_);
  ASSERT_NE(second, nullptr);
  Packets ofFirst;
  Packets ofSecond;
  while (readOne(*first, ofFirst)) {
    ASSERT_TRUE(readOne(*second, ofSecond));
  }
  EXPECT_FALSE(readOne(*second, ofSecond));
  EXPECT_GT(ofFirst.data.size(), 90U);
  EXPECT_TRUE(ofFirst.data == ofSecond.data);
}

}  // namespace
}  // namespace platform
