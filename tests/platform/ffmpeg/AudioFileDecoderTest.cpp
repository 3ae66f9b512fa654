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
  constexpr std::uint32_t kFrames = 10'000;
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
