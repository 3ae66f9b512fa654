#include "platform/sound/StallWatch.h"

#include <atomic>
#include <chrono>

#include <gtest/gtest.h>

#include "support/Eventually.h"
#include "support/ThreadCount.h"
#include "support/fakes/ManualAudioClock.h"
#include "support/fakes/NoMoreThreads.h"

namespace platform::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Looks every half second, on time unless a test says otherwise.
class StallCountTest : public testing::Test {
 protected:
  bool look(std::uint64_t progress, milliseconds late = milliseconds(0)) {
    now_ += StallWatch::kInterval + late;
    return count_.look(now_, late, progress);
  }
  /// Looks at a stream that stands still; the number of the look that found it stalled, 0 for none.
  int looksUntilStalled(std::uint64_t progress, int most = 40) {
    for (int i = 1; i <= most; ++i) {
      if (look(progress)) {
        return i;
      }
    }
    return 0;
  }

  AudioClock::TimePoint now_{std::chrono::hours(1)};
  StallCount count_{now_, 0};
};

TEST_F(StallCountTest, AStreamThatMovesNeverStalls) {
  for (std::uint64_t progress = 1; progress < 100; ++progress) {
    EXPECT_FALSE(look(progress));
  }
}

TEST_F(StallCountTest, AStreamThatHasMovedMayStandStillForTwoSeconds) {
  EXPECT_FALSE(look(1));
  EXPECT_EQ(looksUntilStalled(1), 4);
}

TEST_F(StallCountTest, BeforeItsFirstMoveItHasFiveSeconds) {
  EXPECT_EQ(looksUntilStalled(0), 10);
}

TEST_F(StallCountTest, EveryMoveStartsTheCountAnew) {
  for (std::uint64_t progress = 1; progress < 20; ++progress) {
    EXPECT_FALSE(look(progress));
    EXPECT_FALSE(look(progress));
    EXPECT_FALSE(look(progress));
    EXPECT_FALSE(look(progress));
  }
}

TEST_F(StallCountTest, ALookThatIsMoreThanHalfASecondLateStartsTheCountAnew) {
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1, seconds(20)));  // the program was stopped
  EXPECT_EQ(looksUntilStalled(1), 4);
}

TEST_F(StallCountTest, ALookThatIsHalfASecondLateCounts) {
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1));
  EXPECT_FALSE(look(1));
  EXPECT_TRUE(look(1, milliseconds(500)));
}

class StallWatchTest : public testing::Test {
 protected:
  /// Lets the watch look once, on time.
  void lookOnce() {
    ASSERT_TRUE(clock_->awaitWaiter(StallWatch::kInterval));
    clock_->advance(StallWatch::kInterval);
  }

  /// Lets time pass until a condition holds.
  template <typename Condition>
  bool passUntil(Condition condition) {
    return support::eventually([&] {
      clock_->advance(milliseconds(100));
      return condition();
    });
  }

  std::shared_ptr<ManualAudioClock> clock_ = std::make_shared<ManualAudioClock>();
  std::shared_ptr<StallWatch::Progress> progress_ = std::make_shared<StallWatch::Progress>(0);
  std::shared_ptr<StallWatch::Progress> other_ = std::make_shared<StallWatch::Progress>(0);
  std::atomic<int> stalls_{0};
  std::atomic<int> otherStalls_{0};
};

TEST_F(StallWatchTest, TellsOnceOfTheStreamThatStandsStillAndOfNoOther) {
  StallWatch watch(clock_);
  const auto still = watch.watch(progress_, [this] { ++stalls_; });
  const auto moving = watch.watch(other_, [this] { ++otherStalls_; });
  const auto began = clock_->now();
  ASSERT_TRUE(passUntil([&] {
    ++*other_;
    return stalls_ > 0;
  }));
  EXPECT_GE(clock_->now() - began, seconds(5));
  const auto told = clock_->now();
  ASSERT_TRUE(passUntil([&] {
    ++*other_;
    return clock_->now() - told > seconds(6);
  }));
  EXPECT_EQ(stalls_, 1);
  EXPECT_EQ(otherStalls_, 0);
}

TEST_F(StallWatchTest, AfterTheMachineHasSleptTheCountBeginsAnew) {
  StallWatch watch(clock_);
  const auto watched = watch.watch(progress_, [this] { ++stalls_; });
  ++*progress_;
  for (int i = 0; i < 4; ++i) {  // it moved before the first, and has stood still for 1.5 s
    ASSERT_NO_FATAL_FAILURE(lookOnce());
  }
  ASSERT_TRUE(clock_->awaitWaiter(StallWatch::kInterval));
  clock_->sleep(std::chrono::hours(8));  // of which the clock of the wait knows nothing
  for (int i = 0; i < 4; ++i) {          // the first is late, and another 1.5 s pass
    ASSERT_NO_FATAL_FAILURE(lookOnce());
  }
  ASSERT_TRUE(clock_->awaitWaiter(StallWatch::kInterval));
  EXPECT_EQ(stalls_, 0);
  ASSERT_NO_FATAL_FAILURE(lookOnce());
  EXPECT_TRUE(support::eventually([&] { return stalls_ == 1; }));
}

TEST_F(StallWatchTest, AStreamWhoseReferenceWasReleasedIsNotWatched) {
  StallWatch watch(clock_);
  auto released = watch.watch(progress_, [this] { ++stalls_; });
  released.reset();
  const auto watched = watch.watch(other_, [this] { ++otherStalls_; });
  ASSERT_TRUE(passUntil([&] { return otherStalls_ > 0; }));
  EXPECT_EQ(stalls_, 0);
}

TEST_F(StallWatchTest, AStreamMayBeWatchedFromInsideACall) {
  StallWatch watch(clock_);
  std::shared_ptr<StallWatch::Stream> next;
  const auto first = watch.watch(progress_, [&] {
    next = watch.watch(other_, [this] { ++otherStalls_; });
    ++stalls_;
  });
  ASSERT_TRUE(passUntil([&] { return otherStalls_ > 0; }));
  EXPECT_EQ(stalls_, 1);
}

TEST_F(StallWatchTest, EndsItsThreadWhileNothingIsWatchedAndWatchesAgain) {
  const auto threads = support::threadCount();
  StallWatch watch(clock_);
  auto first = watch.watch(progress_, [this] { ++stalls_; });
  ASSERT_TRUE(clock_->awaitWaiter(StallWatch::kInterval));
  first.reset();
  ASSERT_TRUE(support::eventually([&] {
    clock_->advance(StallWatch::kInterval);
    return support::threadCount() == threads;
  }));
  const auto second = watch.watch(progress_, [this] { ++stalls_; });
  EXPECT_TRUE(passUntil([&] { return stalls_ == 1; }));
}

TEST_F(StallWatchTest, HasNoThreadBeforeTheFirstStreamAndNoneAfterItsEnd) {
  const auto before = support::threadCount();
  {
    StallWatch watch(clock_);
    EXPECT_EQ(support::threadCount(), before);
    const auto watched = watch.watch(progress_, [] {});
  }
  EXPECT_TRUE(support::eventually([&] { return support::threadCount() == before; }));
}

TEST_F(StallWatchTest, WithoutAThreadToGiveNothingIsNoticedUntilThereIsOne) {
  StallWatch watch(clock_);
  std::shared_ptr<StallWatch::Stream> unwatched;
  {
    const support::NoMoreThreads limit;
    if (!limit.isInForce()) {
      GTEST_SKIP() << "no way to make the system refuse a thread";
    }
    unwatched = watch.watch(progress_, [this] { ++stalls_; });
  }
  const auto watched = watch.watch(other_, [this] { ++otherStalls_; });
  ASSERT_TRUE(passUntil([&] { return otherStalls_ > 0; }));
  EXPECT_EQ(stalls_, 0);
}

}  // namespace
}  // namespace platform::test
