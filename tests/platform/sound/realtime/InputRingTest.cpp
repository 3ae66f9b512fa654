#include "platform/sound/realtime/InputRing.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

/// Whether every sample of the block is the number of its frame, right negative.
bool holdsItsOwnFrames(const InputRing& ring, const InputRing::Block& block, const float* samples) {
  return block.endFrame - block.firstFrame == ring.blockFrames() &&
         std::equal(samples, samples + 2 * ring.blockFrames(),
                    ramp(block.firstFrame, ring.blockFrames()).begin());
}

TEST(InputRingTest, NothingComesOutBeforeABlockIsFull) {
  InputRing ring(4, 2);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  EXPECT_EQ(producer.write(ramp(0, 3).data(), 3), 0U);
  EXPECT_EQ(consumer.front(), nullptr);
  EXPECT_EQ(ring.publishedEndFrame(), 0U);
  EXPECT_EQ(producer.write(ramp(3, 1).data(), 1), 1U);
  ASSERT_NE(consumer.front(), nullptr);
  EXPECT_EQ(ring.publishedEndFrame(), 4U);
}

TEST(InputRingTest, OneWriteMayFillSeveralBlocks) {
  InputRing ring(4, 4);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  EXPECT_EQ(producer.write(ramp(0, 14).data(), 14), 3U);
  for (std::uint64_t first = 0; first < 12; first += 4) {
    const auto* block = consumer.front();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->firstFrame, first);
    EXPECT_TRUE(holdsItsOwnFrames(ring, *block, consumer.frontSamples()));
    consumer.pop();
  }
  EXPECT_EQ(consumer.front(), nullptr);
}

TEST(InputRingTest, IrregularWritesComeOutWholeManyTimesRound) {
  InputRing ring(7, 3);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  std::uint64_t written = 0;
  std::uint64_t read = 0;
  for (std::uint32_t chunk = 1; written < 5000; chunk = chunk * 5 % 9 + 1) {
    producer.write(ramp(written, chunk).data(), chunk);
    written += chunk;
    while (const auto* block = consumer.front()) {
      EXPECT_EQ(block->firstFrame, read);
      EXPECT_EQ(block->lostBefore, 0U);
      EXPECT_TRUE(holdsItsOwnFrames(ring, *block, consumer.frontSamples()));
      read = block->endFrame;
      consumer.pop();
    }
  }
  EXPECT_EQ(read, written / 7 * 7);
  EXPECT_EQ(ring.lostFrames(), 0U);
}

TEST(InputRingTest, AFullRingCountsWhatItCannotTakeAndTheNextBlockTellsIt) {
  InputRing ring(4, 2);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  EXPECT_EQ(producer.write(ramp(0, 11).data(), 11), 2U);
  EXPECT_EQ(ring.lostFrames(), 3U);
  producer.write(ramp(11, 2).data(), 2);
  EXPECT_EQ(ring.lostFrames(), 5U);
  EXPECT_EQ(ring.publishedEndFrame(), 8U);
  consumer.pop();
  EXPECT_EQ(producer.write(ramp(13, 4).data(), 4), 1U);
  consumer.pop();
  const auto* block = consumer.front();
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block->firstFrame, 13U);
  EXPECT_EQ(block->endFrame, 17U);
  EXPECT_EQ(block->lostBefore, 5U);
  EXPECT_TRUE(holdsItsOwnFrames(ring, *block, consumer.frontSamples()));
}

TEST(InputRingTest, ASmallRingTakesMoreOnceItHasGrown) {
  InputRing ring(4, 5, 2);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  EXPECT_EQ(producer.write(ramp(0, 9).data(), 9), 2U);
  EXPECT_EQ(ring.lostFrames(), 1U);
  ring.grow();
  EXPECT_EQ(producer.write(ramp(9, 13).data(), 13), 3U);
  EXPECT_EQ(ring.lostFrames(), 2U);
  for (const std::uint64_t first : {0U, 4U, 9U, 13U, 17U}) {
    const auto* block = consumer.front();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->firstFrame, first);
    EXPECT_TRUE(holdsItsOwnFrames(ring, *block, consumer.frontSamples()));
    consumer.pop();
  }
  EXPECT_EQ(consumer.front(), nullptr);
}

TEST(InputRingTest, ABlockThatCameBackIsFilledNextSoThatTheRestIsNotTouched) {
  InputRing ring(4, 5);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  const float* used = nullptr;
  for (std::uint64_t first = 0; first < 80; first += 4) {
    producer.write(ramp(first, 4).data(), 4);
    EXPECT_TRUE(used == nullptr || consumer.frontSamples() == used);
    used = consumer.frontSamples();
    EXPECT_TRUE(holdsItsOwnFrames(ring, *consumer.front(), used));
    consumer.pop();
  }
}

TEST(InputRingTest, SkippedFramesEndTheBlockAndAreLostBeforeTheNext) {
  InputRing ring(4, 4);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  producer.write(ramp(0, 3).data(), 3);
  EXPECT_EQ(producer.skip(100, 0), 1U);
  EXPECT_EQ(producer.skip(10, 0), 0U);
  producer.write(ramp(113, 4).data(), 4);
  EXPECT_EQ(ring.lostFrames(), 110U);
  EXPECT_EQ(consumer.front()->frames(), 3U);
  EXPECT_EQ(consumer.front()->lostBefore, 0U);
  consumer.pop();
  EXPECT_EQ(consumer.front()->firstFrame, 113U);
  EXPECT_EQ(consumer.front()->endFrame, 117U);
  EXPECT_EQ(consumer.front()->lostBefore, 110U);
  EXPECT_EQ(consumer.front()->skippedBefore, 110U);
}

TEST(InputRingTest, OfALossInAFullRingAndBeforeItOnlyTheLatterWasSkipped) {
  InputRing ring(4, 2);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  producer.write(ramp(0, 9).data(), 9);
  producer.skip(100, 9);
  consumer.pop();
  consumer.pop();
  producer.write(ramp(109, 4).data(), 4);
  EXPECT_EQ(consumer.front()->lostBefore, 101U);
  EXPECT_EQ(consumer.front()->skippedBefore, 100U);
  EXPECT_EQ(consumer.front()->lostAtFrame(), 109U) << "that in the ring was just before";
}

TEST(InputRingTest, WhatWasSkippedIsMissingBeforeTheFramesCapturedSince) {
  InputRing ring(4, 4);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  producer.write(ramp(0, 7).data(), 7);
  producer.skip(100, 5);
  producer.write(ramp(107, 4).data(), 4);
  consumer.pop();
  consumer.pop();
  EXPECT_EQ(consumer.front()->firstFrame, 107U);
  EXPECT_EQ(consumer.front()->lostAtFrame(), 2U);
  producer.skip(10, 1000);
  producer.write(ramp(121, 4).data(), 4);
  consumer.pop();
  EXPECT_EQ(consumer.front()->lostAtFrame(), 0U) << "the ring is younger";
}

TEST(InputRingTest, AStretchOfLossIsToldByOneBlockOnly) {
  InputRing ring(4, 2);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  producer.write(ramp(0, 9).data(), 9);
  consumer.pop();
  consumer.pop();
  producer.write(ramp(9, 8).data(), 8);
  EXPECT_EQ(consumer.front()->lostBefore, 1U);
  consumer.pop();
  EXPECT_EQ(consumer.front()->lostBefore, 0U);
}

TEST(InputRingTest, FinishingGivesOutTheBlockInWorkWithItsTrueSize) {
  InputRing ring(4, 3);
  InputRingProducer producer(ring);
  InputRingConsumer consumer(ring);
  EXPECT_EQ(producer.write(ramp(0, 6).data(), 6), 1U);
  producer.finish();
  EXPECT_EQ(ring.publishedEndFrame(), 6U);
  consumer.pop();
  const auto* block = consumer.front();
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block->firstFrame, 4U);
  EXPECT_EQ(block->frames(), 2U);
  EXPECT_EQ(std::vector<float>(consumer.frontSamples(), consumer.frontSamples() + 4), ramp(4, 2));
  consumer.pop();
  producer.finish();
  EXPECT_EQ(consumer.front(), nullptr) << "nothing is in work";
}

TEST(InputRingTest, TwoThreadsNeverShowATornOrMisplacedFrame) {
  InputRing ring(16, 4);
  std::atomic<bool> finished{false};
  std::thread writer([&] {
    InputRingProducer producer(ring);
    std::uint64_t at = 0;
    for (std::uint32_t turn = 0; turn < 20000; ++turn) {
      const std::uint32_t chunk = turn * 13 % 41 + 1;
      producer.write(ramp(at, chunk).data(), chunk);
      at += chunk;
    }
    finished = true;
  });
  InputRingConsumer consumer(ring);
  std::uint64_t expected = 0;
  std::uint64_t lost = 0;
  bool whole = true;
  for (bool last = false;;) {
    const auto* block = consumer.front();
    if (block == nullptr) {
      if (last) {
        break;
      }
      last = finished;  // checks once more: everything written is visible now
      std::this_thread::yield();
      continue;
    }
    lost += block->lostBefore;
    whole = whole && block->firstFrame == expected + block->lostBefore &&
            holdsItsOwnFrames(ring, *block, consumer.frontSamples());
    expected = block->endFrame;
    consumer.pop();
  }
  writer.join();
  EXPECT_TRUE(whole);
  EXPECT_LE(lost, ring.lostFrames());
  EXPECT_EQ(expected, ring.publishedEndFrame());
}

}  // namespace
}  // namespace platform::test
