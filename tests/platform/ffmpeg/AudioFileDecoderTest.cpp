#include "platform/ffmpeg/AudioFileDecoder.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/ffmpeg/AudioFileFixture.h"
#include "support/programs/Mpeg4Boxes.h"

namespace platform {
namespace {

/// A decoder's output, and why it ended.
struct Decoded {
  std::int64_t frames = 0;
  std::string bytes;  // of the first plane
  int end = 0;
};

class AudioFileDecoderTest : public AudioFileFixture {
 protected:
  std::unique_ptr<AudioFileDecoder> decoder(const std::string& path = "a") {
    return AudioFileDecoder::open(*file_, size_, path, interruption_, error_);
  }

  static void keep(const AVFrame& frame, Decoded& decoded) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const bool sixteenBits = format == AV_SAMPLE_FMT_S16 || format == AV_SAMPLE_FMT_S16P;
    const int frameBytes = (planar ? 1 : frame.ch_layout.nb_channels) * (sixteenBits ? 2 : 4);
    decoded.bytes.append(reinterpret_cast<const char*>(frame.data[0]),
                         static_cast<std::size_t>(frame.nb_samples * frameBytes));
    decoded.frames += frame.nb_samples;
  }

  static Decoded decodeAll(AudioFileDecoder& decoder) {
    Decoded decoded;
    while (const AVFrame* const frame = decoder.next()) {
      keep(*frame, decoded);
    }
    decoded.end = decoder.endError();
    return decoded;
  }

  Decoded decode(const std::string& bytes) {
    put(bytes);
    const auto opened = decoder();
    EXPECT_NE(opened, nullptr) << error_;
    return opened != nullptr ? decodeAll(*opened) : Decoded{};
  }

  /// A CAF with 250 frames of two channels of 16 bits, which declares `frames`, or some fewer.
  static std::string cafThatPromises(std::uint64_t frames) {
    using support::number;
    constexpr std::uint32_t kFrameBytes = 4;
    constexpr std::uint32_t kPacketFrames = 3;  // the more, the longer is what it can declare
    const std::uint64_t bytes = frames / kPacketFrames * kFrameBytes + 4;
    const std::string rate("\x40\xE5\x88\x80\0\0\0\0", 8);  // 44100, as a double
    return std::string("caff\0\1\0\0", 8) + "desc" + number(0) + number(32) + rate + "lpcm" +
           number(2) + number(kFrameBytes) + number(kPacketFrames) + number(2) + number(16) +
           "data" + number(static_cast<std::uint32_t>(bytes >> 32U)) +
           number(static_cast<std::uint32_t>(bytes)) + number(0) + rubbish(250 * kFrameBytes);
  }

  /// MPEG-4 with 250 frames of four channels of 16 bits, which declares `duration` units.
  static std::string mpeg4ThatPromises(std::uint64_t duration, std::uint32_t unitsPerSecond) {
    using support::box;
    using support::number;
    constexpr std::uint32_t kFrames = 250;
    constexpr std::uint32_t kFrameBytes = 8;
    constexpr std::uint32_t kLongestPacket = 0x7FFFFFFF;  // as many as it takes
    const std::string zero = number(0);
    const std::string one = number(1);
    const std::string file =
        box("ftyp", "qt  " + zero) + box("mdat", rubbish(kFrames * kFrameBytes));
    const std::string format = box(
        "sowt", zero + one + zero + zero + number(4U << 16U | 16U) + zero + number(44100U << 16U));
    const std::string table =
        box("stsd", zero + one + format) +
        box("stts", zero + one + number(kLongestPacket) + number(kLongestPacket)) +
        box("stsc", zero + one + one + number(kFrames) + one) +
        box("stsz", zero + number(kFrameBytes) + number(kFrames)) +
        box("stco", zero + one + number(static_cast<std::uint32_t>(file.find("mdat") + 4)));
    const std::string header = number(1U << 24U) + std::string(16, '\0') + number(unitsPerSecond) +
                               number(static_cast<std::uint32_t>(duration >> 32U)) +
                               number(static_cast<std::uint32_t>(duration)) + zero;
    const std::string media = box("mdhd", header) +
                              box("hdlr", zero + zero + "soun" + std::string(13, '\0')) +
                              box("minf", box("stbl", table));
    const std::string track =
        box("tkhd", std::string(12, '\0') + one + std::string(68, '\0')) + box("mdia", media);
    return file +
           box("moov", box("mvhd", std::string(12, '\0') + number(1000) + std::string(84, '\0')) +
                           box("trak", track));
  }

  static std::string damaged(std::string bytes, std::size_t place, std::size_t count) {
    return bytes.replace(place, count, rubbish(count));
  }
};

TEST_F(AudioFileDecoderTest, GivesTheSoundOnceAndStaysAtItsEnd) {
  const std::string sound = rubbish(400'000);
  put(support::wavBytes(44100, 2, 16, sound));
  const auto opened = decoder();
  ASSERT_NE(opened, nullptr);
  EXPECT_TRUE(opened->demuxer().isLinearPcm());
  const Decoded all = decodeAll(*opened);
  EXPECT_TRUE(all.bytes == sound);
  EXPECT_EQ(all.end, 0);
  EXPECT_EQ(opened->next(), nullptr);
  EXPECT_EQ(opened->endError(), 0);
}

TEST_F(AudioFileDecoderTest, LeavesOutTheSilenceThatAnEncoderPutsRoundTheSound) {
  constexpr std::size_t kFrames = 50'001;  // not a whole number of packets
  for (const auto& [suffix, options] :
       std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"m4a", {"-c:a", "aac", "-movie_timescale", "44100"}},
           {"m4a", {"-c:a", "alac"}},
           {"mp3", {"-c:a", "libmp3lame"}}}) {
    const Decoded all = decode(encoded(suffix, kFrames, options));
    EXPECT_EQ(all.frames, std::int64_t{kFrames}) << suffix;
    EXPECT_EQ(all.end, 0) << suffix;
  }
}

TEST_F(AudioFileDecoderTest, LeavesOutPacketsThatCannotBeDecodedAndTellsOfThem) {
  const std::string file = encoded("m4a", 200'000, {"-c:a", "aac", "-movflags", "faststart"});
  const Decoded whole = decode(file);
  ASSERT_EQ(whole.end, 0);
  const Decoded rest = decode(damaged(file, file.size() / 2, 3000));
  EXPECT_EQ(rest.end, AVERROR_INVALIDDATA);
  EXPECT_LE(rest.frames, whole.frames);
  EXPECT_GT(rest.frames, whole.frames * 8 / 10) << "what follows the damage goes on";
}

TEST_F(AudioFileDecoderTest, DecodesADamagedPacketAlikeEveryTime) {
  const std::string file = encoded("mp3", 200'000, {"-c:a", "libmp3lame"});
  const std::string bad = damaged(file, file.size() / 2, 2000);
  const Decoded first = decode(bad);
  const std::vector<std::string> otherMemory(1000, std::string(10'000, 'x'));
  const Decoded second = decode(bad);
  EXPECT_GT(first.frames, 100'000);
  EXPECT_TRUE(first.bytes == second.bytes);
  EXPECT_EQ(first.end, second.end);
}

TEST_F(AudioFileDecoderTest, RubbishBehindABareStreamIsNoDamage) {
  const std::string tag(5000, 't');
  for (const auto& [suffix, codec] : {std::pair("mp3", "libmp3lame"), std::pair("aac", "aac")}) {
    const std::string file = encoded(suffix, 400'000, {"-c:a", codec});
    const Decoded whole = decode(file);
    const Decoded tagged = decode(file + tag);
    EXPECT_EQ(tagged.end, 0) << suffix;
    EXPECT_EQ(tagged.frames, whole.frames) << suffix;
  }
}

// Ends.

TEST_F(AudioFileDecoderTest, ACutOffFileGivesWhatIsThereAndThenTellsOfIt) {
  const std::string file = wav(10'000);
  const Decoded some = decode(file.substr(0, 44 + 4 * 5000 + 2));
  EXPECT_EQ(some.frames, 5000);
  EXPECT_EQ(some.end, AVERROR_INVALIDDATA);
}

TEST_F(AudioFileDecoderTest, LengthsThatStandForUntilTheEndAreNoCut) {
  constexpr std::uint32_t kRounded = 0x10000;  // maximum error of such a length, in bytes
  for (const std::uint32_t bytes :
       {0x7FFFFFFFU, 0x80000000U, 0x80000000U - kRounded, 0x80000000U + kRounded, 0xFFFFFFFFU,
        0xFFFFFFFFU - 44, 0U - kRounded, 0x7F000000U}) {
    const Decoded all = decode(wavThatPromises(bytes, 250));
    EXPECT_EQ(all.frames, 250) << bytes;
    EXPECT_EQ(all.end, 0) << bytes;
  }
  for (const std::uint32_t bytes :
       {0x40000000U, 0x7F000000U - kRounded - 4, 0x80000000U - kRounded - 4,
        0x80000000U + kRounded + 4, 0U - kRounded - 4}) {
    const Decoded all = decode(wavThatPromises(bytes, 250));
    EXPECT_EQ(all.frames, 250) << bytes;
    EXPECT_EQ(all.end, AVERROR_INVALIDDATA) << bytes;
  }
}

TEST_F(AudioFileDecoderTest, ALackOfLessThanATenthOfASecondOfSamplesIsNoCut) {
  constexpr std::uint32_t kFrames = 40'000;
  for (const std::uint32_t rate : {8000U, 44'100U, 192'000U}) {
    const std::string whole = wav(kFrames, rate);
    const Decoded almost = decode(whole.substr(0, whole.size() - (rate / 10 - 1) * 4));
    EXPECT_EQ(almost.frames, kFrames - rate / 10 + 1) << rate;
    EXPECT_EQ(almost.end, 0) << rate;
    const Decoded some = decode(whole.substr(0, whole.size() - rate / 10 * 4));
    EXPECT_EQ(some.frames, kFrames - rate / 10) << rate;
    EXPECT_EQ(some.end, AVERROR_INVALIDDATA) << rate;
  }
}

TEST_F(AudioFileDecoderTest, ALengthThatCannotBeCountedInBytesIsACut) {
  // Its bytes are 2 GiB beyond what 64 bits count, and 2 GiB alone would stand for until the end.
  const Decoded all =
      decode(cafThatPromises((std::uint64_t{1} << 62U) + (std::uint64_t{1} << 29U)));
  EXPECT_EQ(all.frames, 250);
  EXPECT_EQ(all.end, AVERROR_INVALIDDATA);
}

// The sanitizer would tell of sums that overflow.
TEST_F(AudioFileDecoderTest, ALengthThatCannotBeCountedInFramesIsACut) {
  for (const std::uint32_t unitsPerSecond : {44'100U, 1U}) {
    const Decoded all = decode(mpeg4ThatPromises(std::uint64_t{1} << 61U, unitsPerSecond));
    EXPECT_EQ(all.frames, 250) << unitsPerSecond;
    EXPECT_EQ(all.end, AVERROR_INVALIDDATA) << unitsPerSecond;
  }
  const Decoded whole = decode(mpeg4ThatPromises(250, 44'100));
  EXPECT_EQ(whole.frames, 250);
  EXPECT_EQ(whole.end, 0);
}

TEST_F(AudioFileDecoderTest, ACancelEndsItWithoutWhatWasDecodedAhead) {
  put(wav(1'000'000));
  const auto opened = decoder();
  ASSERT_NE(opened, nullptr);
  ASSERT_NE(opened->next(), nullptr);
  cancelled_->store(true);
  EXPECT_EQ(opened->next(), nullptr);
  EXPECT_EQ(opened->endError(), AVERROR_EXIT);
  cancelled_->store(false);
  EXPECT_EQ(opened->next(), nullptr) << "an end is the end";
}

TEST_F(AudioFileDecoderTest, AMediumThatFailsIsToldAfterWhatStandsBeforeThePlace) {
  put(wav(1'000'000));
  const auto opened = decoder();
  ASSERT_NE(opened, nullptr);
  storage_.failReadsFrom(2'000'000);
  const Decoded some = decodeAll(*opened);
  EXPECT_EQ(some.end, AVERROR(EIO));
  EXPECT_GT(some.frames, 470'000);
  EXPECT_LE(some.frames, 500'000);
}

// Failing openings.

TEST_F(AudioFileDecoderTest, WhatCannotBeDemuxedIsNotOpened) {
  put(std::string(3000, 'x'));
  EXPECT_EQ(decoder("a.wav"), nullptr);
  EXPECT_EQ(error_, AVERROR_INVALIDDATA);
  cancelled_->store(true);
  EXPECT_EQ(decoder("a.wav"), nullptr);
  EXPECT_EQ(error_, AVERROR_EXIT);
}

TEST_F(AudioFileDecoderTest, AnEncodingThatNobodyKnowsIsNotOpened) {
  put(support::wavBytes(44100, 2, 16, std::string(4000, 'x'), 0x1234));
  EXPECT_EQ(decoder(), nullptr);
  EXPECT_EQ(error_, AVERROR_DECODER_NOT_FOUND);
}

TEST_F(AudioFileDecoderTest, SeveralThreadsDecodeTheSameFileEachWithItsOwnDecoder) {
  const std::string bytes = encoded("m4a", 100'000, {"-c:a", "aac"});
  const Decoded alone = decode(bytes);
  std::vector<std::future<Decoded>> others;
  for (int i = 0; i < 4; ++i) {
    others.push_back(std::async(std::launch::async, [this] {
      DecodingBudget interruption(nullptr);
      int error = 0;
      const auto own = AudioFileDecoder::open(*file_, size_, "a", interruption, error);
      return own != nullptr ? decodeAll(*own) : Decoded{.frames = 0, .bytes = {}, .end = error};
    }));
  }
  for (std::future<Decoded>& other : others) {
    const Decoded decoded = other.get();
    EXPECT_EQ(decoded.end, 0);
    EXPECT_TRUE(decoded.bytes == alone.bytes);
  }
}

}  // namespace
}  // namespace platform
