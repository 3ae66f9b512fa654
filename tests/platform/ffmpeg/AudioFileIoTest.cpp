#include "platform/ffmpeg/AudioFileIo.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "platform/ffmpeg/Ffmpeg.h"
#include "support/fakes/TestUserAudioFiles.h"

namespace platform {
namespace {

class AudioFileIoTest : public testing::Test {
 protected:
  std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
  DecodingBudget interruption_{cancelled_};
  support::TestUserAudioFiles storage_;
};

TEST_F(AudioFileIoTest, ReadsAndSeeksWithinTheFile) {
  storage_.setBytes("0123456789");
  const auto opened = storage_.openForReading("a");
  const auto io = AudioFileIo::forReading(**opened, opened->size(), interruption_);
  ASSERT_NE(io, nullptr);
  EXPECT_EQ(avio_size(io->context()), 10);
  unsigned char bytes[4];
  EXPECT_EQ(avio_seek(io->context(), 8, SEEK_SET), 8);
  EXPECT_EQ(avio_read(io->context(), bytes, 4), 2);
  EXPECT_EQ(bytes[1], '9');
  EXPECT_EQ(avio_read(io->context(), bytes, 4), AVERROR_EOF);
  EXPECT_EQ(io->firstError(), 0);
}

TEST_F(AudioFileIoTest, ASeekToNowhereIsRefused) {
  storage_.setBytes("0123456789");
  const auto opened = storage_.openForReading("a");
  const auto io = AudioFileIo::forReading(**opened, opened->size(), interruption_);
  constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max();
  AVIOContext* const context = io->context();
  EXPECT_LT(context->seek(context->opaque, -1, SEEK_SET), 0);
  EXPECT_LT(context->seek(context->opaque, kFarthest, SEEK_END), 0);
  EXPECT_LT(context->seek(context->opaque, -11, SEEK_END), 0);
  EXPECT_LT(context->seek(context->opaque, 0, 77), 0);
  EXPECT_EQ(context->seek(context->opaque, -10, SEEK_END), 0);
}

TEST_F(AudioFileIoTest, TheFirstErrorIsKept) {
  storage_.setBytes(std::string(100'000, 'x'));
  storage_.failReadsFrom(70'000);
  const auto opened = storage_.openForReading("a");
  const auto io = AudioFileIo::forReading(**opened, opened->size(), interruption_);
  std::string bytes(100'000, ' ');
  EXPECT_EQ(avio_read(io->context(), reinterpret_cast<unsigned char*>(bytes.data()), 100'000),
            70'000);
  EXPECT_EQ(io->firstError(), AVERROR(EIO));
}

TEST_F(AudioFileIoTest, ACancelEndsTheReadingAndNothingElse) {
  storage_.setBytes(std::string(100'000, 'x'));
  const auto opened = storage_.openForReading("a");
  const auto io = AudioFileIo::forReading(**opened, opened->size(), interruption_);
  unsigned char byte = 0;
  cancelled_->store(true);
  EXPECT_EQ(avio_read(io->context(), &byte, 1), AVERROR_EXIT);
  EXPECT_EQ(storage_.reads(), 0U);
  cancelled_->store(false);
  io->clearInterruption();
  EXPECT_EQ(avio_read(io->context(), &byte, 1), 1);
  EXPECT_EQ(byte, 'x');
  EXPECT_EQ(io->firstError(), 0);
}

TEST_F(AudioFileIoTest, AWriteTakenInPartIsAFailure) {
  const auto created = storage_.createForWriting("a");
  storage_.fillUpAfter(5, ENOSPC);
  const auto io = AudioFileIo::forWriting(**created);
  avio_write(io->context(), reinterpret_cast<const unsigned char*>("0123456789"), 10);
  avio_flush(io->context());
  EXPECT_EQ(io->firstError(), AVERROR(ENOSPC));
  EXPECT_EQ(storage_.bytes(), "01234");
}

TEST_F(AudioFileIoTest, WritesGoWhereASeekLed) {
  const auto created = storage_.createForWriting("a");
  const auto io = AudioFileIo::forWriting(**created);
  avio_write(io->context(), reinterpret_cast<const unsigned char*>("0123456789"), 10);
  avio_seek(io->context(), 2, SEEK_SET);
  avio_write(io->context(), reinterpret_cast<const unsigned char*>("ab"), 2);
  avio_flush(io->context());
  EXPECT_EQ(storage_.bytes(), "01ab456789");
  EXPECT_EQ(io->firstError(), 0);
}

}  // namespace
}  // namespace platform
