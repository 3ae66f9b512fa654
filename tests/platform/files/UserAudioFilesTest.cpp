#include "platform/files/UserAudioFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
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
  const auto opened = userAudioFiles()->openForReading(path);
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened->size(), 5U);
  std::string bytes(5, ' ');
  EXPECT_EQ(opened->readAt(bytes.data(), 5, 0).byteCount, 5U);
  EXPECT_EQ(bytes, "sound");
}

TEST_F(UserAudioFilesTest, WhatIsNoRegularFileIsRefusedAtOnce) {
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(userAudioFiles()->openForReading(pipe).error(), ESPIPE);
  EXPECT_NE(userAudioFiles()->createForWriting(pipe).error(), 0);
  EXPECT_EQ(userAudioFiles()->openForReading("/dev/zero").error(), ESPIPE);
  EXPECT_EQ(userAudioFiles()->createForWriting("/dev/null").error(), ESPIPE);
  EXPECT_EQ(userAudioFiles()->openForReading(folder_.path()).error(), EISDIR);
  EXPECT_EQ(userAudioFiles()->createForWriting(folder_.path()).error(), EISDIR);
  EXPECT_EQ(userAudioFiles()->openForReading(folder_.file("missing")).error(), ENOENT);
  EXPECT_EQ(userAudioFiles()->openForReading({}).error(), ENOENT);
}

TEST_F(UserAudioFilesTest, CreatingEmptiesAFileAndKeepsItsPermissions) {
  const std::string path = folder_.file("a");
  ASSERT_TRUE(support::writeBytes(path, "old"));
  ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
  const auto created = userAudioFiles()->createForWriting(path);
  ASSERT_TRUE(created);
  struct stat information = {};
  ASSERT_EQ(::stat(path.c_str(), &information), 0);
  EXPECT_EQ(information.st_size, 0);
  EXPECT_EQ(information.st_mode & 07777U, 0604U);
}

}  // namespace
}  // namespace platform
