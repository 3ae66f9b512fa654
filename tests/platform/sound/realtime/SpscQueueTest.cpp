#include "platform/sound/realtime/SpscQueue.h"

#include <cstdint>
#include <thread>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(SpscQueueTest, AnEmptyQueueGivesNothingAndLeavesTheValueAlone) {
  SpscQueue<int, 2> queue;
  int value = 7;
  EXPECT_FALSE(queue.pop(value));
  EXPECT_EQ(value, 7);
}

TEST(SpscQueueTest, ValuesComeOutInTheOrderInWhichTheyWentIn) {
  SpscQueue<int, 3> queue;
  for (int value = 1; value <= 3; ++value) {
    EXPECT_TRUE(queue.push(value));
  }
  int out = 0;
  for (int value = 1; value <= 3; ++value) {
    ASSERT_TRUE(queue.pop(out));
    EXPECT_EQ(out, value);
  }
  EXPECT_FALSE(queue.pop(out));
}

TEST(SpscQueueTest, AFullQueueRefusesAValueUntilOneIsTaken) {
  SpscQueue<int, 2> queue;
  EXPECT_TRUE(queue.push(1));
  EXPECT_TRUE(queue.push(2));
  EXPECT_FALSE(queue.push(3));
  int out = 0;
  ASSERT_TRUE(queue.pop(out));
  EXPECT_EQ(out, 1);
  EXPECT_TRUE(queue.push(4));
  ASSERT_TRUE(queue.pop(out));
  EXPECT_EQ(out, 2);
  ASSERT_TRUE(queue.pop(out));
  EXPECT_EQ(out, 4) << "the refused value must not have gone in";
}

TEST(SpscQueueTest, KeepsItsOrderManyTimesRound) {
  SpscQueue<int, 3> queue;
  int out = 0;
  for (int value = 0; value < 1000; ++value) {
    ASSERT_TRUE(queue.push(value));
    ASSERT_TRUE(queue.push(-value));
    ASSERT_TRUE(queue.pop(out));
    EXPECT_EQ(out, value);
    ASSERT_TRUE(queue.pop(out));
    EXPECT_EQ(out, -value);
  }
}

// Too wide for one store; each part determines the others.
struct Wide {
  std::uint64_t number = 0;
  std::uint64_t inverse = 0;
  std::uint64_t triple = 0;

  static Wide of(std::uint64_t number) { return {number, ~number, 3 * number}; }
  [[nodiscard]] bool is(std::uint64_t expected) const {
    return number == expected && inverse == ~expected && triple == 3 * expected;
  }
};

TEST(SpscQueueTest, TwoThreadsNeverShowATornLostOrRepeatedValue) {
  constexpr std::uint64_t kValues = 100000;
  SpscQueue<Wide, 5> queue;
  const std::jthread producer([&queue] {
    for (std::uint64_t number = 0; number < kValues; ++number) {
      while (!queue.push(Wide::of(number))) {
        std::this_thread::yield();
      }
    }
  });
  std::uint64_t wrong = 0;
  for (std::uint64_t number = 0; number < kValues; ++number) {
    Wide value;
    while (!queue.pop(value)) {
      std::this_thread::yield();
    }
    wrong += value.is(number) ? 0 : 1;
  }
  EXPECT_EQ(wrong, 0U);
}

}  // namespace
}  // namespace platform::test
