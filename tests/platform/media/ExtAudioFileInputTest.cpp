#include "platform/media/ExtAudioFileInput.h"

#include <atomic>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace platform {
namespace {

class ExtAudioFileInputTest : public testing::Test {
 protected:
  support::InstalledRecordingServices services_;
  support::TestUserAudioFiles storage_;
  Installed<UserAudioFiles>::Scope installation_{storage_};
};

TEST_F(ExtAudioFileInputTest, TheFilesOwnFormatIsTold) {
  storage_.setBytes(support::wavBytes(48'000, 1, 24, std::string(3000, 'x')));
  const auto opened = ExtAudioFileInput::openURL("a.wav", nullptr);
  ASSERT_NE(opened.file, nullptr);
  const AudioStreamBasicDescription format = opened.file->fileDataFormat();
  EXPECT_EQ(format.mSampleRate, 48'000);
  EXPECT_EQ(format.mFormatID, kLinearPcmFormat);
  EXPECT_EQ(format.mChannelsPerFrame, 1U);
  EXPECT_EQ(format.mBitsPerChannel, 24U);
  EXPECT_EQ(format.mBytesPerFrame, 3U);
}

TEST_F(ExtAudioFileInputTest, AnEncodedFilesFormatHasItsIdentifier) {
  const support::TemporaryFolder folder;
  for (const auto& [name, codec, identifier] :
       std::vector<std::tuple<std::string, std::string, std::uint32_t>>{
           {"a.mp3", "libmp3lame", fourCharacterCode(".mp3")},
           {"a.m4a", "aac", fourCharacterCode("aac ")},
           {"b.m4a", "alac", fourCharacterCode("alac")}}) {
    const std::string path = folder.file(name);
    ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "sine=d=0.2", "-c:a", codec, path}), "");
    storage_.setBytes(support::fileBytes(path));
    const auto opened = ExtAudioFileInput::openURL(name, nullptr);
    ASSERT_NE(opened.file, nullptr);
    EXPECT_EQ(opened.file->fileDataFormat().mFormatID, identifier);
    EXPECT_EQ(opened.file->fileDataFormat().mSampleRate, 44'100);
  }
}

TEST_F(ExtAudioFileInputTest, OnlyTheWorkingFormatCanBeAskedFor) {
  storage_.setBytes(support::wavBytes(44'100, 2, 16, std::string(400, 'x')));
  const auto opened = ExtAudioFileInput::openURL("a.wav", nullptr);
  ASSERT_NE(opened.file, nullptr);
  AudioStreamBasicDescription format = kWorkingFormat;
  EXPECT_EQ(opened.file->setClientDataFormat(format), kAudioStatusOk);
  format.mReserved = 7;
  EXPECT_EQ(opened.file->setClientDataFormat(format), kAudioStatusOk);
  format.mChannelsPerFrame = 1;
  EXPECT_EQ(opened.file->setClientDataFormat(format), kInvalidParameterStatus);
}

TEST_F(ExtAudioFileInputTest, EveryCallTellsACancel) {
  storage_.setBytes(support::wavBytes(44'100, 2, 16, std::string(400'000, 'x')));
  const auto cancelled = std::make_shared<std::atomic<bool>>(false);
  const auto opened = ExtAudioFileInput::openURL("a.wav", cancelled);
  ASSERT_NE(opened.file, nullptr);
  cancelled->store(true);
  std::vector<float> frames(2000);
  EXPECT_EQ(opened.file->read(frames.data(), 1000).status, kCancelledStatus);
  EXPECT_EQ(opened.file->seekToStart(), kCancelledStatus);
  EXPECT_EQ(ExtAudioFileInput::openURL("a.wav", cancelled).status, kCancelledStatus);
}

TEST_F(ExtAudioFileInputTest, AnMp3TooLongToBeCountedHasAnEstimatedLength) {
  // A second of sound, then endless zeros: only a share of the file is counted.
  const support::TemporaryFolder folder;
  const std::string path = folder.file("a.mp3");
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "sine=d=1", "-c:a", "libmp3lame", path}), "");
  storage_.setBytes(support::fileBytes(path), 1ULL << 45);
  const auto opened = ExtAudioFileInput::openURL("a.mp3", nullptr);
  ASSERT_NE(opened.file, nullptr);
  EXPECT_GE(opened.file->fileLengthFrames(), 44'100);
}

}  // namespace
}  // namespace platform
