#include "document/editing/OVDocumentAudio.h"

#include <gtest/gtest.h>

#include <vector>

#include "storage/OVBlockBuffer.h"
#include "support/fakes/FailingTemporaryFiles.h"
#include "support/fakes/MemoryTestBuffer.h"

TEST(OVDocumentAudioTest, WithoutABufferEveryLengthIsZero) {
  const OVDocumentAudio audio;
  EXPECT_EQ(audio.buffer(), nullptr);
  EXPECT_EQ(audio.bytesPerFrame(), 0U);
  EXPECT_EQ(audio.sizeInFrames(), 0U);
  EXPECT_EQ(audio.secondsOfFrames(44100), 0.0);
  EXPECT_EQ(audio.fractionOfFrames(10), 0.0);
  EXPECT_EQ(audio.bytesPerSecond(), 0.0);
  EXPECT_EQ(audio.storageFolder(), "");
}

TEST(OVDocumentAudioTest, KnowsTheFolderOfItsTemporaryFileAndWhatASecondTakesThere) {
  support::FailingTemporaryFiles files;
  const platform::Installed<platform::TemporaryFiles>::Scope installation(files);
  OVDocumentAudio audio;
  audio.setBuffer(OVBlockBuffer::init());
  EXPECT_EQ(audio.storageFolder(), "/nowhere");
  EXPECT_DOUBLE_EQ(audio.bytesPerSecond(), 352'800.0);
  audio.setBuffer(std::make_shared<MemoryTestBuffer>());
  EXPECT_EQ(audio.storageFolder(), "") << "audio in memory fills no disk";
}

TEST(OVDocumentAudioTest, LengthsAreThoseOfTheBuffer) {
  const auto buffer = std::make_shared<MemoryTestBuffer>();
  buffer->append(std::vector<float>(2 * 1000));
  OVDocumentAudio audio;
  audio.setBuffer(buffer);
  EXPECT_EQ(audio.buffer(), buffer);
  EXPECT_EQ(audio.bytesPerFrame(), 8U);
  EXPECT_EQ(audio.sizeInFrames(), 1000U);
  EXPECT_DOUBLE_EQ(audio.secondsOfFrames(22050), 0.5);
  EXPECT_DOUBLE_EQ(audio.fractionOfFrames(250), 0.25);
}

TEST(OVDocumentAudioTest, TheMarkerOfAnEmptyBufferIsAtTheStart) {
  OVDocumentAudio audio;
  audio.setBuffer(std::make_shared<MemoryTestBuffer>());
  EXPECT_EQ(audio.fractionOfFrames(5), 0.0);
}
