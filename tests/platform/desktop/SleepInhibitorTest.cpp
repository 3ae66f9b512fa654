#include "platform/desktop/SleepInhibitor.h"

#include <gmock/gmock.h>

TEST(SleepInhibitorTest, WithNoneInstalledSaysSoAndHoldsNothing) {
  testing::internal::CaptureStderr();
  const auto hold = platform::sleepInhibitor()->hold("Orvo is recording");
  EXPECT_NE(hold, nullptr);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("Orvo is recording"));
}
