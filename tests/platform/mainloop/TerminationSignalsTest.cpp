#include "platform/mainloop/TerminationSignals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>

#include "support/MainLoop.h"

namespace {

using platform::TerminationSignals;

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

using Handler = void (*)(int);

Handler handlerOf(int signal) {
  struct sigaction action = {};
  EXPECT_EQ(::sigaction(signal, nullptr, &action), 0);
  return action.sa_handler;
}

TEST(TerminationSignalsTest, ASignalBecomesOneCallFromTheMainLoop) {
  for (const int signal : kSignals) {
    int calls = 0;
    const TerminationSignals signals([&calls] { ++calls; });
    ASSERT_EQ(std::raise(signal), 0);
    EXPECT_EQ(calls, 0) << "within the handler";
    EXPECT_TRUE(runMainLoopUntil([&calls] { return calls > 0; }));
    EXPECT_TRUE(drainMainQueue());
    EXPECT_EQ(calls, 1);
  }
}

TEST(TerminationSignalsTest, ASignalOfAnotherKindIsACallOfItsOwn) {
  int calls = 0;
  const TerminationSignals signals([&calls] { ++calls; });
  ASSERT_EQ(std::raise(SIGINT), 0);
  EXPECT_TRUE(runMainLoopUntil([&calls] { return calls == 1; }));
  ASSERT_EQ(std::raise(SIGTERM), 0);
  EXPECT_TRUE(runMainLoopUntil([&calls] { return calls == 2; }));
}

TEST(TerminationSignalsTest, ASignalThatAnotherThreadTakesArrivesAllTheSameAndLeavesErrno) {
  int calls = 0;
  const TerminationSignals signals([&calls] { ++calls; });
  std::thread([] {
    errno = EDOM;
    EXPECT_EQ(std::raise(SIGTERM), 0);
    EXPECT_EQ(errno, EDOM);
  }).join();
  EXPECT_TRUE(runMainLoopUntil([&calls] { return calls == 1; }));
}

TEST(TerminationSignalsTest, ASignalThatCameBeforeTheMainLoopIsNotForgotten) {
  int calls = 0;
  const TerminationSignals signals([&calls] { ++calls; });
  ASSERT_EQ(std::raise(SIGHUP), 0);
  ASSERT_EQ(std::raise(SIGTERM), 0);
  EXPECT_TRUE(runMainLoopUntil([&calls] { return calls > 0; }));
}

TEST(TerminationSignalsTest, EachSignalIsACallHoweverManyThereWere) {
  int calls = 0;
  // A third signal never comes within no time.
  const TerminationSignals signals([&calls] { ++calls; }, std::chrono::seconds(0));
  for (int i = 1; i <= 5; ++i) {
    ASSERT_EQ(std::raise(SIGTERM), 0);
    EXPECT_TRUE(runMainLoopUntil([&] { return calls == i; })) << i;
  }
}

TEST(TerminationSignalsTest, TwoSignalsEndNothingAndThoseOfAnEarlierObjectAreForgotten) {
  for (int i = 0; i < 3; ++i) {
    int calls = 0;
    const TerminationSignals signals([&calls] { ++calls; }, std::chrono::hours(1));
    ASSERT_EQ(std::raise(SIGTERM), 0);
    ASSERT_EQ(std::raise(SIGTERM), 0);
    EXPECT_TRUE(runMainLoopUntil([&calls] { return calls > 0; }));
  }
}

TEST(TerminationSignalsDeathTest, TheThirdSignalInAShortTimeEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const int signal : kSignals) {
    EXPECT_EXIT(
        {
          const TerminationSignals signals([] {});
          std::raise(signal);
          std::raise(signal);
          std::raise(signal);
        },
        testing::KilledBySignal(signal), "");
  }
}

TEST(TerminationSignalsDeathTest, SignalsOfEveryKindAreCountedTogether) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const TerminationSignals signals([] {});
        std::raise(SIGINT);
        std::raise(SIGTERM);
        std::raise(SIGHUP);
      },
      testing::KilledBySignal(SIGHUP), "");
}

TEST(TerminationSignalsTest, ASignalThatWasIgnoredStaysIgnored) {
  const Handler before = std::signal(SIGHUP, SIG_IGN);
  {
    const TerminationSignals signals([] { ADD_FAILURE() << "called"; });
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    ASSERT_EQ(std::raise(SIGHUP), 0);
    EXPECT_TRUE(drainMainQueue());
  }
  EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
  std::signal(SIGHUP, before);
}

TEST(TerminationSignalsTest, SignalsAreAgainWhatTheyWere) {
  std::array<Handler, kSignals.size()> before{};
  std::transform(kSignals.begin(), kSignals.end(), before.begin(), handlerOf);
  {
    const TerminationSignals signals([] {});
  }
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    EXPECT_EQ(handlerOf(kSignals[i]), before[i]);
  }
}

}  // namespace
