#include "platform/ffmpeg/Mpeg4Edits.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/Mpeg4Boxes.h"

namespace platform {
namespace {

using support::box;
using support::Edit;
using support::number;
using testing::ElementsAre;

constexpr std::uint32_t kMovieUnits = 1000;
constexpr std::uint32_t kMediaUnits = 44'100;
constexpr std::int64_t kToTheEnd = Mpeg4Edits::kToTheEnd;
using Stretch = Mpeg4Edits::Stretch;

class Mpeg4EditsTest : public testing::Test {
 protected:
  static std::string track(std::uint32_t id, std::uint32_t duration, const std::string& edits) {
    const std::string dates(12, '\0');  // with version and flags
    return box("trak", box("tkhd", dates + number(id) + std::string(60, '\0')) + edits +
                           box("mdia", box("mdhd", dates + number(kMediaUnits) + number(duration) +
                                                       std::string(4, '\0'))));
  }
  static std::string movie(const std::string& tracks) {
    const std::string header =
        box("mvhd", std::string(12, '\0') + number(kMovieUnits) + std::string(80, '\0'));
    return box("ftyp", "M4A ") + box("mdat", std::string(100'000, 'x')) +
           box("moov", header + tracks);
  }

  std::optional<std::map<std::uint32_t, Mpeg4Edits>> read(const std::string& bytes) {
    storage_.setBytes(bytes);
    file_ = *storage_.openForReading("a");
    AudioFileView view(*file_, bytes.size());
    return readMpeg4Edits(view);
  }
  // Of one track of ten seconds; nullopt where they cannot be followed.
  std::optional<std::vector<Stretch>> stretches(const std::vector<Edit>& edits) {
    const auto all = read(movie(track(7, 441'000, support::editBox(edits))));
    return all ? std::optional(all->at(7).stretches()) : std::nullopt;
  }

  support::TestUserAudioFiles storage_;
  std::unique_ptr<File> file_;
};

TEST_F(Mpeg4EditsTest, AreThoseOfEachTrackByItsNumber) {
  const auto all =
      read(movie(track(3, 441'000, support::editBox({{1000, 4410}})) + track(4, 441'000, {}) +
                 track(9, 441'000, support::editBox({{2000, 0}}))));
  ASSERT_TRUE(all);
  EXPECT_EQ(all->size(), 2U);
  EXPECT_THAT(all->at(3).stretches(), ElementsAre(Stretch{4410, 48'510}));
  EXPECT_THAT(all->at(9).stretches(), ElementsAre(Stretch{0, 88'200}));
}

TEST_F(Mpeg4EditsTest, ADelayIsLeftOut) {
  EXPECT_THAT(*stretches({{5000, -1}, {1000, 1024}}), ElementsAre(Stretch{1024, 45'124}));
  EXPECT_THAT(*stretches({{5000, -1}}), ElementsAre(Stretch{0, kToTheEnd}));
}

TEST_F(Mpeg4EditsTest, AnEndCloseToThatOfTheMediaIsThatOfTheMedia) {
  EXPECT_THAT(*stretches({{9976, 1024}}), ElementsAre(Stretch{1024, kToTheEnd}));
  EXPECT_THAT(*stretches({{9970, 1024}}), ElementsAre(Stretch{1024, 1024 + 439'677}));
  EXPECT_THAT(*stretches({{99'999, 1024}}), ElementsAre(Stretch{1024, kToTheEnd}));
  EXPECT_THAT(*stretches({{0, 1024}}), ElementsAre(Stretch{1024, kToTheEnd})) << "of a live file";
}

TEST_F(Mpeg4EditsTest, SeveralStretchesAreFollowedIfTheyAreInOrder) {
  EXPECT_THAT(*stretches({{1000, 0}, {1000, 88'200}}),
              ElementsAre(Stretch{0, 44'100}, Stretch{88'200, 132'300}));
  EXPECT_FALSE(stretches({{1000, 88'200}, {1000, 0}})) << "reordered";
  EXPECT_FALSE(stretches({{1000, 0}, {1000, 0}})) << "repeated";
  EXPECT_FALSE(stretches({{1000, 0}, {1000, 44'200}})) << "both within one packet";
  EXPECT_FALSE(stretches({{1000, 0, 0x20000}})) << "at twice the speed";
}

TEST_F(Mpeg4EditsTest, ThePlayedPartOfAPacketAndTheLengthFollow) {
  const Mpeg4Edits edits({{.begin = 100, .end = 200}, {.begin = 9000, .end = kToTheEnd}});
  EXPECT_EQ(edits.playedPart(0, 100), std::nullopt);
  EXPECT_EQ(edits.playedPart(50, 100), (Stretch{100, 150}));
  EXPECT_EQ(edits.playedPart(150, 1000), (Stretch{150, 200}));
  EXPECT_EQ(edits.playedPart(8999, 2), (Stretch{9000, 9001}));
  EXPECT_EQ(edits.lengthOf(10'000), 1100);
  EXPECT_EQ(edits.lengthOf(150), 50);
  EXPECT_FALSE(edits.isOverAt(1'000'000));
  EXPECT_TRUE(Mpeg4Edits({{.begin = 0, .end = 10}}).isOverAt(10));
  EXPECT_EQ(Mpeg4Edits().lengthOf(10'000), 10'000);
  EXPECT_THAT(edits.rescaled({1, 100}, {1, 1000}).stretches(),
              ElementsAre(Stretch{1000, 2000}, Stretch{90'000, kToTheEnd}));
}

TEST_F(Mpeg4EditsTest, WhatIsNoMpeg4OrIsDamagedHasNone) {
  EXPECT_FALSE(read("RIFF and so on, and more"));
  EXPECT_FALSE(read(box("ftyp", "M4A ")));
  const std::string whole = movie(track(1, 441'000, support::editBox({{1000, 4410}})));
  for (std::size_t size = 0; size < whole.size(); size += size < 100'000 ? 997 : 1) {
    static_cast<void>(read(whole.substr(0, size)));  // neither crashes nor hangs
  }
  std::string endless = box("ftyp", "M4A ");
  EXPECT_FALSE(read(endless + number(0) + "free" + std::string(1000, 'x')));
  EXPECT_FALSE(read(endless + number(7) + "free" + std::string(1000, 'x')));
}

}  // namespace
}  // namespace platform
