#include "platform/files/UserAudioFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "support/fakes/TestUserAudioFiles.h"
#include "support/programs/AudioFileTools.h"

namespace platform {
namespace {

class UserAudioFilesTest : public testing::Test {
 protected:
  support::TemporaryFolder folder_;
};

TEST_F(UserAudioFilesTest, ARegularFileIsOpenedWithItsSize) {
  const std::string path = folder_.file("a");
  ASSERT_TRUE(support::writeBytes(path, "sound"));
  const auto opened = audioFileStorage().openForReading(path);
  ASSERT_NE(opened.file, nullptr);
  EXPECT_EQ(opened.size, 5U);
  std::string bytes(5, ' ');
  EXPECT_EQ(opened.file->readAt(bytes.data(), 5, 0).byteCount, 5U);
  EXPECT_EQ(bytes, "sound");
}

TEST_F(UserAudioFilesTest, WhatIsNoRegularFileIsRefusedAtOnce) {
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(audioFileStorage().openForReading(pipe).error, ESPIPE);
  EXPECT_NE(audioFileStorage().createForWriting(pipe).error, 0);
  EXPECT_EQ(audioFileStorage().openForReading("/dev/zero").error, ESPIPE);
  EXPECT_EQ(audioFileStorage().createForWriting("/dev/null").error, ESPIPE);
  EXPECT_EQ(audioFileStorage().openForReading(folder_.path()).error, EISDIR);
  EXPECT_EQ(audioFileStorage().createForWriting(folder_.path()).error, EISDIR);
  EXPECT_EQ(audioFileStorage().openForReading(folder_.file("missing")).error, ENOENT);
  EXPECT_EQ(audioFileStorage().openForReading({}).error, ENOENT);
}

TEST_F(UserAudioFilesTest, CreatingEmptiesAFileAndKeepsItsPermissions) {
  const std::string path = folder_.file("a");
  ASSERT_TRUE(support::writeBytes(path, "old"));
  ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
  const auto created = audioFileStorage().createForWriting(path);
  ASSERT_NE(created.file, nullptr);
  struct stat information = {};
  ASSERT_EQ(::stat(path.c_str(), &information), 0);
  EXPECT_EQ(information.st_size, 0);
  EXPECT_EQ(information.st_mode & 07777U, 0604U);
}

TEST_F(UserAudioFilesTest, AnotherStorageHoldsForAsLongAsItIsInstalled) {
  support::TestUserAudioFiles other;
  {
    const AudioFileStorageInstallation installation(other);
    EXPECT_EQ(&audioFileStorage(), &other);
  }
  EXPECT_NE(&audioFileStorage(), &other);
}

}  // namespace
}  // namespace platform
