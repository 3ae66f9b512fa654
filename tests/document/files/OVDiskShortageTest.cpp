#include "document/files/OVDiskShortage.h"

#include <cerrno>

#include <gmock/gmock.h>
#include <QLocale>

#include "audio/OVAudioFileReader.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/ScriptedFreeSpace.h"
#include "support/programs/Mpeg4Length.h"

namespace {

class OVDiskShortageTest : public testing::Test {
 protected:
  OVDiskShortageTest() { QLocale::setDefault(QLocale::c()); }
  ~OVDiskShortageTest() override { QLocale::setDefault(QLocale::system()); }

  support::TemporaryFolder folder_;
  support::InstalledRecordingServices services_;
  support::InstalledFreeSpace space_;
};

TEST_F(OVDiskShortageTest, IsWhatIsNeededAndWhatIsFree) {
  space_->set(99);
  const auto shortage = shortageOf("/music", 100);
  ASSERT_TRUE(shortage);
  EXPECT_EQ(shortage->folder, "/music");
  EXPECT_EQ(shortage->neededBytes, 100U);
  EXPECT_EQ(shortage->freeBytes, 99U);
  EXPECT_FALSE(shortageOf("/music", 99));
  EXPECT_THAT(space_->folders(), testing::ElementsAre("/music", "/music"));
}

TEST_F(OVDiskShortageTest, IsNoneForNothingToStoreNoFolderOrAnUnknownSpace) {
  space_->set(0);
  EXPECT_FALSE(shortageOf("/music", 0));
  EXPECT_FALSE(shortageOf("", 100));
  space_->fail(EACCES);
  EXPECT_FALSE(shortageOf("/music", 100));
}

TEST_F(OVDiskShortageTest, TheSentenceNamesTheFolderAndBothSizes) {
  const OVDiskShortage shortage{
      .folder = "/media/My\nStick", .neededBytes = 3'810'000'000, .freeBytes = 1'240'000};
  EXPECT_EQ(shortage.sentence().toStdString(),
            "It needs about 3.8 GB, but the disk of the folder “/media/My Stick” has only 1.2 MB "
            "left.");
}

TEST_F(OVDiskShortageTest, SizesThatWouldLookAlikeGetMoreDecimals) {
  const OVDiskShortage shortage{
      .folder = "/a", .neededBytes = 3'812'000'000, .freeBytes = 3'810'900'000};
  EXPECT_THAT(shortage.sentence().toStdString(), testing::HasSubstr("3.812 GB"));
  EXPECT_THAT(shortage.sentence().toStdString(), testing::HasSubstr("3.811 GB"));
}

TEST_F(OVDiskShortageTest, ALengthThatTheFileCannotHaveIsNotBelieved) {
  const std::string path = folder_.file("a.m4a");
  // In fragments: then only the header says how long the whole is.
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "sine=d=1", "-ac", "2", "-ar", "44100", "-c:a",
                             "alac", "-movflags", "empty_moov+frag_keyframe+skip_trailer", path}),
            "");
  space_->set(300'000);
  const auto shortageFor = [&](std::int64_t frames) {
    const auto reader = OVAudioFileReader::initWithFile(path);
    EXPECT_NE(reader, nullptr);
    EXPECT_EQ(reader->fileSizeInFrames(), frames);
    return shortageOfLoading(*reader, path, "/music");
  };
  ASSERT_TRUE(shortageFor(44100));
  ASSERT_TRUE(support::setMpeg4Length(path, 44100, 0x7FFFFFFF));  // half a day in 18 kB
  EXPECT_FALSE(shortageFor(0x7FFFFFFF));
}

TEST_F(OVDiskShortageTest, NothingIsRefusedByAnEstimate) {
  const std::string path = folder_.file("a.aac");
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "sine=d=3", "-c:a", "aac", path}), "");
  space_->set(1000);
  const auto reader = OVAudioFileReader::initWithFile(path);
  ASSERT_NE(reader, nullptr);
  ASSERT_TRUE(reader->isFileSizeEstimated());
  ASSERT_GT(reader->fileSizeInFrames(), 44'100);
  EXPECT_FALSE(shortageOfLoading(*reader, path, "/music"));
}

}  // namespace
