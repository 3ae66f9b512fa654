#include "platform/mainloop/Timer.h"

#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "support/MainLoop.h"

TEST(TimerTest, RepeatsUntilItIsDestroyed) {
  int ticks = 0;
  auto timer = std::make_unique<platform::Timer>(0.001, [&] { ++ticks; });
  EXPECT_TRUE(runMainLoopUntil([&] { return ticks >= 3; }));
  timer.reset();
  const int last = ticks;
  QCoreApplication::processEvents();
  EXPECT_EQ(ticks, last);
}

TEST(TimerTest, MayBeDestroyedByItsOwnTick) {
  std::unique_ptr<platform::Timer> timer;
  int ticks = 0;
  timer = std::make_unique<platform::Timer>(0.001, [&] {
    ++ticks;
    timer.reset();
  });
  EXPECT_TRUE(runMainLoopUntil([&] { return ticks == 1 && !timer; }));
}

TEST(TimerTest, RoundsItsIntervalToMilliseconds) {
  const platform::Timer fast(0.0, [] {});
  const platform::Timer spectrum(1.0 / 30.0, [] {});
  EXPECT_DOUBLE_EQ(fast.intervalInSeconds(), 0.001);
  EXPECT_DOUBLE_EQ(spectrum.intervalInSeconds(), 0.033);
}

TEST(TimerDeathTest, OneThatIsMadeOffTheMainThreadEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(std::thread([] { const platform::Timer timer(1.0, [] {}); }).join(),
               "Timer called off the main thread");
}
