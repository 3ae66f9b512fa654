#include "platform/Answer.h"

#include <thread>

#include <gtest/gtest.h>

#include "platform/AudioQueueFixture.h"

namespace platform::test {
namespace {

TEST(AnswerTest, AnAnswerGivenBeforeOrWhileWaitingArrives) {
  SteadyAudioClock clock;
  Answer before;
  EXPECT_TRUE(before.give(-3));
  EXPECT_EQ(before.wait(clock, clock.now()), -3);
  Answer during;
  std::thread giver([&] { EXPECT_TRUE(during.give(5)); });
  EXPECT_EQ(during.wait(clock, clock.now() + support::kPatience), 5);
  giver.join();
}

TEST(AnswerTest, GivingUpTellsTheGiver) {
  ManualAudioClock clock;
  Answer answer;
  EXPECT_EQ(answer.wait(clock, clock.now()), std::nullopt);
  EXPECT_FALSE(answer.give(1));
}

TEST(AnswerTest, ExactlyOneSideGetsTheStatus) {
  ManualAudioClock clock;
  for (int i = 0; i < 500; ++i) {
    Answer answer;
    bool taken = false;
    std::thread giver([&] { taken = answer.give(1); });
    const auto got = answer.wait(clock, clock.now());
    giver.join();
    EXPECT_EQ(got.has_value(), taken);
  }
}

}  // namespace
}  // namespace platform::test
