#include "platform/sound/AudioClock.h"

#include <gtest/gtest.h>

#include "support/Eventually.h"

namespace platform::test {
namespace {

TEST(AudioClockTest, BothTimesRunAlikeWhileTheMachineIsAwake) {
  const SteadyAudioClock clock;
  const auto now = clock.now();
  const auto withSleep = clock.nowWithSleep();
  ASSERT_TRUE(
      support::eventually([&] { return clock.now() - now > std::chrono::milliseconds(20); }));
  EXPECT_GE(clock.nowWithSleep() - withSleep, std::chrono::milliseconds(20));
  EXPECT_LT(clock.nowWithSleep() - withSleep - (clock.now() - now), std::chrono::seconds(1));
}

}  // namespace
}  // namespace platform::test
