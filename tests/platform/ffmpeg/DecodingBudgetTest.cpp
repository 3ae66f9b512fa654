#include "platform/ffmpeg/DecodingBudget.h"

#include <chrono>
#include <ctime>
#include <limits>
#include <memory>
#include <thread>

#include <gmock/gmock.h>

namespace platform {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

constexpr std::int64_t kAnyBytes = std::numeric_limits<std::int64_t>::max();

TEST(DecodingBudgetTest, WithoutALimitOrAFlagItIsNeverDue) {
  const DecodingBudget interruption(nullptr);
  EXPECT_FALSE(interruption.isDue());
  EXPECT_FALSE(interruption.isCancelled());
}

TEST(DecodingBudgetTest, AFlagMakesItDueAsLongAsItIsSet) {
  const auto cancelled = std::make_shared<std::atomic<bool>>(false);
  const DecodingBudget interruption(cancelled);
  EXPECT_FALSE(interruption.isDue());
  cancelled->store(true);
  EXPECT_TRUE(interruption.isDue());
  EXPECT_TRUE(interruption.isCancelled());
}

TEST(DecodingBudgetTest, WorkBeyondItsLimitMakesItDueUntilLifted) {
  DecodingBudget interruption(nullptr);
  interruption.limit(milliseconds(0), kAnyBytes);
  EXPECT_TRUE(interruption.isDue());
  EXPECT_FALSE(interruption.isCancelled());
  interruption.lift();
  EXPECT_FALSE(interruption.isDue());
  interruption.limit(std::chrono::duration_cast<milliseconds>(hours(1)), kAnyBytes);
  EXPECT_FALSE(interruption.isDue());
}

TEST(DecodingBudgetTest, TimeThatAnotherThreadWorksDoesNotCount) {
  DecodingBudget interruption(nullptr);
  interruption.limit(milliseconds(50), kAnyBytes);
  std::thread([] {
    const std::clock_t end = std::clock() + CLOCKS_PER_SEC / 10;  // process time: 100 ms
    while (std::clock() < end) {
    }
  }).join();
  EXPECT_FALSE(interruption.isDue());
}

TEST(DecodingBudgetTest, BytesBeyondTheirLimitMakeItDue) {
  DecodingBudget interruption(nullptr);
  interruption.limit(std::chrono::duration_cast<milliseconds>(hours(1)), 1000);
  interruption.noteRead(999);
  EXPECT_FALSE(interruption.isDue());
  interruption.noteRead(1);
  EXPECT_TRUE(interruption.isDue());
}

TEST(DecodingBudgetTest, AnInnerLimitGivesWayToTheOneThatHolds) {
  DecodingBudget interruption(nullptr);
  EXPECT_TRUE(interruption.limitIfNone(milliseconds(0), kAnyBytes));
  EXPECT_TRUE(interruption.isDue());
  EXPECT_FALSE(interruption.limitIfNone(std::chrono::duration_cast<milliseconds>(hours(1)), 1));
  EXPECT_TRUE(interruption.isDue());
}

}  // namespace
}  // namespace platform
