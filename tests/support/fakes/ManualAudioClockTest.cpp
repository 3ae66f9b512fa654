#include "support/fakes/ManualAudioClock.h"

#include <future>

#include <gtest/gtest.h>

namespace platform::test {
namespace {

using std::chrono::seconds;

TEST(ManualAudioClockTest, StandsStillUntilItIsTurned) {
  ManualAudioClock clock;
  const auto before = clock.now();
  EXPECT_EQ(clock.now(), before);
  clock.advance(seconds(5));
  EXPECT_EQ(clock.now(), before + seconds(5));
}

TEST(ManualAudioClockTest, AWaitEndsWithTheSignalOrWithTheTurn) {
  ManualAudioClock clock;
  Semaphore semaphore;
  semaphore.post();
  EXPECT_TRUE(clock.waitUntil(semaphore, clock.now()));
  EXPECT_FALSE(clock.waitUntil(semaphore, clock.now()));
  auto waiting = std::async(std::launch::async,
                            [&] { return clock.waitUntil(semaphore, clock.now() + seconds(2)); });
  ASSERT_TRUE(clock.awaitWaiter(seconds(2)));
  clock.advance(seconds(2));
  EXPECT_FALSE(waiting.get());
}

}  // namespace
}  // namespace platform::test
