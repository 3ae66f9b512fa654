#include "platform/media/ExtAudioFileOutput.h"

#include <cerrno>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/media/ExtAudioFileInput.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace platform {
namespace {

class ExtAudioFileOutputTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
  support::TestUserAudioFiles storage_;
  Installed<UserAudioFiles>::Scope installation_{storage_};
};

TEST_F(ExtAudioFileOutputTest, EveryKindBeginsAsItShould) {
  const std::vector<float> frames(2 * 5000, 0.1F);
  const auto bytesOf = [&](AudioFileKind kind) {
    auto created = ExtAudioFileOutput::createWithURL("a", kind);
    EXPECT_EQ(created.status, kAudioStatusOk);
    EXPECT_EQ(created.file->write(frames.data(), 5000), kAudioStatusOk);
    EXPECT_EQ(created.file->dispose(), kAudioStatusOk);
    return storage_.bytes();
  };
  const std::string wave = bytesOf(AudioFileKind::wave);
  EXPECT_EQ(wave.substr(0, 4), "RIFF");
  // Room for the 64-bit sizes of a file beyond 4 GB.
  EXPECT_EQ(wave.substr(12, 4), "JUNK");
  EXPECT_NE(wave.find("data"), std::string::npos);
  const std::string aiff = bytesOf(AudioFileKind::aiff);
  EXPECT_EQ(aiff.substr(0, 4) + aiff.substr(8, 4), "FORMAIFF");
  EXPECT_EQ(bytesOf(AudioFileKind::caf).substr(0, 4), "caff");
  EXPECT_EQ(bytesOf(AudioFileKind::m4a).substr(4, 8), "ftypM4A ");
}

TEST_F(ExtAudioFileOutputTest, TheSameSoundGivesTheSameBytes) {
  const std::vector<float> frames(2 * 5000, 0.1F);
  std::string first;
  for (int i = 0; i < 2; ++i) {
    auto created = ExtAudioFileOutput::createWithURL("a", AudioFileKind::m4a);
    ASSERT_EQ(created.file->write(frames.data(), 5000), kAudioStatusOk);
    ASSERT_EQ(created.file->dispose(), kAudioStatusOk);
    if (i == 0) {
      first = storage_.bytes();
    }
  }
  EXPECT_EQ(storage_.bytes(), first);
}

TEST_F(ExtAudioFileOutputTest, TheFirstFailureStays) {
  auto created = ExtAudioFileOutput::createWithURL("a", AudioFileKind::wave);
  ASSERT_NE(created.file, nullptr);
  const std::vector<float> frames(2 * 500'000, 0.1F);
  storage_.fillUpAfter(100, ENOSPC);
  EXPECT_EQ(created.file->write(frames.data(), 500'000), kDiskFullStatus);
  storage_.fillUpAfter(support::TestUserAudioFiles::kUnlimited);
  const std::uint64_t size = storage_.size();
  EXPECT_EQ(created.file->write(frames.data(), 500'000), kDiskFullStatus);
  EXPECT_EQ(created.file->dispose(), kDiskFullStatus);
  EXPECT_EQ(created.file->dispose(), kDiskFullStatus);
  EXPECT_EQ(storage_.size(), size);
}

TEST_F(ExtAudioFileOutputTest, FramesThatAiffCannotHoldAreRefusedBeforeTheyAreWritten) {
  auto created = ExtAudioFileOutput::createWithURL("a", AudioFileKind::aiff);
  ASSERT_NE(created.file, nullptr);
  const std::vector<float> frames(2 * 100, 0.1F);
  ASSERT_EQ(created.file->write(frames.data(), 100), kAudioStatusOk);
  // Refused for the number alone: the frames are not read.
  const std::uint64_t most = *ExtAudioFileOutput::maximumFrames(AudioFileKind::aiff);
  EXPECT_EQ(created.file->write(frames.data(), most - 99), kFileTooLargeStatus);
  EXPECT_EQ(created.file->dispose(), kFileTooLargeStatus);
  EXPECT_LT(storage_.size(), 100'000U);
}

TEST_F(ExtAudioFileOutputTest, OnlyTheWorkingFormatIsTaken) {
  auto created = ExtAudioFileOutput::createWithURL("a", AudioFileKind::caf);
  ASSERT_NE(created.file, nullptr);
  EXPECT_EQ(created.file->setClientDataFormat(kWorkingFormat), kAudioStatusOk);
  AudioStreamBasicDescription other = kWorkingFormat;
  other.mSampleRate = 48'000;
  EXPECT_EQ(created.file->setClientDataFormat(other), kInvalidParameterStatus);
}

TEST_F(ExtAudioFileOutputTest, AfterItsEndNothingIsTaken) {
  auto created = ExtAudioFileOutput::createWithURL("a", AudioFileKind::caf);
  const std::vector<float> frames(2 * 100, 0.1F);
  ASSERT_EQ(created.file->dispose(), kAudioStatusOk);
  EXPECT_NE(created.file->write(frames.data(), 100), kAudioStatusOk);
  EXPECT_EQ(created.file->dispose(), kAudioStatusOk);
}

}  // namespace
}  // namespace platform
