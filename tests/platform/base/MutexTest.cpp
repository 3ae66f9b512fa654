#include "platform/base/Mutex.h"

#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace platform {
namespace {

struct Counter {
  Mutex mutex;
  Condition changed;
  int value GUARDED_BY(mutex) = 0;
};

TEST(MutexTest, LetsOneThreadAtATimeChangeWhatItGuards) {
  Counter counter;
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&counter] {
      for (int turn = 0; turn < 10000; ++turn) {
        const MutexLock lock(counter.mutex);
        ++counter.value;
      }
    });
  }
  threads.clear();
  const MutexLock lock(counter.mutex);
  EXPECT_EQ(counter.value, 40000);
}

TEST(MutexTest, ALockThatIsGivenUpEarlyLetsOthersIn) {
  Counter counter;
  MutexLock lock(counter.mutex);
  lock.unlock();
  std::async(std::launch::async, [&counter] {
    const MutexLock other(counter.mutex);
    counter.value = 1;
  }).get();
  lock.lock();
  EXPECT_EQ(counter.value, 1);
}

TEST(MutexTest, AConditionEndsAWaitWhenAnotherThreadNotifies) {
  Counter counter;
  const std::jthread setter([&counter] {
    const MutexLock lock(counter.mutex);
    counter.value = 1;
    counter.changed.notifyAll();
  });
  const MutexLock lock(counter.mutex);
  while (counter.value == 0) {
    counter.changed.wait(counter.mutex);
  }
  EXPECT_EQ(counter.value, 1);
}

TEST(MutexTest, AConditionHoldsTheLockWhenTheDeadlineHasPassed) {
  Counter counter;
  MutexLock lock(counter.mutex);
  EXPECT_FALSE(counter.changed.waitUntil(counter.mutex, std::chrono::steady_clock::now()));
  counter.value = 1;
  lock.unlock();
  const MutexLock again(counter.mutex);
  EXPECT_EQ(counter.value, 1);
}

}  // namespace
}  // namespace platform
