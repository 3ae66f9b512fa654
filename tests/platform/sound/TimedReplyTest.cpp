#include "platform/sound/TimedReply.h"

#include <thread>

#include <gtest/gtest.h>

#include "platform/sound/AudioQueueFixture.h"

namespace platform::test {
namespace {

TEST(TimedReplyTest, AnAnswerGivenBeforeOrWhileWaitingArrives) {
  SteadyAudioClock clock;
  TimedReply before;
  EXPECT_TRUE(before.give(-3));
  EXPECT_EQ(before.wait(clock, clock.now()), -3);
  TimedReply during;
  std::thread giver([&] { EXPECT_TRUE(during.give(5)); });
  EXPECT_EQ(during.wait(clock, clock.now() + support::kPatience), 5);
  giver.join();
}

TEST(TimedReplyTest, GivingUpTellsTheGiver) {
  ManualAudioClock clock;
  TimedReply answer;
  EXPECT_EQ(answer.wait(clock, clock.now()), std::nullopt);
  EXPECT_FALSE(answer.give(1));
}

TEST(TimedReplyTest, ExactlyOneSideGetsTheStatus) {
  ManualAudioClock clock;
  for (int i = 0; i < 500; ++i) {
    TimedReply answer;
    bool taken = false;
    std::thread giver([&] { taken = answer.give(1); });
    const auto got = answer.wait(clock, clock.now());
    giver.join();
    EXPECT_EQ(got.has_value(), taken);
  }
}

}  // namespace
}  // namespace platform::test
