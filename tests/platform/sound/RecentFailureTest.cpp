#include "platform/sound/RecentFailure.h"

#include <gtest/gtest.h>

namespace platform::test {
namespace {

TEST(RecentFailureTest, IsKnownForOneSecondUnlessCleared) {
  RecentFailure failure;
  const AudioClock::TimePoint now{std::chrono::hours(1)};
  EXPECT_EQ(failure.recent(now), kAudioStatusOk);
  failure.note(-7, now);
  EXPECT_EQ(failure.recent(now), -7);
  EXPECT_EQ(failure.recent(now + std::chrono::milliseconds(999)), -7);
  EXPECT_EQ(failure.recent(now + std::chrono::seconds(1)), kAudioStatusOk);
  failure.note(-8, now);
  failure.clear();
  EXPECT_EQ(failure.recent(now), kAudioStatusOk);
}

}  // namespace
}  // namespace platform::test
