#include "platform/ffmpeg/HeaderCorrection.h"

#include <cstdint>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace platform {
namespace {

constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
constexpr std::uint64_t kHeader = 44;

std::string little(std::uint32_t value) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes.push_back(static_cast<char>(value >> (8 * i)));
  }
  return bytes;
}

std::string wavHeader(std::uint32_t promised) {
  std::string bytes = support::wavBytes(44100, 2, 16, {});
  return bytes.replace(40, 4, little(promised));
}

class HeaderCorrectionTest : public testing::Test {
 protected:
  // A file that begins and ends with these bytes, with zeros between them.
  AudioFileView& show(const std::string& start, std::uint64_t size, const std::string& end = {}) {
    storage_.setBytes(start, size);
    file_ = *storage_.openForReading("a");
    if (!end.empty()) {
      static_cast<void>(file_->writeAt(end.data(), end.size(), size - end.size()));
    }
    view_ = std::make_unique<AudioFileView>(*file_, size);
    correctHeader(*view_);
    return *view_;
  }

  support::TestUserAudioFiles storage_;
  std::unique_ptr<File> file_;
  std::unique_ptr<AudioFileView> view_;
};

TEST_F(HeaderCorrectionTest, AWavWhoseLengthHasWrappedIsReadToItsEnd) {
  for (const std::uint64_t bytes :
       {4 * kGibibyte + 4, 5 * kGibibyte, 8 * kGibibyte + 400, 13 * kGibibyte}) {
    AudioFileView& view = show(wavHeader(static_cast<std::uint32_t>(bytes)), kHeader + bytes);
    EXPECT_EQ(view.size(), kHeader + bytes);
    EXPECT_EQ(view.peek(36, 8), "data" + std::string(4, '\0')) << "to the end";
  }
}

TEST_F(HeaderCorrectionTest, WhatFollowsTheSamplesOfAWrappedWavIsNoSound) {
  constexpr std::uint64_t kBytes = 5 * kGibibyte;
  const std::string tag = "LIST" + little(26) + std::string(26, 't');
  const AudioFileView& view =
      show(wavHeader(static_cast<std::uint32_t>(kBytes)), kHeader + kBytes + tag.size(), tag);
  EXPECT_EQ(view.size(), kHeader + kBytes);
}

TEST_F(HeaderCorrectionTest, AWavThatIsLongerByAnythingElseIsLeftAsItIs) {
  for (const std::uint64_t size : {kHeader + 1000, kHeader + 5000, 3 * kGibibyte, 8 * kGibibyte}) {
    AudioFileView& view = show(wavHeader(1000), size);
    EXPECT_EQ(view.size(), size);
    EXPECT_EQ(view.peek(36, 8), "data" + little(1000)) << size;
  }
}

TEST_F(HeaderCorrectionTest, AWavWhoseLengthStandsForUntilTheEndIsReadSoFar) {
  constexpr std::uint64_t kSize = 5 * kGibibyte;
  for (const std::uint32_t promised : {0x7FFFFFFFU, 0x7FFFFFDBU, 0xFFFFFFFFU - 44}) {
    AudioFileView& view = show(wavHeader(promised), kSize);
    EXPECT_EQ(view.peek(36, 8), "data" + std::string(4, '\0')) << promised;
    EXPECT_EQ(view.size(), kSize);
  }
  // A good file that happens to be as long.
  const std::string tag = "LIST" + little(2) + "tt";
  constexpr std::uint32_t kHalf = 0x80000000;
  AudioFileView& view = show(wavHeader(kHalf), kHeader + kHalf + tag.size(), tag);
  EXPECT_EQ(view.peek(36, 8), "data" + little(kHalf));
}

TEST_F(HeaderCorrectionTest, IntegersThatDoNotFillTheirBytesCountAsFull) {
  const auto format = [](char tag, char significant) {
    return std::string(
               "RIFF\x3C\0\0\0WAVEfmt \x28\0\0\0\xFE\xFF\2\0\x44\xAC\0\0\0\0\0\0\x08\0\x20\0", 36) +
           std::string("\x16\0", 2) + significant + std::string("\0\3\0\0\0", 5) + tag +
           std::string(15, '\0') + "data" + little(0);
  };
  constexpr std::size_t kSignificant = 38;
  EXPECT_EQ(show(format(1, 24), 1000).peek(kSignificant, 2), std::string("\x20\0", 2));
  EXPECT_EQ(show(format(3, 24), 1000).peek(kSignificant, 2), std::string("\x18\0", 2)) << "floats";
  EXPECT_EQ(show(format(1, 32), 1000).peek(kSignificant, 2), std::string("\x20\0", 2));
}

TEST_F(HeaderCorrectionTest, AnAiffWithoutLengthsIsGivenThoseOfTheFile) {
  const std::string common = std::string("COMM\0\0\0\x12", 8) +
                             std::string("\0\2\0\0\0\0\0\x10", 8) +
                             std::string("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10);
  const std::string start = std::string("FORM\0\0\0\0AIFF", 12) + common +
                            std::string("SSND\0\0\0\0\0\0\0\0\0\0\0\0", 16);
  AudioFileView& view = show(start, start.size() + 400);
  EXPECT_EQ(view.peek(4, 4), std::string("\0\0\x01\xBE", 4)) << "446 bytes follow";
  EXPECT_EQ(view.peek(22, 4), std::string("\0\0\0\x64", 4)) << "100 frames";
  EXPECT_EQ(view.peek(42, 4), std::string("\0\0\x01\x98", 4)) << "408 bytes";
}

TEST_F(HeaderCorrectionTest, WhatIsNeitherWavNorAiffIsLeftAsItIs) {
  for (const std::string& start :
       {std::string("ID3"), std::string(100, '\0'), "RF64" + wavHeader(400).substr(4),
        std::string("FORM1234AIFF")}) {
    AudioFileView& view = show(start, 6 * kGibibyte);
    EXPECT_EQ(view.size(), 6 * kGibibyte);
    EXPECT_EQ(view.peek(0, start.size()), start);
  }
}

}  // namespace
}  // namespace platform
