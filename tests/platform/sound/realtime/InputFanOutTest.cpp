#include "platform/sound/realtime/InputFanOut.h"

#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

/// Checks that no chunk is missing; the first sample of each is its number.
class CountingSink final : public InputSink {
 public:
  void captured(const float* samples, std::uint32_t) noexcept override {
    if (count > 0 && samples[0] != last + 1) {
      gapless = false;
    }
    last = samples[0];
    ++count;
  }
  void skipped(std::uint64_t frames, std::uint64_t capturedSince) noexcept override {
    skippedFrames += frames;
    lastSince = capturedSince;
  }
  std::uint64_t skippedFrames = 0;
  std::uint64_t lastSince = 0;
  float last = 0;
  int count = 0;
  bool gapless = true;
};

TEST(InputFanOutTest, EverySinkGetsEveryChunkWhileItIsIn) {
  InputFanOut fanOut;
  CountingSink early;
  CountingSink late;
  float samples[2] = {1, 1};
  fanOut.distribute(samples, 1);
  fanOut.add(early);
  samples[0] = 2;
  fanOut.distribute(samples, 1);
  fanOut.add(late);
  samples[0] = 3;
  fanOut.distribute(samples, 1);
  fanOut.remove(early);
  samples[0] = 4;
  fanOut.distribute(samples, 1);
  EXPECT_EQ(early.count, 2);
  EXPECT_EQ(late.count, 2);
  EXPECT_EQ(late.last, 4);
}

TEST(InputFanOutTest, EverySinkLearnsOfSkippedFramesWhileItIsIn) {
  InputFanOut fanOut;
  CountingSink early;
  CountingSink late;
  fanOut.add(early);
  fanOut.skip(7, 1);
  fanOut.add(late);
  fanOut.skip(100, 2);
  fanOut.remove(early);
  fanOut.skip(1000, 3);
  EXPECT_EQ(early.skippedFrames, 107U);
  EXPECT_EQ(late.skippedFrames, 1100U);
  EXPECT_EQ(early.lastSince, 2U);
  EXPECT_EQ(late.lastSince, 3U);
}

TEST(InputFanOutTest, RemovingTwiceOrAStrangerDoesNothing) {
  InputFanOut fanOut;
  CountingSink in;
  CountingSink stranger;
  fanOut.add(in);
  fanOut.remove(stranger);
  fanOut.remove(in);
  fanOut.remove(in);
  const float samples[2] = {1, 1};
  fanOut.distribute(samples, 1);
  EXPECT_EQ(in.count, 0);
}

TEST(InputFanOutTest, ASinkIsNotCalledOnceRemoveHasReturnedAndTheOthersMissNothing) {
  InputFanOut fanOut;
  CountingSink steady;
  fanOut.add(steady);
  std::atomic<bool> stop{false};
  int distributed = 0;
  std::thread device([&] {
    while (!stop) {
      const float samples[2] = {static_cast<float>(++distributed), 0};
      fanOut.distribute(samples, 1);
    }
  });
  for (int i = 0; i < 2000; ++i) {
    auto passing = std::make_unique<CountingSink>();
    fanOut.add(*passing);
    fanOut.remove(*passing);
    EXPECT_TRUE(passing->gapless);
    passing.reset();  // a late call would touch freed memory
  }
  stop = true;
  device.join();
  EXPECT_TRUE(steady.gapless);
  EXPECT_EQ(steady.count, distributed);
}

}  // namespace
}  // namespace platform::test
