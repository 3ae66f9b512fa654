#include "platform/base/LateModule.h"

#include <gmock/gmock.h>

#include "support/fakes/RecordingServices.h"

namespace platform {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(LateModuleTest, ThatIsMissingIsLoggedByItsName) {
  const support::InstalledRecordingServices services;
  EXPECT_EQ(makeFromModule<int>("orvo-there-is-none"), nullptr);
  EXPECT_THAT(services->consoleLines(), ElementsAre(HasSubstr("orvo-there-is-none")));
}

TEST(LateModuleTest, WithoutAFactoryCountsAsMissing) {
  const support::InstalledRecordingServices services;
  EXPECT_EQ(makeFromModule<int>("libQt6Core"), nullptr);  // a library, but not a module
  EXPECT_THAT(services->consoleLines(), ElementsAre(HasSubstr("orvoModule")));
}

}  // namespace
}  // namespace platform
