#include <thread>

#include "platform/AudioQueueFixture.h"

namespace platform::test {
namespace {

using InputQueueCoreTest = AudioQueuesTest;

TEST_F(InputQueueCoreTest, IrregularChunksArriveAsWholeBuffersInOrder) {
  Recording recording;
  ASSERT_EQ(recording.begin(*queues), kAudioStatusOk);
  const auto fed = ramp(0, 10 * kRecordFrames);
  std::size_t at = 0;
  std::uint32_t chunk = 1;
  while (at < 10 * kRecordFrames) {
    const auto count = std::min<std::size_t>(chunk, 10 * kRecordFrames - at);
    ASSERT_TRUE(device->feed(&fed[2 * at], static_cast<std::uint32_t>(count)));
    at += count;
    chunk = chunk * 7 % 1103 + 1;
  }
  EXPECT_EQ(recording.queue->capturedFrames(), 10 * kRecordFrames);
  ASSERT_TRUE(recording.endFrames.awaitCount(10));
  EXPECT_EQ(recording.samples(), fed);
  EXPECT_EQ(recording.endFrames.values().front(), kRecordFrames);
  EXPECT_EQ(recording.endFrames.values().back(), 10 * kRecordFrames);
}

}  // namespace
}  // namespace platform::test
