#include "platform/sound/realtime/Semaphore.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "platform/sound/realtime/ConditionSemaphore.h"

namespace platform::test {
namespace {

using Clock = std::chrono::steady_clock;

template <typename Tested>
class SemaphoreTest : public ::testing::Test {};

struct Names {
  template <typename Tested>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<Tested, ConditionSemaphore> ? "OfTheStandardLibrary" : "OfTheSystem";
  }
};

using Tested = ::testing::Types<Semaphore, ConditionSemaphore>;
TYPED_TEST_SUITE(SemaphoreTest, Tested, Names);

TYPED_TEST(SemaphoreTest, EveryPostIsTakenOnce) {
  TypeParam semaphore;
  EXPECT_FALSE(semaphore.tryWait());
  semaphore.post();
  semaphore.post();
  semaphore.post();
  EXPECT_TRUE(semaphore.tryWait());
  semaphore.wait();
  EXPECT_TRUE(semaphore.waitUntil(Clock::now()));
  EXPECT_FALSE(semaphore.tryWait());
}

TYPED_TEST(SemaphoreTest, APostIsTakenThoughTheDeadlineHasPassed) {
  TypeParam semaphore;
  semaphore.post();
  EXPECT_TRUE(semaphore.waitUntil(Clock::now() - std::chrono::hours(1)));
  EXPECT_FALSE(semaphore.waitUntil(Clock::now() - std::chrono::hours(1)));
  EXPECT_FALSE(semaphore.waitUntil(Clock::time_point::min()));
}

TYPED_TEST(SemaphoreTest, AWaitWithoutAPostEndsAtItsDeadlineAndNotBefore) {
  TypeParam semaphore;
  const auto deadline = Clock::now() + std::chrono::milliseconds(2);
  EXPECT_FALSE(semaphore.waitUntil(deadline));
  EXPECT_GE(Clock::now(), deadline);
  semaphore.post();
  EXPECT_TRUE(semaphore.tryWait()) << "the wait that gave up must not have kept its place";
  EXPECT_FALSE(semaphore.tryWait());
}

TYPED_TEST(SemaphoreTest, AWaitThatMayLastForeverEndsWithThePost) {
  TypeParam semaphore;
  const std::jthread poster([&semaphore] { semaphore.post(); });
  EXPECT_TRUE(semaphore.waitUntil(Clock::time_point::max()));
}

TYPED_TEST(SemaphoreTest, WhatWasDoneBeforeAPostIsSeenAfterTheWait) {
  TypeParam asked;
  TypeParam answered;
  int value = 0;  // not atomic: only the semaphores order it
  const std::jthread other([&] {
    for (int turn = 0; turn < 5000; ++turn) {
      asked.wait();
      value *= -1;
      answered.post();
    }
  });
  int wrong = 0;
  for (int turn = 0; turn < 5000; ++turn) {
    value = turn;
    asked.post();
    answered.wait();  // a lost wake-up would hang here
    wrong += value == -turn ? 0 : 1;
  }
  EXPECT_EQ(wrong, 0);
}

TYPED_TEST(SemaphoreTest, ManyWaitersTakeAsManyPostsAsThereWere) {
  constexpr int kThreads = 4;
  constexpr int kPosts = 2000;  // per thread
  TypeParam semaphore;
  std::atomic<int> taken{0};
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&] {
        for (int turn = 0; turn < kPosts; ++turn) {
          semaphore.wait();
          ++taken;
        }
      });
      threads.emplace_back([&] {
        for (int turn = 0; turn < kPosts; ++turn) {
          semaphore.post();
        }
      });
    }
  }
  EXPECT_EQ(taken.load(), kThreads * kPosts);
  EXPECT_FALSE(semaphore.tryWait());
}

TYPED_TEST(SemaphoreTest, PostsAndDeadlinesThatComeTogetherLoseNoPost) {
  constexpr int kPosts = 2000;
  TypeParam semaphore;
  const std::jthread poster([&semaphore] {
    for (int turn = 0; turn < kPosts; ++turn) {
      semaphore.post();
      std::this_thread::yield();
    }
  });
  for (int taken = 0; taken < kPosts;) {
    taken += semaphore.waitUntil(Clock::now() + std::chrono::microseconds(20)) ? 1 : 0;
  }
  EXPECT_FALSE(semaphore.tryWait());
}

TYPED_TEST(SemaphoreTest, MayGoAsSoonAsItsLastPostIsTaken) {
  for (int round = 0; round < 500; ++round) {
    auto semaphore = std::make_unique<TypeParam>();
    const std::jthread poster([posted = semaphore.get()] { posted->post(); });
    semaphore->wait();
    semaphore.reset();
  }
}

}  // namespace
}  // namespace platform::test
