#include "platform/sound/QueueBuffers.h"

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(QueueBuffersTest, RefusesEmptyBuffersBrokenFramesAndTooManyBuffers) {
  QueueBuffers buffers;
  AudioQueueBuffer* buffer = nullptr;
  EXPECT_EQ(buffers.allocate(0, buffer), kInvalidParameterStatus);
  EXPECT_EQ(buffers.allocate(12, buffer), kInvalidParameterStatus);
  EXPECT_EQ(buffer, nullptr);
  for (std::size_t i = 0; i < QueueBuffers::kMaxBuffers; ++i) {
    EXPECT_EQ(buffers.allocate(8, buffer), kAudioStatusOk);
  }
  EXPECT_EQ(buffers.allocate(8, buffer), kInvalidParameterStatus);
}

TEST(QueueBuffersTest, ABufferIsEnqueuedOnceAtATimeAndOnlyInItsOwnQueue) {
  QueueBuffers buffers;
  QueueBuffers others;
  AudioQueueBuffer* buffer = nullptr;
  AudioQueueBuffer* stranger = nullptr;
  ASSERT_EQ(buffers.allocate(16, buffer), kAudioStatusOk);
  ASSERT_EQ(others.allocate(16, stranger), kAudioStatusOk);
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
  AudioQueueBuffer* buffer = nullptr;
  EXPECT_EQ(buffers.smallestFrames(), 0U);
  ASSERT_EQ(buffers.allocate(32768, buffer), kAudioStatusOk);
  ASSERT_EQ(buffers.allocate(8000, buffer), kAudioStatusOk);
  EXPECT_EQ(buffers.smallestFrames(), 1000U);
}

}  // namespace
}  // namespace platform::test
