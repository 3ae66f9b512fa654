#include "support/RawAudio.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace support {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(RawAudioTest, NoiseIsTheSameForASeedNeverSilentAndNeverTooLoud) {
  const Samples one = noise(10000, 1);
  EXPECT_EQ(one, noise(10000, 1));
  EXPECT_NE(one, noise(10000, 2));
  EXPECT_EQ(withoutSilence(one), one);
  EXPECT_LE(peak(one), 0.5F);
  EXPECT_GT(peak(one), 0.49F);
}

TEST(RawAudioTest, TuneHasItsLengthAndIsNeverTooLoud) {
  const Samples samples = tune(2.0);
  EXPECT_EQ(samples.size(), 2 * 2 * kFramesPerSecond);
  EXPECT_LE(peak(samples), 0.8F);
  EXPECT_GT(peak(samples), 0.3F);
}

TEST(RawAudioTest, FilesHoldWhatWasWritten) {
  const TemporaryFolder folder;
  const Samples samples = noise(100, 3);
  ASSERT_TRUE(writeRaw(folder.file("raw"), samples));
  EXPECT_EQ(readRaw(folder.file("raw")), samples);
  EXPECT_THAT(readRaw(folder.file("none")), IsEmpty());
  EXPECT_FALSE(writeRaw(folder.path() + "/none/raw", samples));
}

TEST(RawAudioTest, HalfAFrameAtTheEndOfAFileIsLeftOut) {
  const TemporaryFolder folder;
  ASSERT_TRUE(writeRaw(folder.file("raw"), {1.0F, 2.0F, 3.0F}));
  EXPECT_THAT(readRaw(folder.file("raw")), ElementsAre(1.0F, 2.0F));
}

TEST(RawAudioTest, WavHasAHeaderOfFortyFourBytesBeforeItsSamples) {
  const TemporaryFolder folder;
  const Samples samples = noise(10, 4);
  ASSERT_TRUE(writeWav(folder.file("wav"), samples));
  std::ifstream file(folder.file("wav"), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ASSERT_EQ(bytes.size(), 44U + 80U);
  EXPECT_EQ(bytes.substr(0, 4) + bytes.substr(8, 8), "RIFFWAVEfmt ");
  EXPECT_EQ(bytes.substr(36, 4), "data");
  EXPECT_EQ(std::memcmp(bytes.data() + 44, samples.data(), 80), 0);
}

TEST(RawAudioTest, StartIsFoundAtAFrameOnly) {
  const Samples part{1, 2, 3, 4};
  EXPECT_EQ(findStart(part, {0, 0, 1, 2, 3, 4}), 1U);
  EXPECT_EQ(findStart(part, {0, 1, 2, 3, 4, 0}), std::nullopt);
  EXPECT_EQ(findStart(part, {1, 2, 3}), std::nullopt);
  EXPECT_EQ(findStart({}, part), std::nullopt);
  EXPECT_EQ(findStart(part, {9, 1, 2, 3, 4, 0, 1, 2, 3, 4}), 3U);
}

TEST(RawAudioTest, EqualFramesEndAtTheFirstDifference) {
  const Samples part{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(equalFrames(part, {1, 2, 3, 4, 5, 6}, 0), 3U);
  EXPECT_EQ(equalFrames(part, {0, 0, 1, 2, 3, 9, 5, 6}, 1), 1U);
  EXPECT_EQ(equalFrames(part, {1, 2, 3, 4}, 0), 2U);
  EXPECT_EQ(equalFrames(part, {1, 2}, 7), 0U);
}

TEST(RawAudioTest, OnlyFramesThatAreSilentInBothChannelsAreLeftOut) {
  EXPECT_THAT(withoutSilence({0, 0, 1, 0, 0, 0, 0, 2}), ElementsAre(1, 0, 0, 2));
}

}  // namespace
}  // namespace support
