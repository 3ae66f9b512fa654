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

TEST_F(ExtAudioFileInputTest, AnEstimatedLengthIsExactOnceTheEndWasRead) {
  const support::TemporaryFolder folder;
  for (const auto& [name, options] : std::vector<std::pair<std::string, std::vector<std::string>>>{
           {"a.mp3", {"-c:a", "libmp3lame", "-q:a", "4", "-write_xing", "0"}},
           {"a.aac", {"-c:a", "aac"}}}) {
    const std::string path = folder.file(name);
    std::vector<std::string> command{"-f", "lavfi", "-i", "sine=d=1"};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(path);
    ASSERT_EQ(support::ffmpeg(command), "");
    storage_.setBytes(support::fileBytes(path));
    const auto opened = ExtAudioFileInput::openURL(name, nullptr);
    ASSERT_NE(opened.file, nullptr);
    EXPECT_TRUE(opened.file->isLengthEstimated());
    EXPECT_GT(opened.file->fileLengthFrames(), 0);
    std::vector<float> samples(2 * 1000);
    std::int64_t frames = 0;
    while (const std::uint32_t count = opened.file->read(samples.data(), 1000).frames) {
      EXPECT_TRUE(opened.file->isLengthEstimated());
      frames += count;
    }
    EXPECT_FALSE(opened.file->isLengthEstimated()) << name;
    EXPECT_EQ(opened.file->fileLengthFrames(), frames) << name;
    ASSERT_EQ(opened.file->seekToStart(), kAudioStatusOk);
    EXPECT_EQ(opened.file->fileLengthFrames(), frames) << name << " is known from now on";
  }
}

TEST_F(ExtAudioFileInputTest, TheShareReadGrowsToOne) {
  const support::TemporaryFolder folder;
  const std::string path = folder.file("a.aac");
  ASSERT_EQ(support::ffmpeg({"-f", "lavfi", "-i", "anoisesrc=d=20", "-c:a", "aac", path}), "");
  storage_.setBytes(support::fileBytes(path));
  const auto opened = ExtAudioFileInput::openURL("a.aac", nullptr);
  ASSERT_NE(opened.file, nullptr);
  double share = opened.file->shareRead();
  EXPECT_LT(share, 0.5) << "opening does not read the file";
  std::vector<float> samples(2 * 100'000);
  while (opened.file->read(samples.data(), 100'000).frames > 0) {
    EXPECT_GE(opened.file->shareRead(), share);
    share = opened.file->shareRead();
  }
  EXPECT_EQ(opened.file->shareRead(), 1.0);
}

}  // namespace
}  // namespace platform
