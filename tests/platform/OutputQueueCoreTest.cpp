#include <thread>

#include "platform/AudioQueueFixture.h"

namespace platform::test {
namespace {

using OutputQueueCoreTest = AudioQueuesTest;

TEST_F(OutputQueueCoreTest, AClipShorterThanARequestIsHeardToItsLastFrame) {
  Playback playback;
  playback.source = ramp(1, 500);
  ASSERT_EQ(playback.make(*queues), kAudioStatusOk);
  playback.prime();
  ASSERT_TRUE(playback.done);
  ASSERT_EQ(playback.queue->start(), kAudioStatusOk);
  ASSERT_TRUE(device->awaitOutputRunning());
  auto expected = playback.source;
  expected.resize(3072 * 2);
  EXPECT_EQ(device->pull(3072), expected);
  std::uint32_t running = 0;
  ASSERT_EQ(playback.queue->isRunning(running), kAudioStatusOk);
  EXPECT_EQ(running, 1U);
  EXPECT_EQ(device->outputsClosed(), 0U);
  device->hear(500);
  ASSERT_TRUE(playback.states.awaitCount(2));
  EXPECT_EQ(playback.states.values(), (std::vector<std::uint32_t>{1, 0}));
  EXPECT_EQ(playback.queue->underrunFrames(), 0U);
}

}  // namespace
}  // namespace platform::test
