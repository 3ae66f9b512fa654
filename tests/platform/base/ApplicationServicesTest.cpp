#include "platform/base/ApplicationServices.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>

#include "support/fakes/RecordingServices.h"

namespace {

using support::RecordedAlert;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ApplicationServices, AnAlertIsWaitedForAndWithinAScopePosted) {
  const support::InstalledRecordingServices services;
  ShowModalAlert("title", "message");
  {
    const platform::PostedAlertsScope scope;
    ShowModalAlert("later", "");
    std::thread([] { ShowModalAlert("of another thread", ""); }).join();
  }
  EXPECT_THAT(services->alerts(), ElementsAre(RecordedAlert{"title", "message"},
                                              RecordedAlert{"of another thread", ""}));
  EXPECT_THAT(services->postedAlerts(), ElementsAre(RecordedAlert{"later", ""}));
}

TEST(ApplicationServices, AnErrorIsShownByItsText) {
  const support::InstalledRecordingServices services;
  const auto error = std::make_error_code(std::errc::no_space_on_device);
  ShowErrorAlert(error);
  EXPECT_THAT(services->alerts(), ElementsAre(RecordedAlert{error.message(), ""}));
}

TEST(ApplicationServices, TheConsoleGetsFormattedLinesOfAnyLength) {
  const support::InstalledRecordingServices services;
  const std::string longLine(5000, 'x');
  ConsoleLog("%d of %s", 3, "four");
  ConsoleLog("%s", longLine.c_str());
  EXPECT_THAT(services->consoleLines(), ElementsAre("3 of four", longLine));
}

TEST(ApplicationServices, WithoutAnApplicationEverythingGoesToStandardError) {
  testing::internal::CaptureStderr();
  ShowModalAlert("title", "message");
  ConsoleLog("line");
  platform::applicationServices()->registerTempFile("/tmp/x");
  platform::applicationServices()->cancelTermination();
  const std::string written = testing::internal::GetCapturedStderr();
  EXPECT_THAT(written, testing::AllOf(testing::HasSubstr("title"), testing::HasSubstr("line")));
}

}  // namespace
