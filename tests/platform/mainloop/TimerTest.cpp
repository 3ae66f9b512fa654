#include "platform/mainloop/Timer.h"

#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <QAbstractEventDispatcher>

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

TEST(TimerTest, TimersOfOneIntervalWakeTheProgramOnce) {
  constexpr double kInterval = 0.01;
  int sleeps = 0;
  QObject context;
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                   &context, [&] { ++sleeps; });
  int firstsSleep = -1;
  int together = 0;
  int ticks = 0;
  const platform::Timer first(kInterval, [&] { firstsSleep = sleeps; });
  ASSERT_TRUE(runMainLoopUntil([&] { return firstsSleep >= 0; }));
  // Made at any time between two ticks.
  std::unique_ptr<platform::Timer> second;
  const platform::Timer other(0.003, [&] {
    if (!second) {
      second = std::make_unique<platform::Timer>(kInterval, [&] {
        ++ticks;
        together += firstsSleep == sleeps ? 1 : 0;
      });
    }
  });
  ASSERT_TRUE(runMainLoopUntil([&] { return ticks == 40; }));
  EXPECT_GE(together, 30) << "all but those between which a millisecond ended";
}

TEST(TimerTest, OnesThatWaitBeginWhenThoseThatRanAreGone) {
  int ticks = 0;
  auto first = std::make_unique<platform::Timer>(0.002, [] {});
  const platform::Timer second(0.002, [&] { ++ticks; });
  const platform::Timer third(0.002, [&] { ++ticks; });
  first.reset();
  EXPECT_TRUE(runMainLoopUntil([&] { return ticks >= 4; }));
}

TEST(TimerTest, ATickThatRunsTheMainLoopHoldsUpNoOtherTimer) {
  int ticks = 0;
  bool ran = false;
  const platform::Timer other(0.002, [&] { ++ticks; });
  const platform::Timer waiting(0.002, [&] {
    if (!ran) {
      const int before = ticks;
      ran = runMainLoopUntil([&] { return ticks >= before + 3; });
    }
  });
  EXPECT_TRUE(runMainLoopUntil([&] { return ran; }));
}

TEST(TimerTest, OneThatIsMadeInALoopWithinATickRunsThere) {
  std::unique_ptr<platform::Timer> made;
  int ticks = 0;
  bool ran = false;
  const platform::Timer outer(0.002, [&] {
    if (!made) {
      made = std::make_unique<platform::Timer>(0.002, [&] { ++ticks; });
      ran = runMainLoopUntil([&] { return ticks >= 2; });
    }
  });
  EXPECT_TRUE(runMainLoopUntil([&] { return made != nullptr && ran; }));
}

// Such as one that ends a notice: it is not put off by that of another window.
TEST(TimerTest, OneOfASecondOrMoreBeginsAtOnce) {
  int earlyTicks = 0;
  int ticksBefore = -1;
  std::unique_ptr<platform::Timer> late;
  const platform::Timer early(1.0, [&] { ++earlyTicks; });
  const platform::Timer between(0.5, [&] {
    if (!late) {
      late = std::make_unique<platform::Timer>(1.0, [&] { ticksBefore = earlyTicks; });
    }
  });
  ASSERT_TRUE(runMainLoopUntil([&] { return ticksBefore >= 0; }));
  EXPECT_EQ(ticksBefore, 1) << "before the other one's second tick";
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
