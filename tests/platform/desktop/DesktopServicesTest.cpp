#include "platform/desktop/DesktopServices.h"

#include <gmock/gmock.h>

namespace {

TEST(DesktopServices, WithNoneInstalledOpenNothingAndSaySo) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(platform::desktopServices()->open(QUrl("file:///take.wav")));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("/take.wav"));
}

}  // namespace
