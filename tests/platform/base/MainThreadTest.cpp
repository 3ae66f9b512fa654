#include "platform/base/MainThread.h"

#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "platform/base/UndoManager.h"

namespace platform {
namespace {

void onlyOnTheMainThread() {
  assertMainThread();
}

void onAnotherThread(void (*operation)()) {
  std::thread(operation).join();
}

TEST(MainThreadTest, IsTheOneThatRunsMain) {
  EXPECT_TRUE(isMainThread());
  EXPECT_FALSE(std::async(std::launch::async, isMainThread).get());
}

TEST(MainThreadTest, LetsItsOwnOperationsPass) {
  onlyOnTheMainThread();
}

TEST(MainThreadDeathTest, AnOperationCalledElsewhereEndsTheProgramWithItsName) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(onAnotherThread(onlyOnTheMainThread),
               "onlyOnTheMainThread called off the main thread");
}

TEST(MainThreadDeathTest, AnUndoRegisteredElsewhereEndsTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(onAnotherThread([] { UndoManager().registerUndo({}, [] {}); }),
               "registerUndo called off the main thread");
}

}  // namespace
}  // namespace platform
