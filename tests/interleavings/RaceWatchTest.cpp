#include "interleavings/RaceWatch.h"

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "interleavings/AllOrders.h"
#include "platform/base/Mutex.h"

using interleavings::Threads;
using interleavings::tryAllOrders;

namespace {

struct Passed {
  int value = 0;
  std::atomic<int> isThere = 0;
  platform::Mutex mutex;
};
using Step = std::function<void(Passed&)>;

// Whether two threads that do this race in some order.
bool race(const Step& first, const Step& second) {
  testing::TestPartResultArray failures;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ALL_THREADS, &failures);
    tryAllOrders(2, [&] {
      auto passed = std::make_shared<Passed>();
      return Threads{
          {[passed, &first] { first(*passed); }, [passed, &second] { second(*passed); }}};
    });
  }
  return failures.size() > 0;
}

template <std::memory_order kStore>
void give(Passed& passed) {
  passed.value = 1;
  passed.isThere.store(1, kStore);
}

template <std::memory_order kLoad>
void take(Passed& passed) {
  if (passed.isThere.load(kLoad) == 1) {
    EXPECT_EQ(passed.value, 1);
  }
}

TEST(RaceWatchTest, AWriteThatIsReleasedAndAcquiredMayBeRead) {
  EXPECT_FALSE(race(give<std::memory_order_release>, take<std::memory_order_acquire>));
  EXPECT_FALSE(race(give<std::memory_order_seq_cst>, take<std::memory_order_seq_cst>));
}

TEST(RaceWatchTest, AnOrderThatIsTooWeakIsFound) {
  EXPECT_TRUE(race(give<std::memory_order_relaxed>, take<std::memory_order_acquire>));
  EXPECT_TRUE(race(give<std::memory_order_release>, take<std::memory_order_relaxed>));
}

TEST(RaceWatchTest, AWriteThatComesAfterItWasToldOfIsFound) {
  const auto giveTooEarly = [](Passed& passed) {
    passed.isThere.store(1, std::memory_order_release);
    passed.value = 1;
  };
  const auto look = [](Passed& passed) {
    if (passed.isThere.load(std::memory_order_acquire) == 1) {
      static_cast<void>(std::exchange(passed.value, 2));
    }
  };
  EXPECT_TRUE(race(giveTooEarly, look));
}

TEST(RaceWatchTest, AReadIsFoundThatAWriteDoesNotWaitFor) {
  const auto look = [](Passed& passed) {
    const int seen = passed.value;
    passed.isThere.store(seen, std::memory_order_relaxed);
  };
  EXPECT_TRUE(race(look, [](Passed& passed) { passed.value = 1; }));
}

TEST(RaceWatchTest, ThingsThatAreChangedUnderOneLockAreInOrder) {
  const auto add = [](Passed& passed) {
    const platform::MutexLock lock(passed.mutex);
    ++passed.value;
  };
  EXPECT_FALSE(race(add, add));
  EXPECT_TRUE(race(add, [](Passed& passed) { ++passed.value; }));
}

TEST(RaceWatchTest, AnOperationThatReadsAndWritesPassesOnWhatOthersReleased) {
  const auto giveAndCount = [](Passed& passed) {
    give<std::memory_order_release>(passed);
    passed.isThere.fetch_add(1, std::memory_order_relaxed);
  };
  const auto look = [](Passed& passed) {
    if (passed.isThere.load(std::memory_order_acquire) == 2) {
      EXPECT_EQ(passed.value, 1);
    }
  };
  EXPECT_FALSE(race(giveAndCount, look));
}

TEST(RaceWatchTest, MemoryThatWasFreedIsNotComparedWithItsFormerOwner) {
  const auto useMemory = [](Passed& passed) {
    const auto memory = std::make_unique<int>(1);
    interleavings::step();
    passed.isThere.store(*memory, std::memory_order_relaxed);
  };
  EXPECT_FALSE(race(useMemory, useMemory));
}

}  // namespace
