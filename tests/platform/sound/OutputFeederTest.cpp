#include "platform/sound/OutputFeeder.h"

#include <thread>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

class OutputFeederTest : public testing::Test {
 protected:
  AudioQueueBuffer* push(std::uint64_t first, std::uint32_t frames) {
    AudioQueueBuffer* const buffer = *buffers_.allocate(std::max(frames, 1U) * 8);
    const auto samples = ramp(first, frames);
    std::copy(samples.begin(), samples.end(), reinterpret_cast<float*>(buffer->mAudioData));
    buffer->mAudioDataByteSize = frames * 8;
    feeder_.push(buffer);
    return buffer;
  }
  std::vector<float> fill(std::uint32_t frames) {
    std::vector<float> samples(std::size_t{frames} * 2, -77);
    feeder_.fill(samples.data(), frames);
    return samples;
  }

  QueueBuffers buffers_;
  OutputFeeder feeder_;
};

TEST_F(OutputFeederTest, RequestsOfAnySizeRunThroughTheBuffersWithoutAGap) {
  for (std::uint64_t i = 0; i < 5; ++i) {
    push(i * 10, 10);
  }
  std::vector<float> all;
  for (const std::uint32_t frames : {1U, 3U, 17U, 29U}) {
    const auto part = fill(frames);
    all.insert(all.end(), part.begin(), part.end());
  }
  EXPECT_EQ(all, ramp(0, 50));
  EXPECT_TRUE(feeder_.isAllTaken());
  EXPECT_EQ(feeder_.realEndFrame(), 50U);
}

TEST_F(OutputFeederTest, ABufferComesBackWithItsLastFrameAndNotBefore) {
  auto* first = push(0, 10);
  auto* second = push(10, 10);
  fill(9);
  EXPECT_EQ(feeder_.popTaken(), nullptr);
  fill(1);
  EXPECT_EQ(feeder_.popTaken(), first);
  EXPECT_FALSE(feeder_.isAllTaken());
  fill(15);
  EXPECT_EQ(feeder_.popTaken(), second);
  EXPECT_EQ(feeder_.popTaken(), nullptr);
}

TEST_F(OutputFeederTest, AnEmptyBufferComesBackAtOnce) {
  auto* empty = push(0, 0);
  fill(1);
  EXPECT_EQ(feeder_.popTaken(), empty);
}

TEST_F(OutputFeederTest, SilenceFillsTheRestAndIsCountedFromTheFirstDataOn) {
  EXPECT_EQ(fill(5), std::vector<float>(10, 0));
  EXPECT_EQ(feeder_.underrunFrames(), 0U);
  push(1, 8);
  EXPECT_EQ(fill(5), ramp(1, 5));
  auto expected = ramp(6, 3);
  expected.resize(10);
  EXPECT_EQ(fill(5), expected);
  EXPECT_EQ(feeder_.underrunFrames(), 2U);
  EXPECT_EQ(feeder_.realEndFrame(), 13U);
  EXPECT_EQ(feeder_.givenFrames(), 15U);
  feeder_.beginDraining();
  fill(5);
  EXPECT_EQ(feeder_.underrunFrames(), 2U);
  EXPECT_EQ(feeder_.realEndFrame(), 13U);
}

TEST_F(OutputFeederTest, AFirstRequestForMoreThanThereIsHasItsSilenceBeforeTheFirstFrame) {
  push(1, 3);
  std::vector<float> expected(4, 0);
  const auto first = ramp(1, 3);
  expected.insert(expected.end(), first.begin(), first.end());
  EXPECT_EQ(fill(5), expected);
  push(4, 7);
  EXPECT_EQ(fill(5), ramp(4, 5)) << "the audio goes on without a gap";
  EXPECT_EQ(feeder_.underrunFrames(), 0U);
  EXPECT_EQ(feeder_.realEndFrame(), 10U);
}

TEST_F(OutputFeederTest, AShortClipWhoseEndIsKnownBeginsAtOnce) {
  push(1, 3);
  feeder_.beginDraining();
  auto expected = ramp(1, 3);
  expected.resize(10);
  EXPECT_EQ(fill(5), expected);
  EXPECT_EQ(feeder_.realEndFrame(), 3U);
}

TEST_F(OutputFeederTest, ClosedGivesSilenceAndReturnsNothing) {
  push(1, 10);
  fill(2);
  feeder_.close();
  buffers_.clear();  // a read would touch freed memory
  EXPECT_EQ(fill(20), std::vector<float>(40, 0));
  EXPECT_EQ(feeder_.popTaken(), nullptr);
  EXPECT_EQ(feeder_.underrunFrames(), 0U);
}

TEST_F(OutputFeederTest, ClosingWhileTheDeviceAsksLetsTheBuffersGo) {
  for (int round = 0; round < 200; ++round) {
    auto feeder = std::make_unique<OutputFeeder>();
    QueueBuffers buffers;
    AudioQueueBuffer* const buffer = *buffers.allocate(80000);
    buffer->mAudioDataByteSize = 80000;
    feeder->push(buffer);
    std::atomic<bool> stop{false};
    std::atomic<int> asked{0};
    std::thread device([&] {
      std::vector<float> samples(16);
      while (!stop) {
        feeder->fill(samples.data(), 8);
        ++asked;
      }
    });
    while (asked < 10) {
      std::this_thread::yield();
    }
    feeder->close();
    buffers.clear();
    stop = true;
    device.join();
  }
}

}  // namespace
}  // namespace platform::test
