#include "document/files/keptByKind.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/programs/AudioFileTools.h"

namespace {

using platform::AudioFileTag;
using platform::AudioFileTags;

class LossOfReplacingTest : public testing::Test {
 protected:
  std::string loss(const std::string& name, const std::string& bytes) {
    EXPECT_TRUE(support::writeBytes(folder_.file(name), bytes));
    return lossOfReplacing(folder_.file(name)).toStdString();
  }

  static std::string wav(std::uint32_t rate, std::uint16_t channels, std::uint16_t bits) {
    return support::wavBytes(rate, channels, bits, std::string(48 * 1000, '\1'));
  }

  /// A file of noise that ffmpeg makes.
  std::string made(const std::string& suffix, const std::vector<std::string>& options) {
    const std::string path = folder_.file("made." + suffix);
    std::vector<std::string> arguments{"-f", "lavfi", "-i", "anoisesrc=d=0.2:r=44100"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(path);
    EXPECT_EQ(support::ffmpeg(arguments), "");
    return support::fileBytes(path);
  }

  support::InstalledRecordingServices services_;
  support::TemporaryFolder folder_;
};

TEST_F(LossOfReplacingTest, NothingIsLostOfAFileThatHasNoMore) {
  EXPECT_EQ(loss("a.wav", wav(44100, 2, 16)), "");
  EXPECT_EQ(loss("b.wav", wav(44100, 1, 8)), "");
  EXPECT_EQ(loss("c.m4a", made("m4a", {"-c:a", "aac"})), "");
}

TEST_F(LossOfReplacingTest, MoreBitsAnotherRateAndMoreChannelsAreNamedEachAlone) {
  EXPECT_EQ(loss("a.wav", wav(44100, 2, 24)),
            "The old file has 24\u00a0bits, the new one only has 16\u00a0bits.");
  EXPECT_EQ(loss("b.wav", wav(48000, 2, 16)),
            "The old file has 48\u00a0kHz, the new one only has 44.1\u00a0kHz.");
  EXPECT_EQ(loss("c.wav", wav(44100, 6, 16)),
            "The old file has 6\u00a0channels, the new one only has 2\u00a0channels.");
  EXPECT_EQ(loss("d.wav", wav(22050, 2, 32)),
            "The old file has 32\u00a0bits and 22.05\u00a0kHz, the new one only has 16\u00a0bits "
            "and 44.1\u00a0kHz.");
}

TEST_F(LossOfReplacingTest, SoundWithoutLossThatBecomesAacIsNamed) {
  EXPECT_EQ(loss("a.m4a", made("m4a", {"-c:a", "alac"})),
            "The old file has lossless sound, the new one only has compressed sound (AAC).");
}

TEST_F(LossOfReplacingTest, WhatIsNoSoundFileOrIsNotThereLosesNothingThatCanBeSaid) {
  EXPECT_EQ(loss("a.wav", "text"), "");
  EXPECT_EQ(lossOfReplacing(folder_.file("missing.wav")), "");
  EXPECT_TRUE(services_->alerts().empty()) << "only a question is asked";
}

TEST(KeptByKindTest, AllTagsAreListedInOneLine) {
  AudioFileTags tags;
  tags.texts = {{AudioFileTag::title, "a"}, {AudioFileTag::album, "b"}, {AudioFileTag::date, "c"}};
  EXPECT_EQ(keptByKind(2, tags), "16 bits, 44.1 kHz, stereo; keeps title, album and date");
  tags.texts = {{AudioFileTag::comment, "a"}};
  EXPECT_EQ(keptByKind(2, tags), "16 bits, 44.1 kHz, stereo; keeps comment");
}

TEST(KeptByKindTest, ACoverThatIsAllAndCannotBeHeldIsNamed) {
  AudioFileTags tags;
  tags.cover = "picture";
  EXPECT_EQ(keptByKind(0, tags), "16 bits, 44.1 kHz, stereo; leaves out the cover");
  EXPECT_EQ(keptByKind(1, tags), "16 bits, 44.1 kHz, stereo; keeps cover");
}

}  // namespace
