#include "platform/files/File.h"

#include <gtest/gtest.h>

#include "platform/files/PosixFile.h"
#include "support/fakes/FailingTemporaryFiles.h"

namespace {

TEST(TemporaryFiles, AreTheOperatingSystemsAtFirst) {
  EXPECT_EQ(&platform::temporaryFiles(), &platform::operatingSystemTemporaryFiles());
}

TEST(TemporaryFiles, InstallationsNestAndEnd) {
  support::FailingTemporaryFiles outer;
  support::FailingTemporaryFiles inner;
  {
    const platform::TemporaryFilesInstallation outerInstallation(outer);
    EXPECT_EQ(&platform::temporaryFiles(), &outer);
    {
      const platform::TemporaryFilesInstallation innerInstallation(inner);
      EXPECT_EQ(&platform::temporaryFiles(), &inner);
    }
    EXPECT_EQ(&platform::temporaryFiles(), &outer);
  }
  EXPECT_EQ(&platform::temporaryFiles(), &platform::operatingSystemTemporaryFiles());
}

}  // namespace
