#include "interleavings/AllOrders.h"

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "platform/base/Mutex.h"

using interleavings::Threads;
using interleavings::tryAllOrders;

namespace {

// Each thread notes its letter in two steps of its own.
std::set<std::string> ordersOf(int preemptions) {
  std::set<std::string> found;
  tryAllOrders(preemptions, [&found] {
    auto order = std::make_shared<std::string>();
    const auto note = [order](char letter) {
      return [order, letter] {
        for (int i = 0; i < 2; ++i) {
          interleavings::step();
          order->push_back(letter);
        }
      };
    };
    return Threads{{note('a'), note('b')}, [order, &found] { found.insert(*order); }};
  });
  return found;
}

TEST(AllOrdersTest, WithoutPreemptionsOneThreadRunsAfterTheOther) {
  EXPECT_THAT(ordersOf(0), testing::UnorderedElementsAre("aabb", "bbaa"));
}

TEST(AllOrdersTest, WithEnoughPreemptionsEveryOrderIsTried) {
  EXPECT_THAT(ordersOf(4),
              testing::UnorderedElementsAre("aabb", "bbaa", "abab", "baba", "abba", "baab"));
}

TEST(AllOrdersTest, EachAtomicOperationIsAStep) {
  std::set<int> sums;
  tryAllOrders(1, [&sums] {
    auto sum = std::make_shared<std::atomic<int>>(0);
    const auto addOne = [sum] { sum->store(sum->load() + 1); };
    return Threads{{addOne, addOne}, [sum, &sums] { sums.insert(sum->load()); }};
  });
  EXPECT_THAT(sums, testing::ElementsAre(1, 2));
}

TEST(AllOrdersTest, ALockHoldsOffTheOthers) {
  std::set<int> sums;
  const auto orders = tryAllOrders(4, [&sums] {
    struct Sum {
      platform::Mutex mutex;
      std::atomic<int> value{0};
    };
    auto sum = std::make_shared<Sum>();
    const auto addOne = [sum] {
      const platform::MutexLock lock(sum->mutex);
      sum->value.store(sum->value.load() + 1);
    };
    return Threads{{addOne, addOne}, [sum, &sums] { sums.insert(sum->value.load()); }};
  });
  EXPECT_THAT(sums, testing::ElementsAre(2));
  EXPECT_GT(orders, 4U);
}

TEST(AllOrdersTest, EveryAnswerOfAChoiceIsTried) {
  std::set<std::pair<int, int>> answers;
  tryAllOrders(0, [&answers] {
    return Threads{{[&answers] {
      const int first = interleavings::choose(2);
      answers.emplace(first, interleavings::choose(3));
    }}};
  });
  EXPECT_EQ(answers.size(), 6U);
}

TEST(AllOrdersDeathTest, ThreadsThatWaitForEachOtherAreFound) {
  const auto lockBoth = [] {
    tryAllOrders(1, [] {
      struct Locks {
        platform::Mutex first;
        platform::Mutex second;
      };
      auto locks = std::make_shared<Locks>();
      const auto lock = [locks](platform::Mutex& one, platform::Mutex& other) {
        return [locks, &one, &other] {
          const platform::MutexLock outer(one);
          const platform::MutexLock inner(other);
        };
      };
      return Threads{{lock(locks->first, locks->second), lock(locks->second, locks->first)}};
    });
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(lockBoth(), "no thread can go on");
}

TEST(AllOrdersDeathTest, ARunThatDoesNotEndIsFound) {
  const auto turn = [] {
    tryAllOrders(0, [] {
      return Threads{{[] {
        for (;;) {
          interleavings::waitForAnotherThread();
        }
      }}};
    });
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(turn(), "the run does not end");
}

}  // namespace
