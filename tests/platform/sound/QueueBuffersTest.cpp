#include "platform/sound/QueueBuffers.h"

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(QueueBuffersTest, RefusesEmptyBuffersBrokenFramesAndTooManyBuffers) {
  QueueBuffers buffers;
  EXPECT_EQ(buffers.allocate(0).error(), kInvalidParameterStatus);
  EXPECT_EQ(buffers.allocate(12).error(), kInvalidParameterStatus);
  for (std::size_t i = 0; i < QueueBuffers::kMaxBuffers; ++i) {
    EXPECT_TRUE(buffers.allocate(8));
  }
  EXPECT_EQ(buffers.allocate(8).error(), kInvalidParameterStatus);
}

TEST(QueueBuffersTest, ABufferIsEnqueuedOnceAtATimeAndOnlyInItsOwnQueue) {
  QueueBuffers buffers;
  QueueBuffers others;
  AudioQueueBuffer* const buffer = *buffers.allocate(16);
  AudioQueueBuffer* const stranger = *others.allocate(16);
  EXPECT_EQ(buffers.markEnqueued(stranger), kInvalidParameterStatus);
  EXPECT_EQ(buffers.markEnqueued(nullptr), kInvalidParameterStatus);
  EXPECT_EQ(buffers.markEnqueued(buffer), kAudioStatusOk);
  EXPECT_EQ(buffers.markEnqueued(buffer), kInvalidParameterStatus);
  buffers.markReturned(buffer);
  buffer->mAudioDataByteSize = 24;
  EXPECT_EQ(buffers.markEnqueued(buffer), kInvalidParameterStatus);
  buffer->mAudioDataByteSize = 16;
  EXPECT_EQ(buffers.markEnqueued(buffer), kAudioStatusOk);
}

TEST(QueueBuffersTest, SmallestBufferIsGivenInFrames) {
  QueueBuffers buffers;
  EXPECT_EQ(buffers.smallestFrames(), 0U);
  ASSERT_TRUE(buffers.allocate(32768));
  ASSERT_TRUE(buffers.allocate(8000));
  EXPECT_EQ(buffers.smallestFrames(), 1000U);
}

}  // namespace
}  // namespace platform::test
