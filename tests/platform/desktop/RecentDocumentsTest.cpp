#include "platform/desktop/RecentDocuments.h"

#include <gmock/gmock.h>

namespace {

TEST(RecentDocuments, WithNoneInstalledGoToStandardErrorAlone) {
  testing::internal::CaptureStderr();
  platform::recentDocuments()->noteNewRecentDocument("/take.wav");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("/take.wav"));
  EXPECT_THAT(platform::recentDocuments()->recentDocuments(9), testing::IsEmpty());
}

}  // namespace
