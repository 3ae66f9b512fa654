#include "platform/base/GuardedPointer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using platform::GuardedPointer;

/// Runs a function when it is released.
struct Guest {
  ~Guest() {
    if (atRelease) {
      atRelease();
    }
  }
  std::function<void()> atRelease;
};

TEST(GuardedPointerTest, IsEmptyAtFirst) {
  EXPECT_EQ(GuardedPointer<std::shared_ptr<int>>().get(), nullptr);
  EXPECT_TRUE(GuardedPointer<std::weak_ptr<int>>().get().expired());
}

TEST(GuardedPointerTest, GivesWhatWasSetLast) {
  GuardedPointer<std::shared_ptr<int>> pointer(std::make_shared<int>(1));
  EXPECT_EQ(*pointer.get(), 1);
  pointer.set(std::make_shared<int>(2));
  EXPECT_EQ(*pointer.get(), 2);
}

TEST(GuardedPointerTest, ExchangeReturnsTheFormerValue) {
  GuardedPointer<std::shared_ptr<int>> pointer(std::make_shared<int>(1));
  EXPECT_EQ(*pointer.exchange(std::make_shared<int>(2)), 1);
  EXPECT_EQ(*pointer.get(), 2);
}

TEST(GuardedPointerTest, OwnsWithASharedPointerAndNotWithAWeakOne) {
  auto object = std::make_shared<int>(1);
  GuardedPointer<std::weak_ptr<int>> weak(object);
  {
    const GuardedPointer<std::shared_ptr<int>> shared(object);
    object.reset();
    EXPECT_EQ(*weak.get().lock(), 1);
  }
  EXPECT_TRUE(weak.get().expired());
}

TEST(GuardedPointerTest, ReleasesTheFormerValueOutsideTheLock) {
  GuardedPointer<std::shared_ptr<Guest>> pointer(std::make_shared<Guest>());
  bool isReleased = false;
  pointer.get()->atRelease = [&] {
    // If the lock were held, another thread could not read.
    std::thread([&] { EXPECT_EQ(pointer.get(), nullptr); }).join();
    isReleased = true;
  };
  pointer.set(nullptr);
  EXPECT_TRUE(isReleased);
}

TEST(GuardedPointerTest, IsReadWhileOthersReplaceIt) {
  constexpr int kRounds = 2000;
  GuardedPointer<std::shared_ptr<int>> pointer(std::make_shared<int>(0));
  std::atomic<bool> isDone = false;
  std::vector<std::thread> readers;
  std::atomic<int> strangers = 0;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!isDone) {
        const int seen = *pointer.get();
        strangers += seen < 0 || seen > kRounds ? 1 : 0;
      }
    });
  }
  std::vector<std::thread> writers;
  for (int i = 0; i < 2; ++i) {
    writers.emplace_back([&] {
      for (int round = 1; round <= kRounds; ++round) {
        pointer.set(std::make_shared<int>(round));
      }
    });
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  isDone = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  EXPECT_EQ(strangers, 0);
  EXPECT_EQ(*pointer.get(), kRounds);
}

}  // namespace
